// Attaches raw disk images to the emulated PC: the partition table and file systems of a file become the
// facts of a disk.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"
#include "machine/media/image/image_file.h"

namespace machine {

// Opens the image that disk.image names and fills in the disk's size, style, signature or GUID, its
// partitions with volumes and files, the object that receives table changes, and the medium that writes them.
// Partitions described in advance are matched by number: offsets and contents come from the image; letters,
// drive type and whatever else an image does not contain come from the description.
//
// Throws ImageError with the disk and the file unchanged. Write and Overlay refuse a damaged table, or with
// mayBeDamaged a change of that disk; a disk without a table is refused unless mayBeBlank; an NTFS
// volume in a wrong condition bars only changes of itself. Write locks the file as long as the disk or a copy
// of it exists.
void AttachImage(Disk& disk, const ImageUse& use);

// Finishes or takes back a change of the image that was interrupted; says which. With Overlay nothing is
// written. Throws ImageError with the file unchanged.
Recovery RecoverImage(const std::string& path, const ImageUse& use);

struct UndoneChange {
    bool isUndone = false;                // false: it was undone already
    std::string backup = {};              // of undoing; empty without one
    std::vector<std::string> notes = {};  // of Medium
};

// Takes back what a backup of an image's changes holds; with Overlay nothing is written. Throws ImageError
// with the file unchanged, also if something else has changed it since, or a volume is in no condition to be
// changed.
UndoneChange UndoImageChange(const std::string& path, const std::string& backup, const ImageUse& use);

struct RepairedTable {
    std::vector<std::string> problems = {};  // what was wrong
    std::string backup = {};                 // of the table before; empty without one
    std::vector<std::string> notes = {};     // of Medium
};

// Writes a GUID partition table anew from its good copy, as RepairTable of gpt_repair.h; with Overlay nothing
// is written. Throws ImageError with the file unchanged.
RepairedTable RepairImageTable(const std::string& path, const ImageUse& use);

// A PC with these images as disks 0, 1, ...: SATA disks, with the letters that the running system assigns.
// Throws ImageError.
Pc PcOfImages(const std::vector<std::string>& paths, SystemKind system, const ImageUse& use);

}  // namespace machine
