// The size of the sectors that a partition table counts in.
#pragma once

#include <cstdint>

#include "machine/media/image/image_file.h"

namespace machine {

inline constexpr uint64_t largeSectorSize = 4096;

// 512 or 4096 bytes: what the device or the user says; else where a GUID partition table is; else where the
// MBR leads to a volume of such sectors; else 512.
uint64_t SectorSizeOf(const ImageFile& image);

}  // namespace machine
