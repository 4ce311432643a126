// Random PCs in which every fact of the model can differ from its default.
#pragma once

#include <cstdint>

#include "machine/facts/pc.h"

// The same PC for the same seed: consistent, but not meaningful.
machine::Pc RandomPc(uint32_t seed);
