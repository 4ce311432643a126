// What a file is, by its signature: a raw disk, a disk in another format, or something else.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

struct ImageFormat {
    std::string server = {};      // the name of the format to open it with, as qemu has it; empty: a raw disk
    uint64_t bytesAfterDisk = 0;  // of a raw disk: what follows it in the file
};

// Throws ImageError for a file that cannot be opened as a disk: what it is, and what to do. A file that
// cannot be read, or is none, passes as a raw disk.
ImageFormat FormatOf(const std::string& path);

}  // namespace machine
