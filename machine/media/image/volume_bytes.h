// The bytes of one volume on an image.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "machine/media/device/little_endian.h"
#include "machine/media/image/image_file.h"

namespace machine {

// No file that a recovery application reads is longer. A longer one has a damaged length; reading it from a
// sparse image could exhaust memory.
inline constexpr uint64_t longestFile = uint64_t{256} << 20;

// A range of an image, in bytes.
class VolumeBytes {
  public:
    VolumeBytes(std::shared_ptr<const ImageFile> image, uint64_t offset, uint64_t size)
        : image_(std::move(image)), offset_(offset), size_(size) {}

    uint64_t Size() const { return size_; }
    // Nothing if any part is outside the volume or cannot be read.
    std::optional<std::string> Read(uint64_t at, uint64_t length) const;

  private:
    std::shared_ptr<const ImageFile> image_;
    uint64_t offset_;
    uint64_t size_;
};

}  // namespace machine
