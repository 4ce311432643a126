// What a captured PC tells of its owner, for whoever sends it away.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"

// A line each.
std::vector<std::string> ContentsOf(const machine::Pc& pc);
