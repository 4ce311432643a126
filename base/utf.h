// Between the model's UTF-8 and the platform's UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "base/wide_string.h"

using WideView = std::basic_string_view<WCHAR>;

// Text that is no valid UTF comes out as "?".
WideString ToWide(std::string_view text);
std::string ToUtf8(WideView text);
// A null text counts as empty.
std::string ToUtf8(const WCHAR* text);
