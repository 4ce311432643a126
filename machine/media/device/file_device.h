// A disk image in a regular file.
#pragma once

#include <string>

#include "machine/media/device/block_device.h"

namespace machine {

class FileDevice final : public BlockDevice {
  public:
    // For writing, locks the file against other writers as long as this object exists. Throws ImageError if
    // it is missing, a folder, empty, not a whole number of sectors, not permitted or locked.
    FileDevice(const std::string& path, bool forWriting);
    ~FileDevice() override;

    uint64_t Size() const override { return size_; }
    bool Read(uint64_t offset, void* buffer, size_t length) const override;
    bool Write(uint64_t offset, const void* bytes, size_t length) override;
    bool Flush() override;

  private:
    void Check(const std::string& path, bool forWriting);
    bool IsInside(uint64_t offset, size_t length) const;

    int descriptor_ = -1;
    uint64_t size_ = 0;
};

}  // namespace machine
