// Types of partitions as a reader of the picture knows them, also those of other systems.
#pragma once

#include <string>

#include "tools/kestova/reports/status.h"

// "hidden recovery (0x27)", as the report has it; of a type that the library does not know, what other
// systems call it: "Linux (0x83)", "Linux swap".
std::string TypeWords(const PartitionReport& partition);
