// The image files of a PC, each of which may be used once.
#pragma once

#include <string>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"

namespace machine {

// Throws ImageError if the PC already uses that file, by whatever path: two disks on one file would
// overwrite each other's changes.
void CheckIsNew(const Pc& pc, const std::string& path);

// Throws ImageError if the PC uses one file for two of its images.
void CheckEachIsNew(const Pc& pc);

}  // namespace machine
