// A disk image in a regular file.
#pragma once

#include <string>

#include "machine/media/device/block_device.h"
#include "machine/media/device/descriptor.h"
#include "machine/media/device/in_use.h"

namespace machine {

// The file. Throws ImageError if it is missing or not permitted.
Descriptor OpenImage(const std::string& path, bool forWriting);

class FileDevice final : public BlockDevice {
  public:
    // For writing, locks the file against other users as long as this object exists. Throws ImageError if it
    // is missing, a folder, empty, shorter than a sector or not permitted; for writing also if it is in use.
    FileDevice(const std::string& path, bool forWriting, uint64_t bytesAfterDisk = 0);

    uint64_t Size() const override { return size_; }
    std::string OtherUser() const override { return KnownUser(descriptor_.Number()); }
    std::string Flaw() const override;
    bool Read(uint64_t offset, void* buffer, size_t length) const override;
    bool Write(uint64_t offset, const void* bytes, size_t length) override;
    bool Flush() override;

  private:
    void Check(const std::string& path, uint64_t bytesAfterDisk);

    Descriptor descriptor_;
    uint64_t size_ = 0;
    bool isWhole_ = true;  // in sectors; what follows the last of them is not read
};

}  // namespace machine
