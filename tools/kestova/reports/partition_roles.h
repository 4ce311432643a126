// The roles of the partitions of the internal disk, and what else a recovery application asks first. Uses the
// public operations of the class only.
#pragma once

#include "tools/kestova/operations/questions.h"
#include "tools/kestova/reports/status.h"

// Adds the role that the type alone gives the partition.
void AddTypeRoles(PartitionReport& partition);

// Fills in the layout, the encrypted volumes, the recovery media, the cache partition and the installed
// Windows, and of each listed partition whether it is hidden and its roles. On an emulated PC it looks into
// the recovery partitions of a GPT disk and puts everything back; on the PC that the program runs on it gives
// no letters, so there only their type is known.
void AddRoles(StatusReport& status, Questions& questions);
