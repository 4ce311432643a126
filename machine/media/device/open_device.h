// The device that is behind the name of an image.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "machine/media/device/block_device.h"

namespace machine {

// Before the program gives up starting others and loading code: starts and loads what the formats of these
// files need, or what any format needs. A library that is missing is reported by what opens the image. Throws
// ImageError if the process for virtual disks cannot be started.
void PrepareToOpen(const std::vector<std::string>& paths);
void PrepareToOpenAny();

// The error of a disk of this computer that is to be changed, which nobody has confirmed.
std::string NotConfirmed(const std::string& path);

// By what the file is. Throws ImageError; also for writing to a disk of this computer unless the user has
// confirmed that.
std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting, bool changesDisks);

}  // namespace machine
