// The OEM code page of the emulated PC, 437, which the command interpreter reads.
#pragma once

#include <string>
#include <string_view>

#include "base/utf.h"

namespace machine {

// A character missing from the code page becomes "?".
std::string ToOem(WideView text);

}  // namespace machine
