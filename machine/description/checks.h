// Checks the consistency of a description whose values are valid each by itself.
#pragma once

#include "machine/description/node.h"
#include "machine/facts/pc.h"

namespace machine::description {

// Reports contradictions: duplicate letters, names and numbers, partitions
// that overlap or exceed the disk, references to something that is not described.
void CheckDescription(const Pc& pc, const Source& source);

}  // namespace machine::description
