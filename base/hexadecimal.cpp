#include "base/hexadecimal.h"

#include <cstdio>

std::string Hex(uint64_t value, int digits, HexDigits letters) {
    char text[24];
    std::snprintf(text, sizeof text, letters == HexDigits::Upper ? "0x%0*llX" : "0x%0*llx", digits,
                  static_cast<unsigned long long>(value));
    return text;
}

bool AreHexDigits(std::string_view text) {
    return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}
