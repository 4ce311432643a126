// What a program of this platform does before anything else.
#pragma once

#include <string>
#include <vector>

// Prepares the standard streams, which carry UTF-8 with plain line feeds, and answers the words of the
// command line in UTF-8, the program's own name left out.
std::vector<std::string> StartProgram(int count, char** words);
