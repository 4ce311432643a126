// What happened while an operation ran.
#pragma once

#include <string>
#include <vector>

#include "machine/journal/journal.h"

// Platform calls and log records, in the order in which they happened.
using Trace = std::vector<machine::JournalEntry>;

// "IVdsPack::QueryDisks() = S_OK", "log 1  ...".
std::string TraceLine(const machine::JournalEntry& entry);
