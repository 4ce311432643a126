#include "machine/storage/given_images.h"

#include <filesystem>

namespace machine {

namespace {

void CheckIsOther(const std::string& given, const std::string& path) {
    std::error_code missing;  // which is told when the image is opened
    if (!given.empty() && std::filesystem::equivalent(given, path, missing))
        throw ImageError(path + ": given twice, first as " + given);
}

}  // namespace

void CheckIsNew(const Pc& pc, const std::string& path) {
    for (const Disk& disk : pc.disks)
        CheckIsOther(disk.image, path);
    for (const Volume& volume : pc.volumes)
        CheckIsOther(volume.image, path);
}

}  // namespace machine
