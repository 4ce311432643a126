// The platform-specific start of the program, and its end.
#pragma once

#include <string>
#include <vector>

// Sets the standard streams to UTF-8 with plain line feeds, and returns the words of the command line in
// UTF-8, without the program's name.
std::vector<std::string> StartProgram(int count, char** words);

// Whether standard output is a pipe that nobody reads any more.
bool IsOutputAbandoned();
