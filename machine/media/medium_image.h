// Discs and sticks as images: the volumes of a PC that lie on no disk of it. They are only ever read.
#pragma once

#include <string>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"

namespace machine {

// Puts a disc, ISO 9660 or UDF, into an optical drive of the PC. Its letter is the first free one from C on;
// it has none when all are taken. Throws ImageError, and the PC is as it was then.
void InsertDisc(Pc& pc, const std::string& path);

// The same with a stick in a removable drive: a single FAT or NTFS volume, or a partition table, of which
// Windows shows the first partition that it can read.
void InsertStick(Pc& pc, const std::string& path);

// Opens the image that volume.image names, as a disc or a stick by volume.driveType: the image tells file
// system, label and files, the description keeps the rest. Throws ImageError, also when the drive is neither
// an optical nor a removable one.
void AttachMedium(Volume& volume);

}  // namespace machine
