// Shares the items of a sweep out to processes: one emulated PC can exist in each.
#pragma once

#include <string>
#include <vector>

#include "tests/sweep/engine/sweep.h"

namespace sweep {

struct Swept {
    Tally tally;
    std::vector<std::string> crashes;  // what a process that died, or hung, was doing
};

Swept SweepInProcesses(const std::vector<Item>& items, const Sample& sample, unsigned processes);

}  // namespace sweep
