// The WMI classes about disks: the drives, and what they hang on.
#pragma once

#include "machine/api/wmi/class.h"

namespace machine {

std::vector<WmiClass> DiskClasses();

}  // namespace machine
