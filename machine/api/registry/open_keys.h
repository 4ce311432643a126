// The objects behind the key handles of RegOpenKeyExW, and which keys exist.
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

// Whether the key is at the path or below it, ignoring case.
bool IsAtOrBelow(const std::string& key, const std::string& path);

// Whether a key exists at the path ("HKLM\\SYSTEM"). A key with subkeys exists.
bool KeyExists(const Pc& pc, const std::string& path);

}  // namespace machine
