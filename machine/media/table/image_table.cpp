#include "machine/media/table/image_table.h"

#include <algorithm>

#include "machine/media/device/disk_identity.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/device/store_errors.h"
#include "machine/media/table/gpt_table.h"
#include "machine/media/table/sector_size.h"
#include "machine/media/table/table_check.h"

namespace machine {

namespace {

constexpr size_t mbrSignatureAt = 440;

Region RegionOf(const Partition& partition) {
    return {"partition " + std::to_string(partition.number), partition.offset, partition.size};
}

// The numbers that Windows has given so far; an extended partition has none.
uint32_t NumberedPartitions(const Disk& disk) {
    return static_cast<uint32_t>(std::ranges::count_if(
        disk.partitions, [](const Partition& partition) { return partition.number != 0; }));
}

Partition& AddPartition(Disk& disk, uint64_t offset, uint64_t size) {
    Partition partition;
    partition.number = NumberedPartitions(disk) + 1;
    partition.offset = offset;
    partition.size = size;
    return disk.partitions.emplace_back(std::move(partition));
}

void Append(std::vector<std::string>& sentences, const std::vector<std::string>& more) {
    sentences.insert(sentences.end(), more.begin(), more.end());
}

// --- MBR ---

// Firmware handles a table with another value unpredictably.
void CheckIndicator(const MbrEntry& entry, const std::string& name, TableFindings& findings) {
    if (entry.indicator != 0x00 && !entry.IsActive())
        findings.problems.push_back(name + " is neither active nor inactive; the partition table is damaged");
}

Partition& AddMbrEntry(const MbrEntry& entry, Disk& disk) {
    Partition& partition = AddPartition(disk, entry.offset, entry.size);
    partition.slot = entry.slot;
    partition.mbrType = entry.type;
    partition.bootIndicator = entry.IsActive() ? 1 : 0;
    return partition;
}

void AddMbrPartition(const MbrEntry& entry, Disk& disk, TableLayout& layout, TableFindings& findings) {
    const Partition& partition = AddMbrEntry(entry, disk);
    const Region region = RegionOf(partition);
    if (!entry.isLogical) CheckIndicator(entry, region.name, findings);
    (entry.isLogical ? layout.logicals : layout.primaries).push_back(region);
}

TableFindings ReadMbr(const ImageFile& image, Disk& disk) {
    const uint64_t sectorSize = SectorSizeOf(image);
    const MbrEntries table = MbrEntriesOf(image, sectorSize);
    disk.style = PartitionStyle::Mbr;
    disk.signature = Le32(MbrSector(image), mbrSignatureAt);
    TableFindings findings;
    TableLayout layout;
    layout.diskSize = disk.size;
    layout.space = {"", sectorSize, disk.size - sectorSize};
    for (const MbrEntry& entry : table.entries) {
        // Windows takes it for any other partition, and looks for none inside.
        if (entry.type == mbrExtendedLinux)
            findings.remarks.emplace_back("an extended partition of type 0x85, which Windows does not know");
        if (entry.IsExtended()) {
            // Windows lists the first one only.
            if (layout.extended.empty()) AddMbrEntry(entry, disk).number = 0;
            layout.extended.push_back({"the extended partition", entry.offset, entry.size});
            CheckIndicator(entry, layout.extended.back().name, findings);
        } else {
            AddMbrPartition(entry, disk, layout, findings);
        }
    }
    Append(findings.problems, table.problems);
    Append(findings.problems, LayoutProblems(layout));
    return findings;
}

// --- GPT ---

// A damaged table can refer to any sector. No image ends beyond these, and sums of byte offsets do not
// overflow.
uint64_t Bytes(uint64_t sectors, uint64_t sectorSize) {
    constexpr uint64_t maximumSectors = uint64_t{1} << 50;
    return std::min(sectors, maximumSectors) * sectorSize;
}

TableFindings ReadGpt(const ImageFile& image, Disk& disk) {
    const uint64_t sectorSize = SectorSizeOf(image);
    const GptTable table = ReadGptTable(image, sectorSize);
    if (!table.used) throw image.Error("the GUID partition table is damaged, or the image is truncated");
    disk.style = PartitionStyle::Gpt;
    disk.guid = table.used->disk;
    TableLayout layout;
    layout.diskSize = disk.size;
    const uint64_t first = Bytes(table.used->firstUsable, sectorSize);
    layout.space = {"", first, std::max(first, Bytes(table.used->lastUsable + 1, sectorSize)) - first};
    for (const GptEntry& entry : table.used->entries) {
        const uint64_t sectors = entry.last >= entry.first ? entry.last - entry.first + 1 : 0;
        Partition& partition = AddPartition(disk, Bytes(entry.first, sectorSize), Bytes(sectors, sectorSize));
        partition.slot = entry.slot;
        partition.gptType = entry.type;
        partition.gptId = entry.id;
        partition.attributes = entry.attributes;
        partition.name = entry.name;
        layout.primaries.push_back(RegionOf(partition));
    }
    const std::vector<std::string> misplaced = LayoutProblems(layout);
    TableFindings findings{.problems = table.problems, .canBeRepaired = misplaced.empty()};
    Append(findings.problems, misplaced);
    if (IsHybrid(image))
        findings.remarks.emplace_back(
            "a hybrid MBR: beside the GUID partition table, the MBR has partitions too");
    return findings;
}

bool IsGpt(const ImageFile& image) {
    if (HasProtectiveMbr(image)) return true;
    // Behind any other MBR it is left over from an earlier use of the disk.
    return MbrSector(image).empty() && ReadGptTable(image, SectorSizeOf(image)).used.has_value();
}

}  // namespace

bool HasTable(const ImageFile& image) {
    return !MbrSector(image).empty() || IsGpt(image);
}

std::string WhyNoDisk(const ImageFile& image) {
    if (!image.Flaw().empty()) return image.Flaw();
    return IsDisk(image.Path()) ? "no partition table, so no partitioned disk"
                                : "no partition table, so no disk image";
}

void ReadBlank(const ImageFile& image, Disk& disk) {
    disk.size = image.Size();
    disk.sectorSize = static_cast<uint32_t>(SectorSizeOf(image));
    disk.style = PartitionStyle::Unknown;
    disk.partitions.clear();
}

TableFindings ReadTable(const ImageFile& image, Disk& disk) {
    if (!HasTable(image)) throw image.Error(WhyNoDisk(image));
    ReadBlank(image, disk);
    return IsGpt(image) ? ReadGpt(image, disk) : ReadMbr(image, disk);
}

uint32_t ImageTable::SetActive(uint64_t partitionOffset, bool active, OtherFlags others) {
    return Change(partitionOffset, [&](const std::vector<MbrEntry>& entries, const MbrEntry& chosen) {
        // The extended partition's flag too, since firmware counts it.
        for (const MbrEntry& entry : entries) {
            const bool clears =
                others == OtherFlags::Clear && entry.IsActive() && entry.place != chosen.place;
            if (clears && !Put(entry.place, 0x00)) return false;
        }
        return Put(chosen.place, active ? 0x80 : 0x00);
    });
}

uint32_t ImageTable::SetMbrType(uint64_t partitionOffset, uint8_t type) {
    const MbrEntry wanted{.type = type};
    if (type == mbrUnused || type == mbrProtective || wanted.IsContainer()) return errorInvalidParameter;
    return Change(partitionOffset, [&](const std::vector<MbrEntry>&, const MbrEntry& chosen) {
        return Put(chosen.place + mbrTypeAt, type);
    });
}

std::vector<TableEntry> ImageTable::Entries() {
    std::vector<TableEntry> entries;
    if (style_ != PartitionStyle::Mbr) return entries;
    const MbrEntries table = MbrEntriesOf(*image_, SectorSizeOf(*image_));
    if (!table.problems.empty()) return entries;
    for (const MbrEntry& entry : table.entries)
        entries.push_back({entry.offset, entry.IsActive(), entry.type});
    return entries;
}

uint32_t ImageTable::Change(uint64_t partitionOffset, const Edit& edit) {
    if (image_->Access() == ImageAccess::Read) return errorWriteProtect;
    if (style_ != PartitionStyle::Mbr) return errorInvalidParameter;
    const MbrEntries table = MbrEntriesOf(*image_, SectorSizeOf(*image_));
    if (!table.problems.empty()) return errorIoDevice;
    const auto chosen = std::find_if(table.entries.begin(), table.entries.end(), [&](const MbrEntry& entry) {
        return entry.offset == partitionOffset && !entry.IsContainer();
    });
    if (chosen == table.entries.end()) return errorInvalidParameter;
    return edit(table.entries, *chosen) ? 0 : errorIoDevice;
}

bool ImageTable::Put(uint64_t place, uint8_t value) {
    return image_->Write(place, &value, 1);
}

}  // namespace machine
