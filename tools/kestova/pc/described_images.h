// What a description says of images before it is read as one.
#pragma once

#include <optional>
#include <string>
#include <vector>

// The images that the description in a file names, found by its text alone: it is read when the program is
// confined. None for a file that cannot be a description; nothing if its text does not show them, as it is a
// pipe or has names in escapes.
std::optional<std::vector<std::string>> DescribedImages(const std::string& file);
