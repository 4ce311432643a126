// Names and labels as file systems store them.
#pragma once

#include <string>
#include <string_view>

namespace machine {

// UTF-8 of UTF-16 in little-endian (Le) and big-endian (Be) bytes; a last odd byte is left out.
std::string FromUtf16Le(std::string_view bytes);
std::string FromUtf16Be(std::string_view bytes);

// The text up to the first zero, without white space at its end.
std::string WithoutPadding(std::string text);

}  // namespace machine
