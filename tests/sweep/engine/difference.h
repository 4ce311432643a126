// In what two states of a PC differ.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "machine/facts/pc.h"

namespace sweep {

// "active flag", "letter", "type", "file", "registry", "other": empty if they do not differ.
std::set<std::string> Differences(const machine::Pc& left, const machine::Pc& right);

// The numbers of the disks that differ.
std::set<uint32_t> DifferentDisks(const machine::Pc& left, const machine::Pc& right);

// Disk and partition of every active flag.
using Flags = std::set<std::pair<uint32_t, uint32_t>>;
Flags ActiveFlags(const machine::Pc& pc);

}  // namespace sweep
