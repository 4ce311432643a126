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

// What its signature alone says, without a look at the rest. A file that can be refused in the end has one,
// too.
OpenedBy SignedFor(const std::string& path);

// Throws ImageError for a file that cannot be opened as a disk: what it is, and what to do. A file that
// cannot be read, or is none, passes as a raw disk.
ImageFormat FormatOf(const std::string& path);

}  // namespace machine
