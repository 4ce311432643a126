// The ANSI code page of the emulated PC, 1252.
#pragma once

#include <string>
#include <string_view>

namespace machine {

std::u16string FromAnsi(std::string_view bytes);
// What the code page lacks becomes "?".
std::string ToAnsi(std::u16string_view text);

}  // namespace machine
