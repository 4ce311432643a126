// Random operations on a random PC.
#pragma once

#include <cstdint>
#include <string>

#include "machine/facts/pc.h"
#include "machine/generation/choice.h"

namespace randomly {

inline constexpr int operationsOnOnePc = 10;

// The PC of a seed, with the numbers that its operations go on with. Half of them are wild ones.
machine::Pc PcOf(machine::Choice& choice);

// Makes the PC of the seed, one object, and calls that many operations. What contradicts the model, one line
// each; empty if nothing does.
std::string RunOnPc(uint64_t seed);

// So many operations from that seed on: one PC after another.
std::string RunMany(uint64_t operations, uint64_t seed);

}  // namespace randomly
