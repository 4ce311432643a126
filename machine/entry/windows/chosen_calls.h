// Selects whether the program's own platform calls go to the emulated PC or to Windows, in sources compiled
// with chosen_names.h.
#pragma once

namespace machine {

void ChooseEmulatedPc();
// The initial choice.
void ChooseWindows();

}  // namespace machine
