// The device that is behind the name of an image.
#pragma once

#include <memory>
#include <string>

#include "machine/media/device/block_device.h"

namespace machine {

// By what the file is. Throws ImageError; also for writing to a disk of this computer unless the user has
// confirmed that.
std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting, bool changesDisks);

}  // namespace machine
