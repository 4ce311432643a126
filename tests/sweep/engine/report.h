// What a sweep has done, as text.
#pragma once

#include <string>

#include "tests/sweep/engine/tally.h"

namespace sweep {

// A line for each operation and one for all: PCs, calls, faults, runs, breaches.
std::string Report(const Tally& tally);

}  // namespace sweep
