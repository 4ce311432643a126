// What the journal leaves out, because its text is what people read and scripts parse: sizes, flags and
// credentials that no answer depends on, and the order of releases. Only tests ask for it.
#pragma once

#include <string>
#include <vector>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Adds a call's remaining arguments to those of the earlier calls of that name.
void NoteUnshown(const std::string& call, std::vector<std::string> arguments);

// The remaining arguments of each call of that name since the journal was emptied, in order; empty for a call
// of which the journal has them all. "IUnknown::Release" has the interface, and the call before it.
std::vector<std::vector<std::string>> UnshownArguments(EmulatedPc& pc, const std::string& call);

}  // namespace machine
