// Makes a volume of the facts from a file system on an image.
#pragma once

#include <memory>

#include "machine/facts/pc.h"
#include "machine/media/volumes/file_system.h"

namespace machine {

// The volume at that place. Its files are those on the image if this emulation reads the file system (NTFS,
// FAT, exFAT, UDF, ISO 9660); otherwise it has none.
Volume VolumeAt(const std::shared_ptr<ImageFile>& image, const FileSystem& fileSystem, uint64_t offset,
                uint64_t size);

}  // namespace machine
