// Splits and normalises the paths passed to a FileStore.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace machine {

// The names in the path, from the root; the empty path has none.
std::vector<std::string> NamesOf(std::string_view path);

// The path with single slashes between its names and none around them.
std::string Normalized(std::string_view path);

}  // namespace machine
