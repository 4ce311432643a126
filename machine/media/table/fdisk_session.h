// A libfdisk context for an image, without dialogs or terminal output.
#pragma once

#include <libfdisk/libfdisk.h>

#include <memory>
#include <string>
#include <vector>

#include "machine/media/device/image_file.h"

namespace machine {

struct FdiskRelease {
    void operator()(fdisk_context* context) const { fdisk_unref_context(context); }
    void operator()(fdisk_partition* partition) const { fdisk_unref_partition(partition); }
    void operator()(fdisk_parttype* type) const { fdisk_unref_parttype(type); }
};

template <typename T>
using FdiskOwner = std::unique_ptr<T, FdiskRelease>;

class FdiskSession {
  public:
    // Reads the table. Throws ImageError if the file cannot be read.
    explicit FdiskSession(const ImageFile& image);
    FdiskSession(const FdiskSession&) = delete;
    FdiskSession& operator=(const FdiskSession&) = delete;

    fdisk_context* Context() const { return context_.get(); }
    // libfdisk's warnings about the table.
    const std::vector<std::string>& Warnings() const { return warnings_; }
    // The partition in the slot; null if the slot is unused.
    FdiskOwner<fdisk_partition> Slot(size_t slot) const;

  private:
    std::vector<std::string> warnings_;
    FdiskOwner<fdisk_context> context_;
};

}  // namespace machine
