// The device set-up interface: sets of devices, by PNP device id, and the location text that a disk's
// driver reports. The devices are the disks that WMI lists and their controllers.

#include <algorithm>
#include <cstring>

#include "base/text_case.h"
#include "machine/api/call/handle_table.h"
#include "machine/api/call/outcome.h"

using namespace machine;

namespace {

constexpr const char* treeRoot = "HTREE\\ROOT\\0";  // the device of an empty id

struct DeviceSet {
    static constexpr const char* kind = "device info set";
    std::vector<std::string> devices;  // an element's DevInst is its position, from 1
};

using DeviceSets = HandleTable<DeviceSet>;

// The disk of that PNP device id, or null.
const Disk* FindDisk(const Pc& pc, std::string_view id) {
    const auto isIt = [&](const Disk& disk) {
        return disk.wmi && disk.wmi->pnpDeviceId && SameName(*disk.wmi->pnpDeviceId, id);
    };
    const auto found = std::find_if(pc.disks.begin(), pc.disks.end(), isIt);
    return found != pc.disks.end() ? &*found : nullptr;
}

bool IsController(const Pc& pc, std::string_view id) {
    return std::any_of(pc.disks.begin(), pc.disks.end(), [&](const Disk& disk) {
        return std::any_of(disk.controllers.begin(), disk.controllers.end(),
                           [&](const std::string& controller) { return SameName(controller, id); });
    });
}

uint32_t OpenDevice(EmulatedPc& pc, HDEVINFO handle, const std::string& id, SP_DEVINFO_DATA* element) {
    DeviceSet* const set = DeviceSets::Of(pc).Find(handle);
    if (set == nullptr) return ERROR_INVALID_HANDLE;
    if (element != nullptr && element->cbSize != sizeof *element) return ERROR_INVALID_USER_BUFFER;
    if (!id.empty() && FindDisk(pc.facts, id) == nullptr && !IsController(pc.facts, id))
        return ERROR_NO_SUCH_DEVINST;
    set->devices.push_back(id.empty() ? treeRoot : id);
    if (element == nullptr) return ERROR_SUCCESS;
    element->ClassGuid = GUID{};
    element->DevInst = static_cast<DWORD>(set->devices.size());
    element->Reserved = 0;
    return ERROR_SUCCESS;
}

// The device id of an element; null if the record is not an element of the set.
const std::string* FindElement(const DeviceSet& set, const SP_DEVINFO_DATA* element) {
    if (element == nullptr || element->cbSize != sizeof *element) return nullptr;
    const bool known = element->DevInst >= 1 && element->DevInst <= set.devices.size();
    return known ? &set.devices[element->DevInst - 1] : nullptr;
}

// The caller's output buffers for a property.
struct PropertyAnswer {
    DWORD* type;
    BYTE* buffer;
    DWORD size;
    DWORD* required;
};

uint32_t ReturnProperty(EmulatedPc& pc, HDEVINFO handle, const SP_DEVINFO_DATA* element, DWORD property,
                        const PropertyAnswer& answer) {
    const DeviceSet* const set = DeviceSets::Of(pc).Find(handle);
    if (set == nullptr) return ERROR_INVALID_HANDLE;
    const std::string* const id = FindElement(*set, element);
    if (id == nullptr) return ERROR_INVALID_PARAMETER;
    if (property >= SPDRP_MAXIMUM_PROPERTY) return ERROR_INVALID_REG_PROPERTY;
    const Disk* const disk = FindDisk(pc.facts, *id);
    if (property != SPDRP_LOCATION_INFORMATION || disk == nullptr) return ERROR_INVALID_DATA;
    if (!disk->location.value) return disk->location.error;

    const WideString text = ToWide(*disk->location.value);
    const DWORD size = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
    if (answer.type != nullptr) *answer.type = REG_SZ;
    if (answer.required != nullptr) *answer.required = size;
    if (answer.buffer == nullptr || answer.size < size) return ERROR_INSUFFICIENT_BUFFER;
    std::memcpy(answer.buffer, text.c_str(), size);
    return ERROR_SUCCESS;
}

}  // namespace

// Creates an empty set, which the caller destroys with SetupDiDestroyDeviceInfoList.
extern "C" HDEVINFO WINAPI SetupDiCreateDeviceInfoList(const GUID* deviceClass, HWND window) {
    NoteUnshown("SetupDiCreateDeviceInfoList", [&] {
        return Arguments{Presence(deviceClass), Presence(window)};
    });
    return Answer<HDEVINFO>("SetupDiCreateDeviceInfoList", {},
                            [](EmulatedPc& pc) { return DeviceSets::Of(pc).Open(pc, {}); });
}

// Adds a device to the set; an empty id is the root of the device tree. Error 6 for a set that is not open,
// 1004 for unknown flags, 1784 for a record without its size, 0xE000020B for a device that does not exist.
extern "C" BOOL WINAPI SetupDiOpenDeviceInfoW(HDEVINFO set, PCWSTR id, HWND window, DWORD flags,
                                              PSP_DEVINFO_DATA element) {
    const std::string name = ToUtf8(id);
    constexpr DWORD known = DIOD_INHERIT_CLASSDRVS | DIOD_CANCEL_REMOVE;
    NoteUnshown("SetupDiOpenDeviceInfoW", [&] { return Arguments{Presence(window), Hex(flags)}; });
    return Answer<BOOL>("SetupDiOpenDeviceInfoW", {name}, [&](EmulatedPc& pc) {
        return Outcome(
            pc, (flags & ~known) != 0 ? uint32_t{ERROR_INVALID_FLAGS} : OpenDevice(pc, set, name, element));
    });
}

// A disk's location text with its terminator; sizes are in bytes. Error 122 for a short buffer, with the
// required size; 13 for another property or a device other than a disk, 6 for a set that is not open, 87
// for a record that is not an element of the set, 0xE0000209 for an invalid property, and the error from
// the disk's facts.
extern "C" BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, PSP_DEVINFO_DATA element,
                                                         DWORD property, PDWORD type, PBYTE buffer,
                                                         DWORD size, PDWORD required) {
    if (required != nullptr) *required = 0;
    NoteUnshown("SetupDiGetDeviceRegistryPropertyW", [&] {
        return Arguments{Presence(type), Presence(buffer), Presence(required)};
    });
    return Answer<BOOL>(
        "SetupDiGetDeviceRegistryPropertyW", {std::to_string(property), std::to_string(size)},
        [&](EmulatedPc& pc) {
            return Outcome(pc, ReturnProperty(pc, set, element, property, {type, buffer, size, required}));
        });
}

// Error 6 for a set that is not open, which is a violation in the ledger.
extern "C" BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set) {
    return Answer<BOOL>("SetupDiDestroyDeviceInfoList", {}, [&](EmulatedPc& pc) {
        return Outcome(pc, DeviceSets::Of(pc).Close(pc, set) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
    });
}
