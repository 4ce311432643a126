// Guards what the program reads against what it is asked to write.
#pragma once

#include <string>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/pc/opened_pc.h"

// Throws WrongUse when --log or --save names an image, the script, or each other, when --log names the
// description, and when --save names something that is no plain file or lies in no folder. `script` may be
// empty.
void CheckOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script);
