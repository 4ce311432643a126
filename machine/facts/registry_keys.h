// Registry keys as plain data, of the running system or of an unmounted hive.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace machine {

struct RegistryValue {
    uint32_t type = 1;  // REG_SZ: UTF-8 data, stored as UTF-16 with a terminator; other types: bytes
    std::string data;
    bool operator==(const RegistryValue&) const = default;
};

// Keys by path ("HKLM\\SYSTEM\\MountedDevices"), values by name; lookups ignore case.
using RegistryKeys = std::map<std::string, std::map<std::string, RegistryValue>>;

}  // namespace machine
