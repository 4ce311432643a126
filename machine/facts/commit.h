// The media of all disks of a PC.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace machine {

// Commits every medium. Returns the first problem, empty if there is none.
std::string CommitMedia(const Pc& pc);

}  // namespace machine
