// The functions of images.h in a build without the image part.

#include "tools/kestova/common/errors.h"
#include "tools/kestova/pc/images.h"

namespace {

[[noreturn]] void Refuse(const std::string& image) {
    throw WrongUse(image + ": this build opens no images (it has no image part)");
}

}  // namespace

void BeginOpening(const PcChoice&, const UnusualWork&) {}

void EndOpening() {}

machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind, const machine::ImageUse&) {
    Refuse(paths.front());
}

std::string UsualJournal(const std::string&) {
    return {};
}

std::string UsualBackup(const std::string&) {
    return {};
}

std::vector<LinkedLibrary> ImageLibraries() {
    return {};
}

std::vector<LinkedLibrary> LateImageLibraries() {
    return {};
}

bool IsDiskOfComputer(const std::string&) {
    return false;
}

ComputerDisk IdentityOfDisk(const std::string&) {
    return {};
}

bool ConfirmDisks(const std::vector<std::string>&) {
    return false;
}

machine::Recovery RecoverChange(const std::string& path, const machine::ImageUse&) {
    Refuse(path);
}

machine::RepairedTable RepairTableOf(const std::string& path, const machine::ImageUse&) {
    Refuse(path);
}

machine::UndoneChange UndoChange(const std::string& path, const std::string&, const machine::ImageUse&) {
    Refuse(path);
}

std::string ImageOfBackupFile(const std::string&) {
    return {};
}

void InsertMedia(machine::Pc&, const std::vector<std::string>& discs,
                 const std::vector<std::string>& sticks) {
    for (const auto* const media : {&discs, &sticks}) {
        if (!media->empty()) Refuse(media->front());
    }
}

void AttachImages(machine::Pc& pc, const machine::ImageUse&) {
    for (const machine::Disk& disk : pc.disks) {
        if (!disk.image.empty()) Refuse(disk.image);
    }
    for (const machine::Volume& volume : pc.volumes) {
        if (!volume.image.empty()) Refuse(volume.image);
    }
}
