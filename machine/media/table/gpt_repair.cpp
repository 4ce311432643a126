#include "machine/media/table/gpt_repair.h"

#include <algorithm>

#include "machine/facts/pc.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/table/gpt_table.h"
#include "machine/media/table/image_table.h"
#include "machine/media/table/sector_size.h"

namespace machine {

namespace {

constexpr uint64_t primaryPlace = 1;

struct GptCopies {
    GptCopy primary;
    GptCopy backup;
};

// Where they belong on a disk of so many sectors.
GptCopies Placed(const ImageFile& image, const GptCopy& good, uint64_t sectors, uint64_t sectorSize) {
    const uint64_t entrySectors = (good.entryBytes.size() + sectorSize - 1) / sectorSize;
    if (sectors <= 1 + 2 * (1 + entrySectors))
        throw image.Error("too short for both copies of the GUID partition table; that cannot be repaired");
    GptCopies copies{good, good};
    const uint64_t lastSector = sectors - 1;
    copies.primary.place = copies.backup.otherPlace = primaryPlace;
    copies.primary.otherPlace = copies.backup.place = lastSector;
    copies.primary.entriesPlace = primaryPlace + 1;
    copies.backup.entriesPlace = lastSector - entrySectors;
    for (GptCopy* const copy : {&copies.primary, &copies.backup}) {
        copy->firstUsable = std::max(good.firstUsable, copies.primary.entriesPlace + entrySectors);
        copy->lastUsable = copies.backup.entriesPlace - 1;
    }
    return copies;
}

void CheckPartitionsFit(const ImageFile& image, const GptCopy& copy) {
    for (const GptEntry& entry : copy.entries) {
        if (entry.first < copy.firstUsable || entry.last > copy.lastUsable)
            throw image.Error(
                "a partition is where a copy of the GUID partition table belongs; that cannot be repaired");
    }
}

void Write(ImageFile& image, const GptCopy& copy, uint64_t sectorSize) {
    const std::string header = GptHeaderSector(copy, sectorSize);
    image.Write(copy.entriesPlace * sectorSize, copy.entryBytes.data(), copy.entryBytes.size());
    image.Write(copy.place * sectorSize, header.data(), header.size());
}

// One entry, from the sector behind the MBR to the end of the disk, so that programs that do not know the
// other table take the disk for full.
void WriteProtectiveMbr(ImageFile& image, uint64_t sectors) {
    std::string entries(mbrSlots * mbrEntrySize, '\0');
    constexpr std::string_view start("\0\0\2\0\xEE\xFF\xFF\xFF", 8);
    entries.replace(0, start.size(), start);
    PutLe32(entries, mbrStartAt, 1);
    PutLe32(entries, mbrLengthAt, static_cast<uint32_t>(std::min<uint64_t>(sectors - 1, UINT32_MAX)));
    const std::string sector = entries + "\x55\xAA";
    image.Write(mbrFirstEntry, sector.data(), sector.size());
}

}  // namespace

std::vector<std::string> RepairTable(ImageFile& image) {
    Disk disk;
    const TableFindings findings = ReadTable(image, disk);
    if (disk.style != PartitionStyle::Gpt)
        throw image.Error("has an MBR; only a GUID partition table has a second copy to be repaired from");
    if (findings.problems.empty()) return {};
    if (!findings.canBeRepaired) throw image.Error(findings.problems.back() + "; that cannot be repaired");
    const uint64_t sectorSize = SectorSizeOf(image);
    const uint64_t sectors = image.Size() / sectorSize;
    const GptCopies copies = Placed(image, *ReadGptTable(image, sectorSize).used, sectors, sectorSize);
    CheckPartitionsFit(image, copies.primary);
    Write(image, copies.primary, sectorSize);
    Write(image, copies.backup, sectorSize);
    if (!IsHybrid(image)) WriteProtectiveMbr(image, sectors);
    return findings.problems;
}

}  // namespace machine
