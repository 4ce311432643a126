// The bytes of one volume, and the numbers in them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "machine/media/device/image_file.h"

namespace machine {

// No file that a recovery application reads is longer: a longer one has a damaged length, and must not take
// the memory of a sparse image's size.
inline constexpr uint64_t longestFile = uint64_t{256} << 20;

// A stretch of an image, in bytes.
class VolumeBytes {
  public:
    VolumeBytes(std::shared_ptr<const ImageFile> image, uint64_t offset, uint64_t size)
        : image_(std::move(image)), offset_(offset), size_(size) {}

    uint64_t Size() const { return size_; }
    // Nothing when a part of it lies outside the volume or cannot be read.
    std::optional<std::string> Read(uint64_t at, uint64_t length) const;

  private:
    std::shared_ptr<const ImageFile> image_;
    uint64_t offset_;
    uint64_t size_;
};

// Numbers in the order of their bytes on the medium, lowest first (Le) or highest first (Be). What lies
// beyond the end of the bytes counts as zero, so that a damaged medium leads nowhere else.
uint8_t Byte(std::string_view bytes, size_t at);
uint16_t Le16(std::string_view bytes, size_t at);
uint32_t Le32(std::string_view bytes, size_t at);
uint64_t Le64(std::string_view bytes, size_t at);
uint16_t Be16(std::string_view bytes, size_t at);

}  // namespace machine
