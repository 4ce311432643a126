// The files that the library looks for.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/facts/file_tree.h"

// The content of a file; nothing if there is none. What stands in the way of reading it is noted.
std::optional<std::string> ReadSmallFile(const std::string& path, std::vector<std::string>& notes);

// Those below a root ("C:\\", "\\\\?\\Volume{...}\\"): which of them exist, and the content of the one that
// is read.
machine::FileTree CapturedFiles(const std::string& root, std::vector<std::string>& notes);
