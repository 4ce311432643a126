#include "machine/media/table/sector_size.h"

#include "machine/media/device/little_endian.h"
#include "machine/media/table/mbr_entries.h"

namespace machine {

namespace {

bool HasGptHeader(const ImageFile& image, uint64_t sectorSize) {
    char signature[8] = {};
    return image.Read(sectorSize, signature, sizeof signature) &&
           std::string_view(signature, sizeof signature) == "EFI PART";
}

// NTFS, FAT and exFAT keep the size of their sectors in the first of them.
bool HasVolumeOfLargeSectors(const ImageFile& image, uint64_t offset) {
    std::string boot(diskSectorSize, '\0');
    if (!image.Read(offset, boot.data(), boot.size()) || Le16(boot, 510) != 0xAA55) return false;
    const bool isExFat = boot.substr(3, 8) == "EXFAT   ";
    return isExFat ? Byte(boot, 108) == 12 : Le16(boot, 11) == largeSectorSize;
}

}  // namespace

uint64_t SectorSizeOf(const ImageFile& image) {
    if (image.SectorSize()) return *image.SectorSize();
    if (HasGptHeader(image, diskSectorSize)) return diskSectorSize;
    if (HasGptHeader(image, largeSectorSize)) return largeSectorSize;
    const std::string sector = MbrSector(image);
    for (size_t slot = 0; slot < mbrSlots; ++slot) {
        const uint64_t start = Le32(sector, mbrFirstEntry + slot * mbrEntrySize + mbrStartAt);
        if (start != 0 && HasVolumeOfLargeSectors(image, start * largeSectorSize)) return largeSectorSize;
    }
    return diskSectorSize;
}

}  // namespace machine
