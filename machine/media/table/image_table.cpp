#include "machine/media/table/image_table.h"

#include <algorithm>
#include <cstdlib>

#include "machine/media/device/store_errors.h"
#include "machine/media/table/fdisk_session.h"
#include "machine/media/table/mbr_entries.h"
#include "machine/media/table/table_check.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint8_t mbrUnused = 0x00;
constexpr uint8_t mbrExtendedLinux = 0x85;  // ignored by Windows
constexpr uint8_t mbrProtective = 0xEE;

bool IsExtended(uint8_t type) {
    return PartitionTypeOf(type).extended;
}

uint8_t MbrTypeOf(fdisk_partition* entry) {
    return static_cast<uint8_t>(fdisk_parttype_get_code(fdisk_partition_get_type(entry)));
}

Guid GuidOf(const ImageFile& image, const char* text) {
    const auto guid = GuidFromText(text ? text : "");
    if (!guid) throw image.Error("the GUID partition table is damaged: no GUID where one must be");
    return *guid;
}

Partition PlaceOf(fdisk_partition* entry) {
    // A damaged table can refer to any sector. No image ends beyond these, and sums of byte offsets do not
    // overflow.
    constexpr uint64_t maximumSectors = uint64_t{1} << 53;
    Partition partition;
    partition.offset = std::min(fdisk_partition_get_start(entry), maximumSectors) * diskSectorSize;
    partition.size = std::min(fdisk_partition_get_size(entry), maximumSectors) * diskSectorSize;
    return partition;
}

Region RegionOf(const Partition& partition) {
    return {"partition " + std::to_string(partition.number), partition.offset, partition.size};
}

std::string DiskIdentifier(const FdiskSession& session) {
    char* text = nullptr;
    if (fdisk_get_disklabel_id(session.Context(), &text) != 0 || !text) return "";
    std::string identifier = text;
    std::free(text);
    return identifier;
}

// Flags and types as they are with what is not yet on the medium, which libfdisk does not see.
void TakeValues(const ImageFile& image, Disk& disk) {
    for (const MbrEntry& entry : MbrEntriesOf(image)) {
        for (Partition& partition : disk.partitions) {
            if (partition.offset != entry.offset || IsExtended(entry.type)) continue;
            partition.mbrType = entry.type;
            partition.bootIndicator = entry.isActive ? 1 : 0;
        }
    }
}

void ReadMbr(const ImageFile& image, const FdiskSession& session, Disk& disk) {
    disk.style = PartitionStyle::Mbr;
    disk.signature = static_cast<uint32_t>(std::strtoul(DiskIdentifier(session).c_str(), nullptr, 16));

    TableLayout layout;
    layout.space = {"", diskSectorSize, disk.size - diskSectorSize};
    for (size_t slot = 0; slot < fdisk_get_npartitions(session.Context()); ++slot) {
        const auto entry = session.Slot(slot);
        if (!entry) continue;
        const uint8_t type = MbrTypeOf(entry.get());
        if (type == mbrProtective)
            throw image.Error("the GUID partition table is damaged, or the image is truncated");
        if (type == mbrExtendedLinux)
            throw image.Error("an extended partition of type 0x85, which Windows does not know");
        Partition partition = PlaceOf(entry.get());
        if (IsExtended(type)) {
            const Region extended = {"the extended partition", partition.offset, partition.size};
            CheckBootIndicator(image, slot, extended.name);
            LogicalLinksOf(image, extended);
            layout.extended.push_back(extended);
            continue;
        }
        if (type == mbrUnused) continue;
        partition.number = static_cast<uint32_t>(disk.partitions.size() + 1);
        const bool isLogical = fdisk_partition_is_nested(entry.get()) != 0;
        if (!isLogical) CheckBootIndicator(image, slot, RegionOf(partition).name);
        auto& regions = isLogical ? layout.logicals : layout.primaries;
        regions.push_back(RegionOf(partition));
        disk.partitions.push_back(std::move(partition));
    }
    CheckLayout(image, layout);
    TakeValues(image, disk);
}

void ReadGpt(const ImageFile& image, const FdiskSession& session, Disk& disk) {
    disk.style = PartitionStyle::Gpt;
    disk.guid = GuidOf(image, DiskIdentifier(session).c_str());

    TableLayout layout;
    const uint64_t first = fdisk_get_first_lba(session.Context());
    const uint64_t last = fdisk_get_last_lba(session.Context());
    layout.space = {"", first * diskSectorSize, (last + 1 - first) * diskSectorSize};
    for (size_t slot = 0; slot < fdisk_get_npartitions(session.Context()); ++slot) {
        const auto entry = session.Slot(slot);
        if (!entry) continue;
        Partition partition = PlaceOf(entry.get());
        partition.number = static_cast<uint32_t>(disk.partitions.size() + 1);
        partition.gptType = GuidOf(image, fdisk_parttype_get_string(fdisk_partition_get_type(entry.get())));
        partition.gptId = GuidOf(image, fdisk_partition_get_uuid(entry.get()));
        fdisk_gpt_get_partition_attrs(session.Context(), slot, &partition.attributes);
        const char* name = fdisk_partition_get_name(entry.get());
        partition.name = name ? name : "";
        layout.primaries.push_back(RegionOf(partition));
        disk.partitions.push_back(std::move(partition));
    }
    CheckLayout(image, layout);
}

}  // namespace

bool HasTable(const ImageFile& image) {
    const FdiskSession session(image);
    return fdisk_is_label(session.Context(), GPT) || fdisk_is_label(session.Context(), DOS);
}

void ReadTable(const ImageFile& image, Disk& disk) {
    const FdiskSession session(image);
    disk.size = image.Size();
    disk.partitions.clear();
    if (fdisk_is_label(session.Context(), GPT)) {
        ReadGpt(image, session, disk);
    } else if (fdisk_is_label(session.Context(), DOS)) {
        ReadMbr(image, session, disk);
    } else {
        throw image.Error("no partition table, so no disk image");
    }
    // Anything else that libfdisk would repair when writing, such as a damaged header or a misplaced
    // backup.
    if (!session.Warnings().empty())
        throw image.Error("the partition table is damaged: " + session.Warnings().front());
}

uint32_t ImageTable::SetActive(uint64_t partitionOffset, bool active, OtherFlags others) {
    return Change(partitionOffset, [&](const std::vector<MbrEntry>& entries, const MbrEntry& chosen) {
        // The extended partition's flag too, since firmware counts it.
        for (const MbrEntry& entry : entries) {
            const bool clears = others == OtherFlags::Clear && entry.isActive && entry.place != chosen.place;
            if (clears && !Put(entry.place, 0x00)) return false;
        }
        return Put(chosen.place, active ? 0x80 : 0x00);
    });
}

uint32_t ImageTable::SetMbrType(uint64_t partitionOffset, uint8_t type) {
    if (type == mbrUnused || IsExtended(type) || type == mbrExtendedLinux || type == mbrProtective)
        return errorInvalidParameter;
    return Change(partitionOffset, [&](const std::vector<MbrEntry>&, const MbrEntry& chosen) {
        return Put(chosen.place + mbrTypeAt, type);
    });
}

std::vector<TableEntry> ImageTable::Entries() try {
    std::vector<TableEntry> entries;
    if (style_ != PartitionStyle::Mbr) return entries;
    for (const MbrEntry& entry : MbrEntriesOf(*image_)) {
        if (!IsExtended(entry.type)) entries.push_back({entry.offset, entry.isActive, entry.type});
    }
    return entries;
} catch (const ImageError&) {
    return {};
}

uint32_t ImageTable::Change(uint64_t partitionOffset, const Edit& edit) try {
    if (image_->Access() == ImageAccess::Read) return errorWriteProtect;
    if (style_ != PartitionStyle::Mbr) return errorInvalidParameter;
    const std::vector<MbrEntry> entries = MbrEntriesOf(*image_);
    const auto chosen = std::find_if(entries.begin(), entries.end(), [&](const MbrEntry& entry) {
        return entry.offset == partitionOffset && !IsExtended(entry.type);
    });
    if (chosen == entries.end()) return errorInvalidParameter;
    return edit(entries, *chosen) ? 0 : errorIoDevice;
} catch (const ImageError&) {
    return errorIoDevice;
}

bool ImageTable::Put(uint64_t place, uint8_t value) {
    return image_->Write(place, &value, 1);
}

}  // namespace machine
