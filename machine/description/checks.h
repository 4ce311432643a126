// Checks the consistency of a description whose values are valid each by itself.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace machine::description {

// Throws DescriptionError for the first contradiction: duplicate letters, names and numbers, partitions
// that overlap or exceed the disk, references to something that is not described.
void CheckDescription(const Pc& pc, const std::string& file);

}  // namespace machine::description
