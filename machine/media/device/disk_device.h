// A disk of the computer that this program runs on.
#pragma once

#include <string>

#include "machine/media/device/block_device.h"
#include "machine/media/device/descriptor.h"

namespace machine {

class DiskDevice final : public BlockDevice {
  public:
    // For writing, claims the disk as file systems do, as long as this object exists. Throws ImageError for
    // a partition, an empty drive, or a disk that is not permitted; for writing also for one that is
    // read-only, or of which something is mounted, swapped on, part of another device, or claimed.
    DiskDevice(const std::string& path, bool forWriting);
    // Makes the kernel read the table again if something was written.
    ~DiskDevice() override;

    uint64_t Size() const override { return size_; }
    std::optional<uint32_t> SectorSize() const override { return sectorSize_; }
    std::string OtherUser() const override;
    bool Read(uint64_t offset, void* buffer, size_t length) const override;
    bool Write(uint64_t offset, const void* bytes, size_t length) override;
    bool Flush() override;

  private:
    void Measure(const std::string& path);

    std::string path_;
    Descriptor descriptor_;
    uint64_t size_ = 0;
    uint32_t sectorSize_ = 0;
    bool isWritten_ = false;
};

}  // namespace machine
