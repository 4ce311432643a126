// The OEM code page of the emulated PC, 437: what the command interpreter reads.
#pragma once

#include <string>
#include <string_view>

namespace machine {

// What the code page lacks becomes "?".
std::string ToOem(std::u16string_view text);

}  // namespace machine
