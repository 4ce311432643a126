// The image files that a PC is made of.
#pragma once

#include <string>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"

namespace machine {

// Throws ImageError when the PC has that file already, by whatever path: two disks over one file would each
// write what the other does not know of.
void CheckIsNew(const Pc& pc, const std::string& path);

// Throws ImageError when the PC names one file for two of its images.
void CheckEachIsNew(const Pc& pc);

}  // namespace machine
