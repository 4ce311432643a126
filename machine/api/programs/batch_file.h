// Runs batch files as the command interpreter does.
#pragma once

#include <string_view>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Executes the `reg` lines of a batch file up to its end or `exit`; all other commands do nothing. The
// journal lists each as "reg" with its words and its exit code.
void RunBatch(EmulatedPc& pc, std::string_view content);

}  // namespace machine
