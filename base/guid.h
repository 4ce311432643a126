// GUIDs as initialised values and as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/windows_api.h"

// A GUID that is all zeros unless initialised otherwise. The platform's own == compares GUIDs.
struct Guid : GUID {
    Guid() : GUID{} {}
    Guid(const GUID& value) : GUID(value) {}
};

// "c12a7328-f81f-11d2-ba4b-00a0c93ec93b".
std::string GuidText(const GUID& guid);

// Parses that form, in any case, with or without braces; nothing for any other text.
std::optional<Guid> GuidFromText(std::string_view text);
