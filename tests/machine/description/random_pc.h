// PCs made at random, in which every fact that the model has can take other values than its default.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"

// The same PC for the same seed. It contradicts itself nowhere, but makes no sense otherwise.
machine::Pc RandomPc(uint32_t seed);
