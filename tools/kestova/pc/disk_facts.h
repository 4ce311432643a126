// What an emulated PC knows of its disks beyond the answers of published calls.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/facts/pc.h"

struct PartitionFacts {
    int number = 0;  // as Windows counts
    // Each is nothing where it is unknown, or there is nothing of the kind.
    std::optional<int> slot = {};  // in the table of an image
    std::optional<std::string> label = {};
    std::optional<std::string> fileSystem = {};
    std::optional<std::string> condition = {};  // one of volume_condition
};

struct DiskFacts {
    bool countsAsSata = false;  // an image, whatever adapter its disk had
    std::string model = {};     // of a disk of this computer; else empty
    std::string serial = {};    // the same
    std::vector<PartitionFacts> partitions = {};
};

// Conditions of a volume, in words that scripts may rest on. All but the first one bar a change of it.
namespace volume_condition {
inline constexpr const char* clean = "clean";
inline constexpr const char* dirty = "dirty";
inline constexpr const char* inconsistent = "inconsistent";
inline constexpr const char* hibernated = "hibernated";
inline constexpr const char* damaged = "damaged";
inline constexpr const char* encrypted = "BitLocker";
inline constexpr const char* unreadable = "unreadable";
}  // namespace volume_condition

// The partitions of that disk; none if there is no such disk.
std::vector<PartitionFacts> PartitionFactsOf(const machine::Pc& pc, int disk);
