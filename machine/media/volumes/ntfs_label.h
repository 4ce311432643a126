// The label of an NTFS volume, without the NTFS library, which would mount every volume of a PC for it.
#pragma once

#include <optional>
#include <string>

#include "machine/media/image/volume_bytes.h"

namespace machine {

// UTF-8, or empty; nothing if boot sector or file table are not those of NTFS.
std::optional<std::string> NtfsLabel(const VolumeBytes& bytes);

}  // namespace machine
