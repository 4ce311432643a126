// Other programs as tests start them.
#pragma once

#include <string>

// The command for a shell that finds no programs but those of packages.txt, on every machine alike.
std::string WithListedPrograms(const std::string& command);

// What the command writes to its standard output; a failure of the test if the command fails.
std::string OutputOf(const std::string& command);

// The exit status; -1 after a signal.
int StatusOf(const std::string& command);
