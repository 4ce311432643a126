// What the program says on standard error.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/command_line/command_line.h"

// A note or a remark; nothing if it is empty.
void ShowMessage(const std::string& message);
void ShowMessages(const std::vector<std::string>& messages);

// What makes the program end with that status. With --json it is an object of its own line.
void ShowError(bool json, const std::string& message, int status);

// The same for what could not be found out; Done if `problem` is empty, else Failure.
int ShowProblem(const CommandLine& line, const std::string& problem);
