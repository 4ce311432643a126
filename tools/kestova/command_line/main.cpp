// kestova: the recovery library on the command line.

#include <iostream>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/command_line/commands.h"
#include "tools/kestova/command_line/confinement.h"
#include "tools/kestova/command_line/help.h"
#include "tools/kestova/command_line/program_start.h"
#include "tools/kestova/command_line/version.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/images.h"

namespace {

int Run(const CommandLine& line) {
    if (line.help) {
        std::cout << (line.command.empty() ? HelpText() : HelpText(CommandOfName(line.command)));
        return Done;
    }
    if (line.version) {
        std::cout << VersionText();
        return Done;
    }
    return FindCommand(line).run(line);
}

int Complain(const std::exception& error, ExitStatus status) {
    std::cerr << "kestova: " << PrintableText(error.what()) << "\n";
    return status;
}

// The operation is complete, but its report is lost: the exit status must show that.
int CheckOutput(int status) {
    if (std::cout.flush()) return status;
    std::cerr << "kestova: standard output cannot be written\n";
    return Failure;
}

}  // namespace

int main(int count, char** words) {
    try {
        const CommandLine line = ReadCommandLine(StartProgram(count, words));
        BeginOpening(line.choice);
        ConfineAtStart();
        return CheckOutput(Run(line));
    } catch (const WrongUse& error) {
        std::cerr << "kestova: " << PrintableText(error.what()) << "\n(kestova --help tells what there is)\n";
        return WrongUseStatus;
    } catch (const UnreadablePc& error) {
        return Complain(error, UnreadablePcStatus);
    } catch (const std::bad_alloc&) {
        return Complain(std::runtime_error("out of memory"), Failure);
    } catch (const std::exception& error) {
        return Complain(error, Failure);
    }
}
