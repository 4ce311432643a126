// The differences between two states of a PC, in words.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"
#include "tools/kestova/pc/watched_store.h"

// Wraps the store of every volume on a disk image so that it records changes; Changes needs that.
void WatchFiles(machine::Pc& pc);
// Begins another state for Since::Mark.
void MarkFiles(const machine::Pc& pc);

// Active flags, partition types, letters and files, in the order of disks and partitions. `before` is a copy
// taken after WatchFiles, or after the last MarkFiles.
std::vector<std::string> Changes(const machine::Pc& before, const machine::Pc& after, Since since);
