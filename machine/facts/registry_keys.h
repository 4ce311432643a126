// Registry keys as plain data, of the running system or of a hive that is not mounted.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace machine {

struct RegistryValue {
    uint32_t type = 1;  // REG_SZ: data are UTF-8 and stored as UTF-16 with a terminator; other types: bytes
    std::string data;
    bool operator==(const RegistryValue&) const = default;
};

// Keys by path ("HKLM\\SYSTEM\\MountedDevices"), values by name; both are looked up without regard to case.
using RegistryKeys = std::map<std::string, std::map<std::string, RegistryValue>>;

}  // namespace machine
