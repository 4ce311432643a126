// The PCs on which every operation is swept.
#pragma once

#include <vector>

#include "machine/facts/pc.h"

namespace sweep {

struct NamedPc {
    const char* name;
    machine::Pc (*make)();
};

// A setting of an active flag leaves the other flags as they are; the sweep makes it exclusive as well.
const std::vector<NamedPc>& Machines();

}  // namespace sweep
