// Identifies the file system of a volume by what is recorded on it, and reads its label.
#pragma once

#include <optional>
#include <string>

#include "machine/media/image/volume_bytes.h"

namespace machine {

struct FileSystem {
    // As GetVolumeInformationW reports it: "NTFS", "FAT32", "FAT", "exFAT", "ReFS", "BitLocker"; on discs
    // "UDF" and "CDFS".
    std::string kind;
    std::string label;  // UTF-8
};

enum class MediumKind { Disk, Disc };

// The file system, of those that Windows expects on that kind of medium; nothing if Windows would not
// recognise it.
std::optional<FileSystem> FileSystemOf(const VolumeBytes& bytes, MediumKind medium);

}  // namespace machine
