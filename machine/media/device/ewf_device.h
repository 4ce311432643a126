// A disk in an E01 image of evidence, with all its segments. It is only read.
#pragma once

#include <memory>
#include <string>

#include <libewf.h>

#include "machine/media/device/block_device.h"

namespace machine {

// Loads the library that reads the format, as the first device does otherwise. Throws LibraryMissing.
void LoadEwf();

class EwfDevice final : public BlockDevice {
  public:
    // Of the first segment; the others are beside it. Throws ImageError if one is missing or damaged.
    explicit EwfDevice(const std::string& path);

    uint64_t Size() const override { return size_; }
    bool Read(uint64_t offset, void* buffer, size_t length) const override;
    bool Write(uint64_t offset, const void* bytes, size_t length) override;
    bool Flush() override { return true; }

  private:
    struct Freeing {
        void operator()(libewf_handle_t* handle) const;
    };
    std::unique_ptr<libewf_handle_t, Freeing> handle_;
    uint64_t size_ = 0;
};

}  // namespace machine
