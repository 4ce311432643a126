// Conversion between UTF-8 and the platform's UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "base/wide_string.h"

using WideView = std::basic_string_view<WCHAR>;

// Text that is not valid UTF becomes "?".
WideString ToWide(std::string_view text);
std::string ToUtf8(WideView text);
// The empty text for null.
std::string ToUtf8(const WCHAR* text);
