#include "base/hexadecimal.h"

#include <cstdio>

std::string Hex(uint64_t value, int digits, HexDigits letters) {
    char text[24];
    std::snprintf(text, sizeof text, letters == HexDigits::Upper ? "0x%0*llX" : "0x%0*llx", digits,
                  static_cast<unsigned long long>(value));
    return text;
}
