// What the running Linux uses of a disk.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace machine {

// The folder of a disk or partition in sysfs.
std::string SysfsFolder(dev_t device);

// Who uses the disk or one of its partitions: "/dev/sdb1 is mounted on /mnt". Empty if nobody is known to.
// A loop device on it and a process that has it open for writing are users, too. Without sysfs only the disk
// itself is looked at, under the name that the user has for it.
std::string DiskUser(dev_t disk, const std::string& name);

}  // namespace machine
