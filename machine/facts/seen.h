// What of a PC its own system can show.
#pragma once

#include "machine/facts/pc.h"

namespace machine {

// The same PC without what no call of the platform shows that leaves everything as it is: the name, faults,
// switches, the shell, files for which the library does not look, contents of others than INI files, the hive
// of another system, and values that another fact hides, like the location of a disk that WMI does not list.
// What can be written in several ways is written in one. Disks are in the order in which the service lists
// them. Of volumes on images only what the description adds is known here.
Pc Seen(Pc pc);

}  // namespace machine
