// Raw disk images under the emulated PC: a file's partition table and file systems become the facts of a
// disk.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "machine/media/device/image_access.h"

namespace machine {

// Opens the image that disk.image names, and fills in the disk's size, style, signature or GUID, its
// partitions with their volumes and files, and where table changes go. Partitions described beforehand are
// matched by number: the image tells where they lie and what is on them, the description keeps letters, drive
// type and whatever else an image cannot tell.
//
// Throws ImageError, and has changed neither the disk nor one byte of the file then. Write and Overlay refuse
// NTFS volumes that are dirty or hibernated; Write locks the file for as long as the disk or a copy of it
// lives.
void AttachImage(Disk& disk, ImageAccess access);

// The PC whose disks 0, 1, ... are these images: SATA disks, with the letters that the running system gives.
// Throws ImageError.
Pc PcOfImages(const std::vector<std::string>& paths, SystemKind system, ImageAccess access);

}  // namespace machine
