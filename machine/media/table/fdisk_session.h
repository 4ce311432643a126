// One visit of libfdisk to an image: its context, without dialogs and without a word on the terminal.
#pragma once

#include <libfdisk/libfdisk.h>

#include <memory>
#include <optional>
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
    // Reads the table; `readOnly` keeps libfdisk from writing whatever happens. Throws ImageError when the
    // file cannot be read.
    FdiskSession(const ImageFile& image, bool readOnly);
    FdiskSession(const FdiskSession&) = delete;
    FdiskSession& operator=(const FdiskSession&) = delete;

    fdisk_context* Context() const { return context_.get(); }
    // What libfdisk found wrong with the table, in its words.
    const std::vector<std::string>& Warnings() const { return warnings_; }
    // The partition in that slot; null when the slot is unused.
    FdiskOwner<fdisk_partition> Slot(size_t slot) const;
    // The slot of the partition, not an extended one, that starts there.
    std::optional<size_t> SlotAt(uint64_t offset) const;

  private:
    std::vector<std::string> warnings_;
    FdiskOwner<fdisk_context> context_;
};

// Starts and sizes of libfdisk are in these.
inline constexpr uint64_t fdiskSectorSize = 512;

}  // namespace machine
