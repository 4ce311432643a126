// What the key handles of RegOpenKeyExW stand for, and which keys there are.
#pragma once

#include <string>

#include "machine/api/call/handle_table.h"

namespace machine {

struct OpenKey {
    static constexpr const char* kind = "registry key";
    std::string path;  // "HKLM\\SYSTEM"
    REGSAM access = 0;
};

using OpenKeys = HandleTable<OpenKey>;

// Whether the key is that of the path, or one below it, in any case.
bool IsAtOrBelow(const std::string& key, const std::string& path);

// Whether there is a key of that path ("HKLM\\SYSTEM"). What has a key below it exists.
bool KeyExists(const Pc& pc, const std::string& path);

}  // namespace machine
