// Who else uses an image file, as far as the kernel shows it.
#pragma once

#include <sys/stat.h>

#include <string>

#include "machine/media/device/image_access.h"

namespace machine {

// The error of an image that has such a user.
ImageError InUse(const std::string& path, const std::string& user);

// The loop device that is on the file or disk: "/dev/loop3". Empty if none is known.
std::string LoopDeviceOn(const struct stat& backing);

// Who has attached or locked the file: "the loop device /dev/loop3 is on it". Empty if nobody is known to.
// Disturbs nobody. The descriptor may be open for reading only.
std::string KnownUser(int descriptor);

// Before the caller opens the file for writing: throws ImageError if another program holds it, or has it open
// for writing, with a lock or without. `descriptor` is open for reading only; as long as it stays open, it
// holds the lock among programs that know nothing of virtual machines.
void RefuseIfInUse(int descriptor, const std::string& path);

// Keeps other programs from changing the file as long as the descriptor is open, and virtual machines from
// opening it at all. Throws ImageError if another program was faster.
void LockForWriting(int descriptor, const std::string& path);

}  // namespace machine
