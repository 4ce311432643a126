#include "tools/kestova/errors.h"
#include "tools/kestova/images.h"

machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       machine::ImageAccess access) {
    try {
        return machine::PcOfImages(paths, system, access);
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}

void AttachImages(machine::Pc& pc, machine::ImageAccess access) {
    try {
        for (machine::Disk& disk : pc.disks) {
            if (!disk.image.empty()) machine::AttachImage(disk, access);
        }
    } catch (const machine::ImageError& error) {
        throw UnreadablePc(error.what());
    }
}
