// GUIDs of the model: compared as 16 bytes, written as text.
#pragma once

#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/windows_api.h"

struct Guid : GUID {
    Guid() : GUID{} {}
    Guid(const GUID& value) : GUID(value) {}
    bool operator==(const Guid& other) const { return std::memcmp(this, &other, sizeof(GUID)) == 0; }
};

// "c12a7328-f81f-11d2-ba4b-00a0c93ec93b".
std::string GuidText(const GUID& guid);

// Reads that form, in any case, with or without braces; nothing when the text is no GUID.
std::optional<Guid> GuidFromText(std::string_view text);
