// Keeps the files that the program writes apart from those that it reads.
#pragma once

#include <string>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/pc/opened_pc.h"

// Throws WrongUse when --log or --save names an image, the script, or each other, when --log names the
// description, and when --save names something other than a plain file, or a folder that does not exist.
// `script` may be empty.
void CheckOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script);
