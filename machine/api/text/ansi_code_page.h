// The ANSI code page of the emulated PC, 1252.
#pragma once

#include <string>
#include <string_view>

#include "base/utf.h"

namespace machine {

WideString FromAnsi(std::string_view bytes);
// A character missing from the code page becomes "?".
std::string ToAnsi(WideView text);

}  // namespace machine
