// Device set-up: the location of each disk.

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

struct Property {
    const char* name;
    DWORD number;
};

// The emulated PC has the first one only.
constexpr Property properties[] = {{"SPDRP_LOCATION_INFORMATION", SPDRP_LOCATION_INFORMATION},
                                   {"SPDRP_MAXIMUM_PROPERTY", SPDRP_MAXIMUM_PROPERTY}};

void ProbeProperty(Probes& probes, HDEVINFO set, SP_DEVINFO_DATA& device, const std::string& id,
                   const Property& property, DWORD size) {
    WideString text(size / sizeof(WCHAR) + 1, TEXT('\0'));
    DWORD type = 0;
    DWORD required = 0;
    const BOOL result = SetupDiGetDeviceRegistryPropertyW(
        set, &device, property.number, &type, size == 0 ? nullptr : reinterpret_cast<BYTE*>(text.data()),
        size, &required);
    std::string answer = TruthWords(result) + ", " + Count(required, "byte");
    if (result) answer += ", type " + std::to_string(type) + ": " + QuotedBuffer(text);
    probes.Add("SetupDiGetDeviceRegistryPropertyW",
               id + ", " + property.name + ", into " + Count(size, "byte"), answer);
}

void ProbeDevice(Probes& probes, const DeviceInfoSet& set, const WideString& id, DWORD recordSize) {
    SP_DEVINFO_DATA device = {};
    device.cbSize = recordSize;
    const BOOL result = SetupDiOpenDeviceInfoW(set.Get(), id.c_str(), nullptr, 0, &device);
    const std::string answer = TruthWords(result);
    // The size of the record is that of the program's word size.
    const bool isRightSize = recordSize == sizeof device;
    probes.Add("SetupDiOpenDeviceInfoW", Quoted(id) + (isRightSize ? "" : ", record of a wrong size"),
               answer);
    if (!result) return;
    for (const Property& property : properties) {
        for (const DWORD size : {0U, 2U, 1000U})
            ProbeProperty(probes, set.Get(), device, Quoted(id), property, size);
    }
}

}  // namespace

void ProbeDeviceSetup(Probes& probes, const std::vector<WideString>& deviceIds) {
    const DeviceInfoSet set(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    const std::string answer = set ? "given" : TruthWords(FALSE);
    probes.Add("SetupDiCreateDeviceInfoList", "null, null", answer);
    if (!set) return;
    for (const WideString& id : deviceIds)
        ProbeDevice(probes, set, id, sizeof(SP_DEVINFO_DATA));
    for (const WCHAR* const id : {TEXT(""), TEXT("ROOT\\NO_SUCH_DEVICE\\0000"), TEXT("no device id")})
        ProbeDevice(probes, set, id, sizeof(SP_DEVINFO_DATA));
    if (!deviceIds.empty()) ProbeDevice(probes, set, deviceIds.front(), sizeof(SP_DEVINFO_DATA) - 1);
}
