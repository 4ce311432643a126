// Random operations on a random PC.
#pragma once

#include <cstdint>
#include <string>

namespace randomly {

inline constexpr int operationsOnOnePc = 10;

// Makes the PC of the seed, one object, and calls that many operations. What contradicts the model, one line
// each; empty if nothing does.
std::string RunOnPc(uint64_t seed);

// So many operations from that seed on: one PC after another.
std::string RunMany(uint64_t operations, uint64_t seed);

}  // namespace randomly
