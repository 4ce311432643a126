// Where the parts of an exFAT volume are, according to its boot sector.
#pragma once

#include <optional>

#include "machine/media/device/volume_bytes.h"
#include "machine/media/volumes/cluster_chain.h"

namespace machine {

struct ExfatLayout : ClusterLayout {
    uint32_t rootCluster = 0;
};

// Nothing if it is not a boot sector of exFAT, or the checksum of the boot area is wrong: Windows mounts no
// such volume. Its parts may be beyond the end of what is there.
std::optional<ExfatLayout> ReadExfatLayout(const VolumeBytes& bytes);

}  // namespace machine
