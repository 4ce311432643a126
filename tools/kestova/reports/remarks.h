// What the state of a PC's disks will keep it from, although nothing has failed.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

// Of every disk. Looks at the PC aside: no fault is met, and nothing is changed.
std::vector<Finding> RemarksOn(OpenedPc& pc);
// Of one disk; nothing if it cannot be read.
std::vector<Finding> RemarksOn(OpenedPc& pc, int disk);

// After a switch back that succeeded: that the recovery partition of the disk is active still, as a record
// makes it that names it.
std::optional<Finding> StillRecovery(OpenedPc& pc, int disk);

// The faults that were never met.
std::vector<Finding> UnmetFaults(const std::vector<FaultCount>& faults);
