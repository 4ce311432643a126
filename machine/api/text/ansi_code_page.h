// The ANSI code page of the emulated PC, 1252.
#pragma once

#include <string>
#include <string_view>

#include "base/utf.h"

namespace machine {

WideString FromAnsi(std::string_view bytes);
// What the code page lacks becomes "?".
std::string ToAnsi(WideView text);

}  // namespace machine
