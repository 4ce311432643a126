// Between the model's UTF-8 and the platform's UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "platform/windows_api.h"

namespace machine {

// Text that is no valid UTF comes out as "?".
std::basic_string<WCHAR> ToWide(std::string_view text);
std::string ToUtf8(std::basic_string_view<WCHAR> text);
// A null text counts as empty.
std::string ToUtf8(const WCHAR* text);

}  // namespace machine
