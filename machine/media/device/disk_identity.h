// What a disk of this computer is, for the people who are to confirm that they mean this one.
#pragma once

#include <cstdint>
#include <string>

namespace machine {

struct DiskIdentity {
    std::string model = {};   // as the kernel or udev know it; empty if neither does
    std::string serial = {};  // the same
    uint64_t bytes = 0;       // 0 if it cannot be opened
};

// Whether the path, or what it links to, is a disk, a partition of one, or a drive.
bool IsDisk(const std::string& path);

DiskIdentity IdentityOf(const std::string& path);

}  // namespace machine
