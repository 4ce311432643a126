// What the command interpreter does with a batch file.
#pragma once

#include <string_view>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Carries out the `reg` lines of a batch up to its end or `exit`; every other command does nothing. Each
// stands in the journal as "reg", with its words and its exit code.
void RunBatch(EmulatedPc& pc, std::string_view content);

}  // namespace machine
