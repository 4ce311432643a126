// Discs and sticks on images: the volumes of a PC without a disk. They are opened for reading only.
#pragma once

#include <string>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"

namespace machine {

// Inserts a disc, ISO 9660 or UDF, into an optical drive of the PC. Its letter is the first free one from
// C; none if all are in use. Throws ImageError with the PC unchanged.
void InsertDisc(Pc& pc, const std::string& path);

// The same for a stick in a removable drive: a single FAT, exFAT, NTFS or UDF volume, or a partition table,
// of which Windows shows the first readable partition.
void InsertStick(Pc& pc, const std::string& path);

// Opens the image that volume.image names, as a disc or a stick by volume.driveType. File system, label and
// files come from the image, the rest from the description. Throws ImageError, also for a drive that is
// neither optical nor removable.
void AttachMedium(Volume& volume);

}  // namespace machine
