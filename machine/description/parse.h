// The text of a description as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "machine/description/node.h"

namespace machine::description {

// Fails for text that is not JSON, that has a key twice in one object, or that would take much more memory
// than it has bytes.
Json Parse(const std::string& text, Source& source);

}  // namespace machine::description
