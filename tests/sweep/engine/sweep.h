// The sweep: every task on every PC, with every fault.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tests/sweep/engine/machines.h"
#include "tests/sweep/engine/tally.h"
#include "tests/sweep/engine/tasks.h"

namespace sweep {

// A part of the faults, chosen by the seed; the same seed chooses the same part.
struct Sample {
    uint64_t seed = 0;
    double part = 1;  // of all

    bool Has(const std::string& fault) const;
};

// One task on one PC.
struct Item {
    const NamedPc* pc;
    const Task* task;
};

std::vector<Item> AllItems();

// How many faults an item has, without the pairs.
uint64_t CountFaults(const Item& item);

// Runs an item; `about` is called with the words for each run before it begins.
void Sweep(const Item& item, const Sample& sample, Tally& tally,
           const std::function<void(const std::string&)>& about);

}  // namespace sweep
