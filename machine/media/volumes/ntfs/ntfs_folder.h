// What is in a folder of an NTFS volume.
#pragma once

#include <cstdint>
#include <vector>

#include "machine/facts/file_store.h"
#include "machine/media/volumes/ntfs/ntfs_device.h"
#include "machine/media/volumes/ntfs/ntfs_library.h"

namespace machine {

// Adds the entries, without the file system's own files and without second names in 8.3 form. `range` is that
// of the volume, which may be read further for them. The platform's error, 0 is success.
uint32_t ListFolder(ntfs_inode& folder, ImageRange& range, std::vector<FileEntry>& entries);

}  // namespace machine
