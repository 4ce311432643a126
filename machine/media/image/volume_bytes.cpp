#include "machine/media/image/volume_bytes.h"

namespace machine {

std::optional<std::string> VolumeBytes::Read(uint64_t at, uint64_t length) const {
    if (at > size_ || length > size_ - at) return std::nullopt;
    std::string bytes(static_cast<size_t>(length), '\0');
    if (!image_->Read(offset_ + at, bytes.data(), bytes.size())) return std::nullopt;
    return bytes;
}

}  // namespace machine
