// A virtual disk in a file of another format than the raw one, read and written through qemu-nbd.
#pragma once

#include <string>

#include "machine/media/device/block_device.h"
#include "machine/media/device/descriptor.h"

struct nbd_handle;

namespace machine {

// Loads the library that speaks with the server, as the first device does otherwise. Throws LibraryMissing.
void LoadNbd();

class NbdDevice final : public BlockDevice {
  public:
    // `format` as qemu names it. For writing, locks the file against other users as long as this object
    // exists. Throws ImageError if the file is not permitted or damaged, or if qemu-nbd is not installed; for
    // writing also if it is in use.
    NbdDevice(const std::string& path, const std::string& format, bool forWriting);
    // Returns when the server has closed the file.
    ~NbdDevice() override;

    uint64_t Size() const override { return size_; }
    std::string OtherUser() const override { return otherUser_; }
    bool Read(uint64_t offset, void* buffer, size_t length) const override;
    // Whole sectors only.
    bool Write(uint64_t offset, const void* bytes, size_t length) override;
    bool Flush() override;

  private:
    void Connect(const std::string& path, const std::string& format, bool forWriting);
    void End();
    // What the server has written to standard error, when it has ended.
    std::string LastWords();

    Descriptor file_;  // holds the lock
    Descriptor said_;
    Descriptor process_;  // the server
    nbd_handle* handle_ = nullptr;
    uint64_t size_ = 0;
    std::string otherUser_;
};

}  // namespace machine
