// Numbers in hexadecimal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

enum class HexDigits { Upper, Lower };

// "0x27": at least that many digits.
std::string Hex(uint64_t value, int digits, HexDigits letters = HexDigits::Upper);

// Whether every character is one of 0 to 9, a to f and A to F. True of an empty text.
bool AreHexDigits(std::string_view text);
