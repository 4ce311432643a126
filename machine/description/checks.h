// What must hold between the values of a description, each of which may be right in itself.
#pragma once

#include <string>

#include "machine/facts/pc.h"

namespace machine::description {

// Throws DescriptionError for the first contradiction: letters, names and numbers that stand twice,
// partitions that overlap or lie beyond the disk, and names and numbers of what is not described.
void CheckDescription(const Pc& pc, const std::string& file);

}  // namespace machine::description
