// The PC at hand as a description: whatever its platform calls answer that only ask.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"

struct CapturedPc {
    machine::Pc pc;
    std::vector<std::string> notes;  // what a description cannot say, a line each
};

// Changes nothing: no letter is given, and everything is opened for reading or for questions. A call that
// fails becomes its error in the description, or a fault. COM is initialised on the calling thread.
CapturedPc CapturePc();
