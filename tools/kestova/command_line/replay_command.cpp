// The command that runs the library again on a recording.

#include <fstream>

#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/input_file.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/json/taped_operations.h"

namespace {

constexpr const char* construction = "Kestova";
constexpr const char* destruction = "~Kestova";

Replay ReadRecording(const std::string& file) {
    std::ifstream recording = OpenInput(file);
    if (!recording) throw UnreadablePc(file + ": cannot be read");
    try {
        return Replay(recording, file);
    } catch (const DamagedRecording& damaged) {
        throw UnreadablePc(damaged.what());
    }
}

size_t RunOne(const CommandLine& line, Session& session, const Replay::Operation& recorded) {
    const Operation& operation = FindOperation(recorded.name);
    OperationReport report = session.Call(operation, ArgumentsOf(operation, recorded));
    report.changes.reset();  // of the PC that nobody asked
    Show(line, report);
    return 1;
}

// To "GetDriveLetter", whichever arguments it has, or to "GetDriveLetter 0 2".
bool GoToNamed(Replay& replay, const std::string& named) {
    const bool hasArguments = named.find(' ') != std::string::npos;
    return hasArguments ? GoTo(replay, ReadCall(named)) : replay.GoTo(FindOperation(named).name);
}

// All that follow, or those that are named. Construction comes before and destruction after them.
size_t RunRecorded(const CommandLine& line, Session& session, Replay& replay) {
    size_t count = 0;
    const std::vector<std::string> named(line.arguments.begin() + 1, line.arguments.end());
    for (const std::string& name : named) {
        if (!GoToNamed(replay, name))
            throw WrongUse(line.arguments[0] + ": no " + name + " is recorded from there on");
        if (const auto next = replay.NextOperation()) count += RunOne(line, session, *next);
    }
    if (!named.empty()) {
        replay.GoTo(destruction);
        return count;
    }
    for (auto next = replay.NextOperation(); next && next->name != destruction; next = replay.NextOperation())
        count += RunOne(line, session, *next);
    return count;
}

}  // namespace

namespace commands {

int Replay(const CommandLine& line) {
    ::Replay replay = ReadRecording(line.arguments[0]);
    if (const auto first = replay.NextOperation(); !first || first->name != construction)
        throw UnreadablePc(line.arguments[0] + ": no object of the library is made at its beginning");
    CommandLine onNobody = line;
    onNobody.choice = {};
    onNobody.choice.pc = "factory-mbr";  // no platform call of the library reaches it
    size_t count = 0;
    const int status = RunOnPc(
        onNobody,
        {.initialize = false, .script = line.arguments[0], .replay = &replay, .run = [&](Session& session) {
             count = RunRecorded(line, session, replay);
             return int{Done};
         }});
    if (!replay.Problem().empty()) return ShowProblem(line, replay.Problem());
    if (!line.json) {
        ShowText(line, "As recorded: " + Count(count, "operation") + ", " +
                           Count(replay.Calls(), "platform call") + ".\n");
    }
    return status;
}

}  // namespace commands
