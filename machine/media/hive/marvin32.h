// The hash of the entries in a registry's transaction logs.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

#include "machine/media/device/little_endian.h"

namespace machine {

// Marvin32 with the seed that the registry uses.
inline uint64_t Marvin32(std::string_view bytes) {
    uint32_t low = 0x7A4E55C5;
    uint32_t high = 0x82EF4D88;
    const auto mix = [&](uint32_t number) {
        low += number;
        high ^= low;
        low = std::rotl(low, 20) + high;
        high = std::rotl(high, 9) ^ low;
        low = std::rotl(low, 27) + high;
        high = std::rotl(high, 19);
    };
    size_t at = 0;
    for (; bytes.size() - at >= 4; at += 4)
        mix(Le32(bytes, at));
    // The rest of the bytes is followed by one that ends them.
    mix(Le32(bytes, at) | uint32_t{0x80} << 8 * (bytes.size() - at));
    mix(0);
    return uint64_t{high} << 32 | low;
}

}  // namespace machine
