#include "machine/media/device/little_endian.h"

namespace machine {

uint8_t Byte(std::string_view bytes, size_t at) {
    return at < bytes.size() ? static_cast<uint8_t>(bytes[at]) : uint8_t{0};
}

uint16_t Le16(std::string_view bytes, size_t at) {
    return static_cast<uint16_t>(Byte(bytes, at) | Byte(bytes, at + 1) << 8);
}

uint32_t Le32(std::string_view bytes, size_t at) {
    return Le16(bytes, at) | uint32_t{Le16(bytes, at + 2)} << 16;
}

uint64_t Le64(std::string_view bytes, size_t at) {
    return Le32(bytes, at) | uint64_t{Le32(bytes, at + 4)} << 32;
}

uint16_t Be16(std::string_view bytes, size_t at) {
    return static_cast<uint16_t>(Byte(bytes, at) << 8 | Byte(bytes, at + 1));
}

uint32_t Be32(std::string_view bytes, size_t at) {
    return uint32_t{Be16(bytes, at)} << 16 | Be16(bytes, at + 2);
}

uint64_t Be64(std::string_view bytes, size_t at) {
    return uint64_t{Be32(bytes, at)} << 32 | Be32(bytes, at + 4);
}

void PutLe32(std::string& bytes, size_t at, uint32_t number) {
    for (size_t n = 0; n < sizeof number; ++n)
        bytes[at + n] = static_cast<char>(number >> 8 * n & 0xFF);
}

void PutLe64(std::string& bytes, size_t at, uint64_t number) {
    PutLe32(bytes, at, static_cast<uint32_t>(number));
    PutLe32(bytes, at + 4, static_cast<uint32_t>(number >> 32));
}

void AppendLe64(std::string& bytes, uint64_t number) {
    for (int shift = 0; shift < 64; shift += 8)
        bytes += static_cast<char>(number >> shift);
}

}  // namespace machine
