// Links on the way to a file that is written.
#pragma once

#include <filesystem>

// Where writing to that path ends: symbolic links are followed, to a file that is missing too.
std::filesystem::path WriteTarget(const std::filesystem::path& file);
