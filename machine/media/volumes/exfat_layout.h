// Where the parts of an exFAT volume are, according to its boot sector.
#pragma once

#include <optional>

#include "machine/media/device/volume_bytes.h"

namespace machine {

// In bytes from the start of the volume.
struct ExfatLayout {
    uint32_t clusters = 0;
    uint32_t rootCluster = 0;
    uint64_t clusterSize = 0;
    uint64_t table = 0;  // the allocation table in use
    uint64_t data = 0;   // cluster 2
    uint64_t end = 0;
};

// Nothing if it is not a boot sector of exFAT, or the checksum of the boot area is wrong: Windows mounts no
// such volume. Its parts may be beyond the end of what is there.
std::optional<ExfatLayout> ReadExfatLayout(const VolumeBytes& bytes);

// UTF-8, or empty; nothing without a layout.
std::optional<std::string> ExfatLabel(const VolumeBytes& bytes);

}  // namespace machine
