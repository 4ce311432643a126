// Numbers in hexadecimal.
#pragma once

#include <cstdint>
#include <string>

enum class HexDigits { Upper, Lower };

// "0x27": at least that many digits.
std::string Hex(uint64_t value, int digits, HexDigits letters = HexDigits::Upper);
