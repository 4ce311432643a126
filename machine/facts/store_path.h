// Splits and normalises the paths passed to a FileStore.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace machine {

// The names in the path, from the root; the empty path has none.
std::vector<std::string> NamesOf(std::string_view path);

// The path of these names, with single slashes between them and none around them.
std::string Joined(const std::vector<std::string>& names);

// The path in that form.
std::string Normalized(std::string_view path);

// The folder that contains a normalised path; empty for the root.
std::string FolderOf(const std::string& normalized);

}  // namespace machine
