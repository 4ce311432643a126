#include "tools/kestova/capture/mounted_devices.h"

#include "base/owners.h"
#include "base/utf.h"
#include "tools/kestova/capture/registry_value.h"

void CaptureMountedDevices(const WCHAR* hive, const std::string& path, machine::RegistryKeys& keys) {
    RegistryKey key;
    const WideString name = WideString(hive) + TEXT("\\MountedDevices");
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, name.c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS) return;
    auto& values = keys[path];
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const std::string device = std::string("\\DosDevices\\") + letter + ":";
        auto value = ReadValue(key.Get(), ToWide(device).c_str());
        if (!value) continue;
        if (value->type == REG_SZ) value->data = TextOf(*value);
        values.emplace(device, *std::move(value));
    }
}
