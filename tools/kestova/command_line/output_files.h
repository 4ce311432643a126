// The files that the program writes, kept apart from those that it reads.
#pragma once

#include <optional>
#include <string>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/common/output_file.h"
#include "tools/kestova/pc/opened_pc.h"

// Those that the command line names.
struct OutputFiles {
    std::optional<OutputFile> log;
    std::optional<OutputFile> record;
    std::optional<OutputFile> save;
    std::optional<OutputFile> output;
};

// Changes nothing. Throws WrongUse when one of them names an image or its journal, the script, or another of
// them, when --log, --record or --output names the description, and when --save or --output names something
// other than a plain file, or a folder that does not exist. `script` may be empty.
OutputFiles FindOutputFiles(const CommandLine& line, const InputFiles& inputs, const std::string& script);
