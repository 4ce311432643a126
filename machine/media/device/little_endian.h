// Integers in bytes. Bytes beyond the end read as zero, so that a damaged medium cannot lead out of bounds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace machine {

// Little-endian (Le) and big-endian (Be) integers.
uint8_t Byte(std::string_view bytes, size_t at);
uint16_t Le16(std::string_view bytes, size_t at);
uint32_t Le32(std::string_view bytes, size_t at);
uint64_t Le64(std::string_view bytes, size_t at);
uint16_t Be16(std::string_view bytes, size_t at);
uint32_t Be32(std::string_view bytes, size_t at);
uint64_t Be64(std::string_view bytes, size_t at);

// Replaces the bytes from `at` on, which must be there.
void PutLe32(std::string& bytes, size_t at, uint32_t number);
void PutLe64(std::string& bytes, size_t at, uint64_t number);

void AppendLe64(std::string& bytes, uint64_t number);

}  // namespace machine
