// A PC that is sent to others.
#pragma once

#include "machine/facts/pc.h"

// Puts stand-ins in the place of what tells whose PC it is: the name, signatures and GUIDs of disks and
// partitions, serial numbers in ids of devices, names of packs and partitions, labels but those that the
// library knows, and paths. Equal things have equal stand-ins, so that the library answers as before.
// Contents of INI files stay.
void MakeAnonymous(machine::Pc& pc);
