// Writes a GUID partition table anew from its good copy.
#pragma once

#include <string>
#include <vector>

#include "machine/media/image/image_file.h"

namespace machine {

// Writes both copies of the table and its protective MBR as they belong on a disk of this length; the boot
// code, the signature and the partitions of a hybrid MBR stay. Returns what was wrong, as ReadTable has it;
// empty, and nothing is written, if nothing is. The image's next commit puts it on the medium. Throws
// ImageError if there is no GUID partition table, neither copy can be used, or the partitions do not fit the
// disk.
std::vector<std::string> RepairTable(ImageFile& image);

}  // namespace machine
