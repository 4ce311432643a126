// An emulated PC in the message of a failed comparison.
#pragma once

#include <iosfwd>

#include "machine/facts/pc.h"

namespace machine {

// Its description, escaped as a text, since GoogleTest then shows which lines differ.
void PrintTo(const Pc& pc, std::ostream* out);

}  // namespace machine
