// The commands that ask about a PC.

#include <algorithm>
#include <iterator>

#include "base/utf.h"
#include "tools/kestova/arguments/file_argument.h"
#include "tools/kestova/capture/anonymous.h"
#include "tools/kestova/capture/captured_pc.h"
#include "tools/kestova/capture/contents.h"
#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/page_format.h"
#include "tools/kestova/command_line/run_on_pc.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/descriptions/description_text.h"
#include "tools/kestova/picture/columns.h"
#include "tools/kestova/picture/making_time.h"
#include "tools/kestova/picture/report.h"
#include "tools/kestova/picture/status_text.h"

namespace {

StatusLook LookOf(const CommandLine& line) {
    return {.inBytes = line.bytes,
            .tablesOnly = line.quiet,
            .columns = line.columns,
            .terminal = StandardOutput()};
}

// Shows on standard error what a report remarks and what it could not read, which is a failure.
template <typename Report>
int ShowProblem(const CommandLine& line, const Report& report) {
    if constexpr (requires { report.remarks; }) ShowRemarks(line, report.remarks);
    return ShowProblem(line, report.problem);
}

template <typename Report>
int ShowWithProblem(const CommandLine& line, const Report& report) {
    Show(line, report);
    return ShowProblem(line, report);
}

// Without their folders, which are nobody's business where a report is attached.
std::vector<std::string> NamesOfImages(const PcChoice& choice) {
    std::vector<std::string> paths;
    for (const auto* const given : {&choice.images, &choice.discs, &choice.sticks})
        paths.insert(paths.end(), given->begin(), given->end());
    if (!choice.pc.empty()) paths.push_back(choice.pc);
    std::vector<std::string> names;
    for (const std::string& path : paths)
        names.push_back(path.substr(path.find_last_of("/\\") + 1));
    return names;
}

// The same of commands in advice: the options of the PC become a word for them.
void LeaveOutFolders(SwitchReport& check, const std::string& options) {
    for (ConditionReport& condition : check.conditions) {
        const size_t at = options.empty() ? std::string::npos : condition.advice.find(options);
        if (at != std::string::npos) condition.advice.replace(at, options.size(), "[PC] ");
    }
}

std::vector<LoggedLine> Logged(LogCollector& collector) {
    std::vector<LoggedLine> lines;
    for (const LogEntry& entry : collector.Take()) {
        std::string text = OneLine(ToUtf8(entry.Text()));
        std::ranges::replace(text, '\t', ' ');
        lines.push_back({entry.level, text});
    }
    return lines;
}

}  // namespace

namespace commands {

int Status(const CommandLine& line) {
    if (!line.columns.empty()) ColumnsOf(line.columns);
    return RunOnPc(line, {.initialize = false, .run = [&](Session& session) {
                              const StatusReport status = ReadStatus(session, line.initialize);
                              ShowText(line, line.json ? AsJson(status) : StatusText(status, LookOf(line)));
                              return ShowProblem(line, status);
                          }});
}

int Files(const CommandLine& line) {
    const FilePlace place = ReadFilePlace(line.arguments[0]);
    return RunOnPc(line, {.run = [&](Session& session) {
                       return ShowWithProblem(line,
                                              ReadFiles(session, place, line.hash, PlaceOfProgress(line)));
                   }});
}

int Letters(const CommandLine& line) {
    return RunOnPc(line,
                   {.run = [&](Session& session) { return ShowWithProblem(line, ReadLetters(session)); }});
}

int Check(const CommandLine& line) {
    return RunOnPc(line, {.access = Access::Rehearse, .run = [&](Session& session) {
                              const SwitchReport report = CheckSwitch(session);
                              const int status = ShowWithProblem(line, report);
                              return report.isPossible ? status : int{Failure};
                          }});
}

int Report(const CommandLine& line) {
    const PageFormat format = PageFormatOf(line);
    const std::string time = MakingTime();
    const std::vector<std::string> images = NamesOfImages(line.choice);
    LogCollector collector(nullptr);
    std::string page;
    return RunOnPc(
        line,
        {.access = Access::Rehearse, .initialize = false, .output = &page, .run = [&](Session& session) {
             PcReport report{.maker = "kestova " KESTOVA_VERSION, .time = time, .images = images};
             report.status = ReadStatus(session, line.initialize);
             report.check = CheckSwitch(session);
             LeaveOutFolders(report.check, session.OnPc().ChoosingOptions());
             report.notes = session.OnPc().Notes();
             std::ranges::copy(session.OnPc().LaterNotes(), std::back_inserter(report.notes));
             report.log = Logged(collector);
             page = format == PageFormat::Html ? HtmlReport(report) : MarkdownReport(report);
             return ShowProblem(line, report.status);
         }});
}

int Capture(const CommandLine& line) {
    std::string text;
    return RunOnPc(line, {.initialize = false, .output = &text, .run = [&](Session&) {
                              const auto registry = line.installedRegistry ? InstalledRegistry::Mounted
                                                                           : InstalledRegistry::Left;
                              CapturedPc captured = CapturePc(registry);
                              if (line.anonymous) MakeAnonymous(captured.pc);
                              text = DescriptionText(captured.pc);
                              ShowNotes(line, captured.notes);
                              std::vector<std::string> contents = ContentsOf(captured.pc);
                              for (std::string& content : contents)
                                  content = "the description holds " + content;
                              ShowNotes(line, contents);
                              int status = Done;
                              for (const std::string& mistake : MistakesIn(text))
                                  status = ShowProblem(line, "the description has a mistake: " + mistake);
                              return status;
                          }});
}

}  // namespace commands
