// What a file is, by its signature: a raw disk, a disk in another format, or something else.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

enum class OpenedBy { File, Nbd, Ewf };

struct ImageFormat {
    OpenedBy device = OpenedBy::File;
    std::string server = {};      // of Nbd: the name of the format, as qemu has it
    uint64_t bytesAfterDisk = 0;  // of File: what follows the disk in it
};

// Throws ImageError for a file that cannot be opened as a disk: what it is, and what to do. A file that
// cannot be read, or is none, passes as a raw disk.
ImageFormat FormatOf(const std::string& path);

}  // namespace machine
