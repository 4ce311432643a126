// The device that is behind the name of an image.
#pragma once

#include <memory>
#include <string>

#include "machine/media/device/block_device.h"

namespace machine {

// By what the file is. Throws ImageError.
std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting);

}  // namespace machine
