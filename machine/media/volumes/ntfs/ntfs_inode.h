// Open files of a mounted NTFS volume. Errors are the platform's codes, 0 is success.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "machine/media/volumes/ntfs/ntfs_device.h"
#include "machine/media/volumes/ntfs/ntfs_library.h"

namespace machine {

// Of the library's errno.
uint32_t PlatformError(int error);

// Frees a file whose changes could not be written. The library keeps such a file open, to try again.
void Abandon(ntfs_inode* inode);

// Writes what is left of its changes, and closes it also if that fails.
uint32_t Close(ntfs_inode* inode);

struct InodeClose {
    void operator()(ntfs_inode* inode) const { Close(inode); }
};
using InodeOwner = std::unique_ptr<ntfs_inode, InodeClose>;

bool IsFolder(const ntfs_inode& inode);
// $MFT and the like, which Windows does not open for anybody.
bool IsSystemFile(const ntfs_inode& inode);
// Whether Windows denies reading it as a file, or changing it.
bool IsClosed(const ntfs_inode& inode);
bool IsClosedForChange(const ntfs_inode& inode);

// Bytes of content; nothing if that is damaged.
std::optional<uint64_t> LengthOf(ntfs_inode& inode);

// The content in parts. `range` is that of the volume, which may be read further for it. Error 1392 for one
// that is longer than `longest` bytes.
uint32_t ReadParts(ntfs_inode& inode, ImageRange& range, uint64_t longest,
                   const std::function<void(std::string_view)>& take);
uint32_t ReadContent(ntfs_inode& inode, ImageRange& range, std::string& content);
uint32_t WriteContent(ntfs_inode& inode, std::string_view content);

}  // namespace machine
