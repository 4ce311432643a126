// GUIDs as values that begin as all zeros, and as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/windows_api.h"

// The platform's own == compares them.
struct Guid : GUID {
    Guid() : GUID{} {}
    Guid(const GUID& value) : GUID(value) {}
};

// "c12a7328-f81f-11d2-ba4b-00a0c93ec93b".
std::string GuidText(const GUID& guid);

// Reads that form, in any case, with or without braces; nothing when the text is no GUID.
std::optional<Guid> GuidFromText(std::string_view text);
