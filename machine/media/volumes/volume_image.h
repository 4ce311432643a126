// A file system on an image as the volume that a letter could open.
#pragma once

#include <memory>

#include "machine/facts/pc.h"
#include "machine/media/volumes/file_system_probe.h"

namespace machine {

// The volume that lies there. Its files are those on the image where this system reads its file system: NTFS,
// FAT, UDF and ISO 9660; others have none.
Volume VolumeAt(const std::shared_ptr<ImageFile>& image, const FileSystem& fileSystem, uint64_t offset,
                uint64_t size);

}  // namespace machine
