// Places in a registry hive, which its transaction logs share. All numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "machine/media/device/little_endian.h"

namespace machine {

// Of the header, "regf".
inline constexpr size_t hiveBegun = 4;      // sequence number of the last change that was begun
inline constexpr size_t hiveCompleted = 8;  // sequence number of the last change that was completed
inline constexpr size_t hiveBinsSize = 40;
inline constexpr size_t hiveSum = 508;

inline constexpr size_t hiveBins = 4096;  // where the bins begin
inline constexpr size_t hivePage = 4096;  // of which bins are multiples

// The checksum of the header: over the 127 numbers before it.
inline uint32_t HeaderSum(std::string_view hive) {
    uint32_t sum = 0;
    for (size_t at = 0; at < hiveSum; at += sizeof(uint32_t))
        sum ^= Le32(hive, at);
    return sum;
}

}  // namespace machine
