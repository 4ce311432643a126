// The WMI classes about disks: the drives and their controllers.
#pragma once

#include "machine/api/wmi/class.h"

namespace machine {

std::vector<WmiClass> DiskClasses();

}  // namespace machine
