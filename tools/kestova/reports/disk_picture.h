// All disks of the PC with their partitions and what is between them: the picture that `status` shows.
#pragma once

#include <vector>

#include "tools/kestova/operations/questions.h"
#include "tools/kestova/reports/status.h"

// Asks every disk that can be opened by its number for bus, model, size and table, in this order, and of the
// partitions of disks other than the internal one the letters. Of the internal disk's partitions, what the
// status has is taken. What cannot be read is a problem.
std::vector<DiskReport> ReadDisks(const StatusReport& status, Questions& questions);
