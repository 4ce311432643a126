// Disk images, where this build can open them.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "machine/media/disk_image.h"

// The PC of machine::PcOfImages. Throws UnreadablePc; WrongUse when this build has no image part.
machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       machine::ImageAccess access);

// Puts discs and sticks into the PC, each with a letter of its own. Throws as OpenImages.
void InsertMedia(machine::Pc& pc, const std::vector<std::string>& discs,
                 const std::vector<std::string>& sticks);

// Opens the images that a description names. Throws as OpenImages.
void AttachImages(machine::Pc& pc, machine::ImageAccess access);
