// A disk whose writes are recorded, so that a power cut after any of them can be played back; it can fail on
// request.
#pragma once

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "machine/media/device/block_device.h"

namespace machine {

// A write, or a flush, which has no bytes.
struct DiskWrite {
    uint64_t offset = 0;
    std::string bytes;

    bool IsFlush() const { return bytes.empty(); }
};

// Shared with the device, which the image owns.
struct DiskRecord {
    std::vector<DiskWrite> writes;
    size_t failsFrom = SIZE_MAX;   // writes and flushes from that one on fail,
    size_t failsBelow = SIZE_MAX;  // up to that one
};

class RecordingDevice final : public BlockDevice {
  public:
    RecordingDevice(std::unique_ptr<BlockDevice> disk, std::shared_ptr<DiskRecord> record)
        : disk_(std::move(disk)), record_(std::move(record)) {}

    uint64_t Size() const override { return disk_->Size(); }
    bool Read(uint64_t offset, void* buffer, size_t length) const override {
        return disk_->Read(offset, buffer, length);
    }
    bool Write(uint64_t offset, const void* bytes, size_t length) override {
        return Succeeds({offset, std::string(static_cast<const char*>(bytes), length)}) &&
               disk_->Write(offset, bytes, length);
    }
    bool Flush() override { return Succeeds({}) && disk_->Flush(); }

  private:
    bool Succeeds(const DiskWrite& write) {
        const size_t number = record_->writes.size();
        record_->writes.push_back(write);
        errno = EIO;
        return number < record_->failsFrom || number >= record_->failsBelow;
    }

    std::unique_ptr<BlockDevice> disk_;
    std::shared_ptr<DiskRecord> record_;
};

}  // namespace machine
