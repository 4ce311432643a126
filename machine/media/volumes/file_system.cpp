#include "machine/media/volumes/file_system.h"

#include <string_view>

#include "machine/api/text/oem_code_page.h"
#include "machine/media/table/mbr_entries.h"
#include "machine/media/volumes/exfat_volume.h"
#include "machine/media/volumes/fat_volume.h"
#include "machine/media/volumes/iso_volume.h"
#include "machine/media/volumes/ntfs_label.h"
#include "machine/media/volumes/stored_text.h"
#include "machine/media/volumes/udf_volume.h"

namespace machine {

namespace {

using namespace std::string_view_literals;

using Label = std::optional<std::string>;

// A boot sector that is followed by no more than one sector is that of a program, not of a volume.
constexpr uint64_t leastVolume = 3 * diskSectorSize;

Label NoLabel(const VolumeBytes&) {
    return "";
}

// OS/2 puts an allocation table's boot sector before other file systems.
bool IsOfOs2(std::string_view sector) {
    const std::string_view type = sector.substr(54, 8);
    return type == "HPFS    " || type == "JFS     ";
}

// Boot sectors of FAT have no signature of their own, so each field must be plausible.
Label FatLabelIf(const VolumeBytes& bytes, bool isFat32) {
    const auto sector = bytes.Read(0, diskSectorSize);
    const auto layout = ReadFatLayout(bytes);
    if (!sector || !layout || (layout->entryBits == 32) != isFat32) return std::nullopt;
    const uint8_t media = Byte(*sector, 21);
    const bool isNamed = sector->compare(isFat32 ? 82 : 54, 3, "FAT") == 0;
    const bool isBootSector = sector->compare(510, 2, "\x55\xAA") == 0 && !IsOfOs2(*sector);
    if ((media != 0xF0 && media < 0xF8) || !(isNamed || isBootSector)) return std::nullopt;
    return FatVolume(bytes).Label();
}

Label FatLabel(const VolumeBytes& bytes) {
    return FatLabelIf(bytes, false);
}

Label Fat32Label(const VolumeBytes& bytes) {
    return FatLabelIf(bytes, true);
}

Label ExfatLabel(const VolumeBytes& bytes) {
    return ExfatVolume(bytes).Label();
}

Label UdfLabel(const VolumeBytes& bytes) {
    return IsNamedUdf(bytes) ? UdfVolume(bytes).Label() : std::nullopt;
}

// Its blocks are the sectors of the disk, which are never those of a disc. Behind a partition table it is
// left over from an earlier use of the disk, unless the table is of the whole medium.
Label UdfOnDiskLabel(const VolumeBytes& bytes) {
    const auto sector = bytes.Read(0, diskSectorSize);
    if (!sector || !IsNamedUdf(bytes)) return std::nullopt;
    if (Le16(*sector, 510) == 0xAA55 && !NamesWholeMedium(*sector)) return std::nullopt;
    const UdfVolume volume(bytes);
    return volume.BlockSize() == 512 || volume.BlockSize() == 4096 ? volume.Label() : std::nullopt;
}

Label IsoLabel(const VolumeBytes& bytes) {
    return IsoVolume(bytes).Label();
}

// The format before ISO 9660.
Label HighSierraLabel(const VolumeBytes& bytes) {
    const auto label = bytes.Read(0x8000 + 48, 32);
    return label ? Label(FromOem(*label)) : std::nullopt;
}

// What identifies a file system: bytes at an offset, and structures that fit them.
struct KnownFileSystem {
    MediumKind medium;
    const char* kind;
    uint64_t at;
    std::string_view signature;
    Label (*label)(const VolumeBytes&);  // nothing if its structures are not there
};

// The first that fits counts. A volume of BitLocker To Go is one of FAT32 too, with a program that opens it;
// in its boot program is the id of BitLocker, of which there is another one for encryption of the used space
// alone.
constexpr KnownFileSystem knownFileSystems[] = {
    {MediumKind::Disk, "BitLocker", 3, "-FVE-FS-", NoLabel},
    {MediumKind::Disk, "BitLocker", 424, "\x3B\xD6\x67\x49\x29\x2E\xD8\x4A\x83\x99\xF6\xA3\x39\xE3\xD0\x01",
     NoLabel},
    {MediumKind::Disk, "BitLocker", 424, "\x3B\x4D\xA8\x92\x80\xDD\x0E\x4D\x9E\x4E\xB1\xE3\x28\x4E\xAE\xD8",
     NoLabel},
    {MediumKind::Disk, "NTFS", 3, "NTFS    ", NtfsLabel},
    {MediumKind::Disk, "exFAT", 3, "EXFAT   ", ExfatLabel},
    {MediumKind::Disk, "ReFS", 0, "\0\0\0ReFS\0"sv, NoLabel},
    {MediumKind::Disk, "FAT32", 0, "", Fat32Label},
    {MediumKind::Disk, "FAT", 0, "", FatLabel},
    {MediumKind::Disk, "UDF", 0, "", UdfOnDiskLabel},
    {MediumKind::Disc, "UDF", 0, "", UdfLabel},
    {MediumKind::Disc, "CDFS", 0x8001, "CD001", IsoLabel},
    {MediumKind::Disc, "CDFS", 0x8009, "CDROM", HighSierraLabel},
};

}  // namespace

std::optional<FileSystem> FileSystemOf(const VolumeBytes& bytes, MediumKind medium) {
    if (bytes.Size() < leastVolume) return std::nullopt;
    for (const KnownFileSystem& known : knownFileSystems) {
        if (known.medium != medium || bytes.Read(known.at, known.signature.size()) != known.signature)
            continue;
        if (auto label = known.label(bytes)) return FileSystem{known.kind, WithoutPadding(std::move(*label))};
    }
    return std::nullopt;
}

}  // namespace machine
