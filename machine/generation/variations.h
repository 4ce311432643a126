// What differs between a machine as it is shipped and a PC in the field.
#pragma once

#include "machine/facts/pc.h"
#include "machine/generation/choice.h"

namespace machine {

// Changes some facts of one of the machines that come with the tool.
void Vary(Pc& pc, Choice& choice);

}  // namespace machine
