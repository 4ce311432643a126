#include "machine/api/wmi/disks.h"

#include <algorithm>

#include "base/text_case.h"

namespace machine {

namespace {

using Rows = std::vector<std::vector<WmiValue>>;

// The disks that WMI lists: first those in the PC's `wmiOrder`, then the others in the PC's order.
std::vector<const Disk*> ListedDisks(const Pc& pc) {
    std::vector<const Disk*> disks;
    const auto add = [&](const Disk& disk) {
        if (disk.wmi && std::find(disks.begin(), disks.end(), &disk) == disks.end()) disks.push_back(&disk);
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

Rows DiskDrives(const Pc& pc) {
    Rows rows;
    for (const Disk* disk : ListedDisks(pc)) {
        rows.push_back({TextOrAbsent(disk->wmi->deviceId), TextOrAbsent(disk->wmi->pnpDeviceId),
                        TextOrAbsent(disk->wmi->interfaceType), static_cast<int32_t>(disk->number)});
    }
    return rows;
}

// An object path; each backslash of the key is doubled.
WmiValue PathTo(std::string_view className, std::string_view deviceId) {
    std::string path = "\\\\PC\\root\\cimv2:" + std::string(className) + ".DeviceID=\"";
    for (const char unit : deviceId)
        path.append(unit == '\\' ? 2 : 1, unit);
    return path + "\"";
}

// One row per hop from each disk of that interface to its topmost controller. A hop that several disks
// share has one row.
Rows ControllerLinks(const Pc& pc, std::string_view interfaceType, std::string_view controllerClass) {
    Rows rows;
    for (const Disk* disk : ListedDisks(pc)) {
        if (!disk->wmi->pnpDeviceId || !SameName(disk->wmi->interfaceType.value_or(""), interfaceType))
            continue;
        std::string device = *disk->wmi->pnpDeviceId;
        for (const std::string& controller : disk->controllers) {
            std::vector<WmiValue> row = {PathTo(controllerClass, controller),
                                         PathTo("Win32_PnPEntity", device)};
            if (std::find(rows.begin(), rows.end(), row) == rows.end()) rows.push_back(std::move(row));
            device = controller;
        }
    }
    return rows;
}

}  // namespace

std::vector<WmiClass> DiskClasses() {
    const char* const space = "root\\cimv2";
    return {
        {space, "Win32_DiskDrive", {"DeviceID", "PNPDeviceID", "InterfaceType", "Index"}, DiskDrives, {}},
        {space,
         "Win32_IDEControllerDevice",
         {"Antecedent", "Dependent"},
         [](const Pc& pc) { return ControllerLinks(pc, "IDE", "Win32_IDEController"); },
         {}},
        {space,
         "Win32_SCSIControllerDevice",
         {"Antecedent", "Dependent"},
         [](const Pc& pc) { return ControllerLinks(pc, "SCSI", "Win32_SCSIController"); },
         {}},
    };
}

}  // namespace machine
