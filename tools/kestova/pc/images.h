// Opens disk images, if this build includes the image part.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "machine/media/disk_image.h"

// As machine::PcOfImages. Throws UnreadablePc; WrongUse if this build has no image part.
machine::Pc OpenImages(const std::vector<std::string>& paths, machine::SystemKind system,
                       machine::ImageAccess access);

// Inserts discs and sticks, each under its own letter. Throws as OpenImages.
void InsertMedia(machine::Pc& pc, const std::vector<std::string>& discs,
                 const std::vector<std::string>& sticks);

// Opens the images that a description names. Throws as OpenImages.
void AttachImages(machine::Pc& pc, machine::ImageAccess access);
