#include "machine/facts/wmi_disks.h"

#include <algorithm>

#include "base/text_case.h"

namespace machine {

std::vector<const Disk*> DisksOfWmi(const Pc& pc) {
    std::vector<const Disk*> disks;
    const auto add = [&](const Disk& disk) {
        if (disk.wmi && std::ranges::count(disks, &disk) == 0) disks.push_back(&disk);
    };
    for (const uint32_t number : pc.wmiOrder) {
        for (const Disk& disk : pc.disks) {
            if (disk.number == number) add(disk);
        }
    }
    for (const Disk& disk : pc.disks)
        add(disk);
    return disks;
}

std::optional<ControllerKind> KindOfControllers(const Disk& disk) {
    if (disk.controllerKind || !disk.wmi) return disk.controllerKind;
    const std::string type = disk.wmi->interfaceType.value_or("");
    if (SameName(type, "IDE")) return ControllerKind::Ide;
    return SameName(type, "SCSI") ? std::optional(ControllerKind::Scsi) : std::nullopt;
}

}  // namespace machine
