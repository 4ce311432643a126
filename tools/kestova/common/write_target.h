// Resolves the links in the path of an output file.
#pragma once

#include <filesystem>

// The file that writing to this path creates or changes: symbolic links are followed, also to a missing file.
std::filesystem::path WriteTarget(const std::filesystem::path& file);
