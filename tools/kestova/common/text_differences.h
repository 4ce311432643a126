// Where two texts differ.
#pragma once

#include <string>

// The text; of a long one what stands around the first place at which the other differs from it.
std::string AroundDifference(const std::string& text, const std::string& other);
