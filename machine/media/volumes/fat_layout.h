// Where the parts of a FAT12, FAT16 or FAT32 volume are, according to its boot sector.
#pragma once

#include <optional>

#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/cluster_chain.h"

namespace machine {

// Offsets and sizes in bytes from the start of the volume.
struct FatLayout : ClusterLayout {
    uint32_t rootCluster = 0;  // on FAT32
    uint64_t tableSize = 0;
    uint64_t rootFolder = 0;  // on FAT12 and FAT16
    uint64_t rootFolderSize = 0;
};

// Nothing if no volume can have such a boot sector. Its parts may be beyond the end of what is there.
std::optional<FatLayout> ReadFatLayout(const VolumeBytes& bytes);

}  // namespace machine
