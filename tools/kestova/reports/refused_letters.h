// Which partitions the library could not give a letter, by the platform calls that it made.
#pragma once

#include <cstdint>
#include <set>

#include "tools/kestova/pc/trace.h"

// Offsets of the partitions that one operation wanted to give a letter and that never got one.
std::set<int64_t> RefusedLetters(const Trace& trace);
