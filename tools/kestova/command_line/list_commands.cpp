// The commands that say what there is, and how to use it.

#include <iostream>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/command_line/completion.h"
#include "tools/kestova/command_line/help.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"

namespace commands {

int ListOperations(const CommandLine& line) {
    Show(line, Operations());
    return Done;
}

int ListPcs(const CommandLine& line) {
    Show(line, machine::NamedMachines());
    return Done;
}

int ListCalls(const CommandLine& line) {
    Show(line, machine::AllCalls());
    return Done;
}

int Help(const CommandLine& line) {
    ShowText(line, line.arguments.empty() ? HelpText() : HelpText(CommandOfName(line.arguments[0])));
    return Done;
}

int Completion(const CommandLine& line) {
    const std::string& first = line.arguments[0];
    if (first != "words") {
        std::cout << CompletionScript(first);
        return Done;
    }
    for (const Candidate& candidate : Complete({line.arguments.begin() + 1, line.arguments.end()}))
        std::cout << candidate.word << "\t" << candidate.meaning << "\n";
    return Done;
}

}  // namespace commands
