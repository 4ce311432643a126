// Disk images as tests copy and compare them: a few MiB of data in a file of some hundred, so that holes are
// skipped.
#pragma once

#include <cstdint>
#include <filesystem>

// Overwrites `to`.
void CopySparse(const std::filesystem::path& from, const std::filesystem::path& to);

// The number of bytes that differ; what one file has beyond the end of the other counts.
uint64_t Differences(const std::filesystem::path& left, const std::filesystem::path& right);

inline bool AreSame(const std::filesystem::path& left, const std::filesystem::path& right) {
    return Differences(left, right) == 0;
}
