// The OEM code page of the emulated PC, 437: that of the command interpreter, and of names on FAT volumes.
#pragma once

#include <string>
#include <string_view>

#include "base/utf.h"

namespace machine {

// A character missing from the code page becomes "?".
std::string ToOem(WideView text);

// UTF-8.
std::string FromOem(std::string_view bytes);

}  // namespace machine
