// Random PCs of which every one is valid. Most are the machines that come with the tool with something
// changed, as PCs in the field are; some are wild.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"
#include "machine/generation/choice.h"

namespace machine {

// The next one of these numbers. It has no name.
Pc RandomPc(Choice& choice);

// PC `number` of a seed, whatever others are made; its name is "generated SEED/NUMBER".
Pc GeneratedPc(uint64_t seed, uint64_t number);

}  // namespace machine
