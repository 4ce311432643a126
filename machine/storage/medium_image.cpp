#include "machine/storage/medium_image.h"

#include <algorithm>

#include "machine/core/letters.h"
#include "machine/storage/given_images.h"
#include "machine/storage/image_table.h"
#include "machine/storage/volume_image.h"

namespace machine {

namespace {

using SharedImage = std::shared_ptr<ImageFile>;

// A volume that cannot be read has no root folder either.
void CheckIsReadable(const ImageFile& image, const Volume& volume) {
    if (volume.store->Find("") != FileKind::Folder)
        throw image.Error("its " + volume.fileSystem +
                          " file system is damaged, truncated, or of a kind that is not read here");
}

Volume DiscOn(const SharedImage& image) {
    const auto fileSystem = FileSystemProbe(*image, MediumKind::Disc).Identify(0, image->Size());
    if (!fileSystem) throw image->Error("no disc: neither ISO 9660 nor UDF");
    return VolumeAt(image, *fileSystem, 0, image->Size());
}

Volume StickOn(const SharedImage& image) {
    FileSystemProbe probe(*image, MediumKind::Disk);
    if (const auto whole = probe.Identify(0, image->Size())) {
        Volume volume = VolumeAt(image, *whole, 0, image->Size());
        if (!volume.store)
            throw image->Error("a volume of " + whole->kind + ", but only FAT and NTFS are read");
        return volume;
    }
    Disk disk;
    ReadTable(*image, disk);
    for (const Partition& partition : disk.partitions) {
        const auto fileSystem = probe.Identify(partition.offset, partition.size);
        if (!fileSystem) continue;
        Volume volume = VolumeAt(image, *fileSystem, partition.offset, partition.size);
        if (volume.store) return volume;
    }
    throw image->Error("none of its partitions is a FAT or NTFS volume");
}

Volume MediumOn(const std::string& path, DriveType drive) {
    const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
    if (drive != DriveType::Optical && drive != DriveType::Removable)
        throw image->Error("is in a drive that is neither an optical nor a removable one");
    Volume volume = drive == DriveType::Optical ? DiscOn(image) : StickOn(image);
    CheckIsReadable(*image, volume);
    return volume;
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
