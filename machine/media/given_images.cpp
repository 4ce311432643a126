#include "machine/media/given_images.h"

#include <algorithm>
#include <filesystem>
#include <span>
#include <vector>

namespace machine {

namespace {

// In the PC's order.
std::vector<std::string> ImagesOf(const Pc& pc) {
    std::vector<std::string> paths;
    for (const Disk& disk : pc.disks) {
        if (!disk.image.empty()) paths.push_back(disk.image);
    }
    for (const Volume& volume : pc.volumes) {
        if (!volume.image.empty()) paths.push_back(volume.image);
    }
    return paths;
}

void CheckIsNoneOf(std::span<const std::string> given, const std::string& path) {
    const auto twin = std::ranges::find_if(given, [&](const std::string& other) {
        std::error_code missing;  // reported when the image is opened
        return std::filesystem::equivalent(other, path, missing);
    });
    if (twin != given.end()) throw ImageError(path + ": given twice, first as " + *twin);
}

}  // namespace

void CheckIsNew(const Pc& pc, const std::string& path) {
    CheckIsNoneOf(ImagesOf(pc), path);
}

void CheckEachIsNew(const Pc& pc) {
    const std::vector<std::string> paths = ImagesOf(pc);
    for (size_t index = 0; index < paths.size(); ++index)
        CheckIsNoneOf(std::span(paths).first(index), paths[index]);
}

}  // namespace machine
