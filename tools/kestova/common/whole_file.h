// Replacing a file as a whole.
#pragma once

#include <string>

// Writes the text to a new file beside the target and renames it, so that the file holds either what it held
// or all of the text. Links are followed; a file that exists keeps its mode. False with nothing changed when
// that fails.
bool WriteWholeFile(const std::string& file, const std::string& text);
