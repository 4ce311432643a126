// A range of the disk in bytes, with its name for messages.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

struct Region {
    std::string name;  // "partition 2"
    uint64_t offset = 0;
    uint64_t size = 0;
};

bool IsWithin(const Region& inner, const Region& outer);

}  // namespace machine
