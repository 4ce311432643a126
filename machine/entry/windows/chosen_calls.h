// Whom the platform calls of the program itself reach, in its sources that choose.
#pragma once

namespace machine {

void ChooseEmulatedPc();
// As it is at first.
void ChooseWindows();

}  // namespace machine
