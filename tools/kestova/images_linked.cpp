#include "tools/kestova/errors.h"
#include "tools/kestova/images.h"

machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       machine::ImageAccess access) {
    try {
        machine::Pc pc = machine::PcOfImages(paths, system, access);
        // A disk with two active flags boots nothing: on a real one the flag moves.
        pc.switches.activeFlagIsExclusive = true;
        return pc;
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
