#include "machine/media/medium_image.h"

#include <algorithm>

#include "machine/facts/letters.h"
#include "machine/media/given_images.h"
#include "machine/media/image/volume_bytes.h"
#include "machine/media/table/image_table.h"
#include "machine/media/table/mbr_entries.h"
#include "machine/media/volumes/volume_image.h"

namespace machine {

namespace {

using SharedImage = std::shared_ptr<ImageFile>;

// The number and size of sectors according to the file system.
struct OwnLength {
    uint64_t sectors;
    uint64_t sectorSize;
};

// UDF does not record them.
OwnLength OwnLengthOf(const std::string& fileSystem, const VolumeBytes& bytes) {
    constexpr uint64_t discDescriptor = 16ULL * 2048;
    const bool isDisc = fileSystem == "CDFS";
    const std::string sector = bytes.Read(isDisc ? discDescriptor : 0, 512).value_or("");
    if (isDisc) return {Le32(sector, 80), Le16(sector, 128)};
    if (fileSystem == "NTFS") return {Le64(sector, 40), Le16(sector, 11)};
    if (fileSystem == "exFAT") return {Le64(sector, 72), uint64_t{1} << Byte(sector, 108)};
    if (fileSystem == "UDF") return {0, 0};
    return {Le16(sector, 19) != 0 ? Le16(sector, 19) : Le32(sector, 32), Le16(sector, 11)};
}

bool IsCutOff(const std::string& fileSystem, const VolumeBytes& bytes) {
    const OwnLength length = OwnLengthOf(fileSystem, bytes);
    return length.sectorSize != 0 && length.sectors > bytes.Size() / length.sectorSize;
}

// An unreadable volume does not even have a root folder.
void CheckIsReadable(const SharedImage& image, const Volume& volume, uint64_t offset, uint64_t size) {
    const std::string name = "its " + volume.fileSystem + " file system ";
    if (IsCutOff(volume.fileSystem, VolumeBytes(image, offset, size)))
        throw image->Error(name + "is longer than what is there; the image is truncated, or it is damaged");
    if (volume.store->Find("") != FileKind::Folder)
        throw image->Error(name + "is damaged, truncated, or of a kind that is not read here");
}

Volume DiscOn(const SharedImage& image) {
    const auto fileSystem = FileSystemOf(VolumeBytes(image, 0, image->Size()), MediumKind::Disc);
    if (!fileSystem) throw image->Error("no disc: neither ISO 9660 nor UDF");
    Volume volume = VolumeAt(image, *fileSystem, 0, image->Size());
    CheckIsReadable(image, volume, 0, image->Size());
    return volume;
}

// The first sector of a volume has the signature of a partition table, so a damaged volume can look like an
// empty table.
constexpr const char* noStick =
    "no stick: neither a FAT, exFAT, NTFS or UDF volume nor a partition table with one; it may be truncated";

constexpr const char* discInStick = "a disc, not a stick";

bool IsDisc(const SharedImage& image) {
    return FileSystemOf(VolumeBytes(image, 0, image->Size()), MediumKind::Disc).has_value();
}

Volume FirstVolumeOn(const SharedImage& image) {
    Disk disk;
    const TableFindings findings = ReadTable(*image, disk);
    if (disk.partitions.empty()) throw image->Error(noStick);
    std::string unread;
    for (const Partition& partition : disk.partitions) {
        const auto fileSystem =
            FileSystemOf(VolumeBytes(image, partition.offset, partition.size), MediumKind::Disk);
        if (!fileSystem) continue;
        Volume volume = VolumeAt(image, *fileSystem, partition.offset, partition.size);
        if (!volume.store) {
            unread += unread.empty() ? "; not read: " : ", ";
            unread += "partition " + std::to_string(partition.number) + " (" + fileSystem->kind + ")";
            continue;
        }
        CheckIsReadable(image, volume, partition.offset, partition.size);
        return volume;
    }
    if (NamesWholeMedium(MbrSector(*image)) && IsDisc(image)) throw image->Error(discInStick);
    if (!findings.problems.empty()) throw image->Error(findings.problems.front());
    throw image->Error("none of its partitions is a FAT, exFAT, NTFS or UDF volume" + unread);
}

Volume StickOn(const SharedImage& image) {
    if (const auto whole = FileSystemOf(VolumeBytes(image, 0, image->Size()), MediumKind::Disk)) {
        Volume volume = VolumeAt(image, *whole, 0, image->Size());
        if (!volume.store)
            throw image->Error("a volume of " + whole->kind + ", but only FAT, exFAT, NTFS and UDF are read");
        CheckIsReadable(image, volume, 0, image->Size());
        return volume;
    }
    if (!HasTable(*image)) throw image->Error(IsDisc(image) ? discInStick : noStick);
    return FirstVolumeOn(image);
}

Volume MediumOn(const std::string& path, DriveType drive) {
    const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
    if (drive != DriveType::Optical && drive != DriveType::Removable)
        throw image->Error("is in a drive that is neither an optical nor a removable one");
    return drive == DriveType::Optical ? DiscOn(image) : StickOn(image);
}

std::string FreeLetter(const Pc& pc) {
    const std::string used = UsedLetters(pc);
    const std::string_view letters = "CDEFGHIJKLMNOPQRSTUVWXYZ";
    const size_t free = letters.find_first_not_of(used);
    return free != std::string_view::npos ? std::string(1, letters[free]) : "";
}

void Insert(Pc& pc, const std::string& path, DriveType drive) {
    CheckIsNew(pc, path);
    Volume volume;
    volume.letters = FreeLetter(pc);
    volume.driveType = drive;
    volume.image = path;
    AttachMedium(volume);
    pc.volumes.push_back(std::move(volume));
}

}  // namespace

void InsertDisc(Pc& pc, const std::string& path) {
    Insert(pc, path, DriveType::Optical);
}

void InsertStick(Pc& pc, const std::string& path) {
    Insert(pc, path, DriveType::Removable);
}

void AttachMedium(Volume& volume) {
    Volume medium = MediumOn(volume.image, volume.driveType);
    volume.fileSystem = std::move(medium.fileSystem);
    if (volume.label.value) volume.label = std::move(medium.label);
    volume.store = std::move(medium.store);
}

}  // namespace machine
