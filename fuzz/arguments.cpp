// The tool's command line, a word a line; no command is run.
#include <cstdint>
#include <sstream>

#include "tools/kestova/arguments/file_argument.h"
#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/operations/operations.h"
#include "tools/kestova/pc/fault_option.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::vector<std::string> words;
    for (std::string word; std::getline(lines, word);)
        words.push_back(word);
    try {
        const CommandLine line = ReadCommandLine(words);
        FindCommand(line);
        if (line.command == "call")
            ReadArguments(FindOperation(line.arguments[0]),
                          {line.arguments.begin() + 1, line.arguments.end()});
        if (line.command == "files") ReadFilePlace(line.arguments[0]);
        for (const std::string& fault : line.choice.faults)
            ReadFault(fault);
    } catch (const WrongUse&) {
        // A refusal is an answer.
    }
    return 0;
}
