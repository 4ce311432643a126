// Paths as they come to a FileStore.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace machine {

// The names of the path, from the root on; the empty path has none.
std::vector<std::string> NamesOf(std::string_view path);

// The path with one slash between its names and none around them.
std::string Normalized(std::string_view path);

}  // namespace machine
