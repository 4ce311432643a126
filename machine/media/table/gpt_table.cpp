#include "machine/media/table/gpt_table.h"

#include <algorithm>

#include "machine/media/device/little_endian.h"
#include "machine/media/table/mbr_entries.h"

namespace machine {

namespace {

constexpr uint64_t primaryPlace = 1;

struct MbrUse {
    int partitions = 0;
    std::optional<uint32_t> protectedSectors = std::nullopt;  // behind the MBR
};

MbrUse UseOfMbr(const ImageFile& image) {
    const std::string sector = MbrSector(image);
    MbrUse use;
    for (size_t slot = 0; slot < mbrSlots; ++slot) {
        const size_t at = mbrFirstEntry + slot * mbrEntrySize;
        const uint8_t type = Byte(sector, at + mbrTypeAt);
        if (type == mbrProtective) {
            use.protectedSectors = Le32(sector, at + mbrLengthAt);
        } else if (type != mbrUnused) {
            ++use.partitions;
        }
    }
    return use;
}

GptCopy ReadBackup(const ImageFile& image, const GptCopy& primary, uint64_t sectorSize) {
    const uint64_t lastSector = image.Size() / sectorSize - 1;
    if (!primary.problem) return ReadGptCopy(image, primary.otherPlace, sectorSize);
    GptCopy backup;
    for (const uint64_t place : {uint64_t{UseOfMbr(image).protectedSectors.value_or(0)}, lastSector}) {
        backup = ReadGptCopy(image, place, sectorSize);
        if (!backup.problem) break;
    }
    return backup;
}

std::string Sectors(uint64_t number) {
    return std::to_string(number) + (number == 1 ? " sector" : " sectors");
}

void CheckEnd(const ImageFile& image, const GptCopy& used, uint64_t backupPlace, uint64_t sectorSize,
              std::vector<std::string>& problems) {
    const uint64_t sectors = image.Size() / sectorSize;
    if (used.lastUsable >= sectors) {
        problems.push_back("the GUID partition table is of a disk with more than the " + Sectors(sectors) +
                           " of this one: the image is truncated, or the table damaged");
    } else if (backupPlace < sectors - 1) {
        problems.push_back("the backup of the GUID partition table is " + Sectors(sectors - 1 - backupPlace) +
                           " before the end of the disk: it was copied from a smaller one");
    }
}

void CheckProtectiveMbr(const ImageFile& image, uint64_t sectorSize, std::vector<std::string>& problems) {
    const MbrUse use = UseOfMbr(image);
    const uint64_t wanted = std::min<uint64_t>(image.Size() / sectorSize - 1, UINT32_MAX);
    if (!use.protectedSectors) {
        problems.emplace_back("the protective MBR of the GUID partition table is missing");
    } else if (use.partitions == 0 && *use.protectedSectors != wanted &&
               *use.protectedSectors != UINT32_MAX) {
        problems.push_back("the protective MBR covers " + Sectors(*use.protectedSectors) +
                           " where the disk has " + Sectors(wanted) + " behind it");
    }
}

}  // namespace

GptTable ReadGptTable(const ImageFile& image, uint64_t sectorSize) {
    const GptCopy primary = ReadGptCopy(image, primaryPlace, sectorSize);
    const GptCopy backup = ReadBackup(image, primary, sectorSize);
    GptTable table;
    if (primary.problem && backup.problem) return table;
    table.used = primary.problem ? backup : primary;
    if (primary.problem) {
        table.problems.push_back("the GUID partition table " + *primary.problem + "; its backup is used");
    } else if (backup.problem) {
        table.problems.push_back("the backup of the GUID partition table " + *backup.problem);
    } else if (!primary.Agrees(backup)) {
        table.problems.emplace_back("the GUID partition table and its backup differ; the backup is not used");
    }
    const uint64_t backupPlace = primary.problem ? backup.place : primary.otherPlace;
    CheckEnd(image, *table.used, backupPlace, sectorSize, table.problems);
    CheckProtectiveMbr(image, sectorSize, table.problems);
    return table;
}

bool HasProtectiveMbr(const ImageFile& image) {
    return UseOfMbr(image).protectedSectors.has_value();
}

bool IsHybrid(const ImageFile& image) {
    const MbrUse use = UseOfMbr(image);
    return use.protectedSectors && use.partitions > 0;
}

}  // namespace machine
