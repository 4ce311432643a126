// Atomic replacement of a file.
#pragma once

#include <string>

// Replaces the file atomically: writes the text to a new file beside the target and renames it. Follows
// links; an existing file keeps its mode. False if that fails; the target is then unchanged.
bool WriteWholeFile(const std::string& file, const std::string& text);
