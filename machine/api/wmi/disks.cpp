#include "machine/api/wmi/disks.h"

#include <algorithm>

#include "machine/facts/wmi_disks.h"

namespace machine {

namespace {

using Rows = std::vector<std::vector<WmiValue>>;

Rows DiskDrives(const Pc& pc) {
    Rows rows;
    for (const Disk* disk : DisksOfWmi(pc)) {
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

// One row per hop from each disk of that kind to its topmost controller. A hop that several disks share has
// one row.
Rows ControllerLinks(const Pc& pc, ControllerKind kind, std::string_view controllerClass) {
    Rows rows;
    for (const Disk* disk : DisksOfWmi(pc)) {
        if (!disk->wmi->pnpDeviceId || KindOfControllers(*disk) != kind) continue;
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
         [](const Pc& pc) { return ControllerLinks(pc, ControllerKind::Ide, "Win32_IDEController"); },
         {}},
        {space,
         "Win32_SCSIControllerDevice",
         {"Antecedent", "Dependent"},
         [](const Pc& pc) { return ControllerLinks(pc, ControllerKind::Scsi, "Win32_SCSIController"); },
         {}},
    };
}

}  // namespace machine
