// The host's devices that hold nothing.
#pragma once

#include <sys/stat.h>
#include <sys/sysmacros.h>

// Minor numbers, as Linux gives them.
enum class MemoryDevice : unsigned {
    Null = 3,  // /dev/null takes everything that is written, and is empty
    Full = 7,  // /dev/full refuses everything that is written
};

inline bool IsMemoryDevice(const struct stat& status, MemoryDevice device) {
    constexpr unsigned memoryDevices = 1;
    return S_ISCHR(status.st_mode) && major(status.st_rdev) == memoryDevices &&
           minor(status.st_rdev) == static_cast<unsigned>(device);
}
