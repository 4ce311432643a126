// The help of the program and of each command. It fits a terminal of 80 columns.
#pragma once

#include <string>

#include "tools/kestova/command_line/commands.h"

// Commands, options and exit statuses.
std::string HelpText();

// One command: what it does, the options that it uses, its results, examples.
std::string HelpText(const Command& command);
