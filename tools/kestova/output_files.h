// Guards what the program reads against what it is asked to write.
#pragma once

#include <filesystem>
#include <string>

#include "tools/kestova/command_line.h"
#include "tools/kestova/opened_pc.h"

// Where writing to that path ends: symbolic links are followed, to a file that is missing too.
std::filesystem::path WriteTarget(const std::filesystem::path& file);

// Throws WrongUse when --log or --save names an image, the script, or each other, when --log names the
// description, and when --save names something that is no plain file or lies in no folder. `script` may be
// empty.
void CheckOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script);
