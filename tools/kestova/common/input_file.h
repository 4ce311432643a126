// Opens a file that the program reads as a whole.
#pragma once

#include <fstream>
#include <string>

// A stream that has failed if the file cannot be opened. Throws UnreadablePc for a named pipe or a device:
// reading it could wait for ever. The pipe of a shell's process substitution and /dev/null are read.
std::ifstream OpenInput(const std::string& file);
