// The OEM code page of the emulated PC, 437: what the command interpreter reads.
#pragma once

#include <string>
#include <string_view>

#include "base/utf.h"

namespace machine {

// What the code page lacks becomes "?".
std::string ToOem(WideView text);

}  // namespace machine
