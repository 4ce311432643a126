// kestova: the recovery library on the command line.

#include <iostream>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/command_line/help.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/version.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/output_schema.h"
#include "tools/kestova/pc/images.h"
#include "tools/kestova/process/confinement.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/process/program_start.h"

namespace {

std::string SchemaOf(const Command& command) {
    const CommandOutput* const output = FindOutput(command.name);
    if (output == nullptr) throw WrongUse(std::string(command.name) + " writes no JSON");
    return OutputSchema(*output);
}

int Run(const CommandLine& line) {
    if (line.help) {
        std::cout << (line.command.empty() ? HelpText() : HelpText(CommandOfName(line.command)));
        return Done;
    }
    if (line.version) {
        std::cout << VersionText();
        return Done;
    }
    if (line.schema) {
        std::cout << (line.command.empty() ? DescriptionSchema() : SchemaOf(CommandOfName(line.command)));
        return Done;
    }
    return FindCommand(line).run(line);
}

// The operation is complete, but its report is lost: the exit status must show that. Nothing is said of a
// reader that has seen enough, like head.
int CheckOutput(const CommandLine& line, int status) {
    if (std::cout.flush()) return status;
    if (IsOutputAbandoned()) return status == Done ? int{OutputAbandoned} : status;
    return ShowProblem(line, "standard output cannot be written");
}

// Over what is on the line already: progress, or a terminal's ^C.
std::string LastWordsOnTerminal(bool json, const std::string& message, int status) {
    return (StandardError().isRewritten ? std::string(clearLine) : "") + ErrorText(json, message, status);
}

int RunWords(const std::vector<std::string>& words, const LastWords& lastWords) {
    const CommandLine line = ReadCommandLine(words);
    BeginOpening(line.choice, {.readsHives = ReadsHives(line), .hashesFiles = line.hash});
    ExpectInterruption(lastWords);  // the process that opens virtual disks goes on without it
    if (!StartsProcesses(line)) ConfineAtStart();
    return CheckOutput(line, Run(line));
}

int Complain(bool json, const std::string& message, ExitStatus status) {
    ShowError(json, message, status);
    return status;
}

// Runs the words, and maps what it throws to a message and a status.
int RunAndComplain(const std::vector<std::string>& words, bool json, const LastWords& lastWords) {
    try {
        return RunWords(words, lastWords);
    } catch (const Interrupted&) {
        return Failure;
    } catch (const WrongUse& error) {
        ShowError(json, error.what(), WrongUseStatus);
        if (!json) std::cerr << "(kestova --help tells what there is)\n";
        return WrongUseStatus;
    } catch (const UnreadablePc& error) {
        return Complain(json, error.what(), UnreadablePcStatus);
    } catch (const std::bad_alloc&) {
        return Complain(json, "out of memory", Failure);
    } catch (const std::exception& error) {
        return Complain(json, error.what(), Failure);
    }
}

}  // namespace

int main(int count, char** words) {
    try {
        const std::vector<std::string> typed = StartProgram(count, words);
        const bool json = WantsJson(typed);
        const auto lastWords = [json](const std::string& message, int status) {
            return LastWordsOnTerminal(json, message, status);
        };
        const int status = RunAndComplain(typed, json, lastWords);
        EndIfInterrupted(lastWords);
        return status;
    } catch (const std::exception& error) {
        return Complain(false, error.what(), Failure);
    }
}
