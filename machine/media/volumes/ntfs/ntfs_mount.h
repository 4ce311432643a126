// The mounted volume of an NtfsVolume.
#pragma once

#include <cstdint>
#include <string>

#include "machine/media/volumes/ntfs/ntfs_inode.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"

namespace machine {

class NtfsVolume::Mount {
  public:
    Mount(ImageFile& image, uint64_t offset, uint64_t size, bool isReadOnly);
    ~Mount();
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    // Null if it cannot be mounted, or refers to itself.
    ntfs_volume* Volume() const { return range_.isUsedUp ? nullptr : volume_; }
    Condition FoundCondition() const;
    // What the next operation may read.
    void Renew();
    ImageRange& Range() { return range_; }

    // Null, with errno set, if there is none.
    InodeOwner Open(const std::string& path) const;
    // The same by any spelling of the path; the error if there is none, or the volume cannot be mounted.
    uint32_t Find(std::string_view path, InodeOwner& inode) const;
    // The volume counts as dirty while its change is being written.
    void MarkAsChanging() const;
    // Creates an empty file in an existing folder. Paths are normalised; errors as those of FileStore.
    uint32_t Create(const std::string& path) const;
    uint32_t Delete(const std::string& path) const;
    // Passes on to the image what libntfs-3g still caches.
    uint32_t Flush() const;

  private:
    ImageRange range_;
    ntfs_volume* volume_ = nullptr;
    int error_ = 0;  // the errno of mounting it
};

}  // namespace machine
