// The command that runs a script on many PCs.

#include <algorithm>
#include <iostream>
#include <thread>

#include "tools/kestova/arguments/options.h"
#include "tools/kestova/command_line/command_functions.h"
#include "tools/kestova/command_line/messages.h"
#include "tools/kestova/command_line/survey_results.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/terminal.h"
#include "tools/kestova/json/as_json.h"
#include "tools/kestova/json/survey_lines.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/survey/survey_inputs.h"
#include "tools/kestova/survey/surveyed_pc.h"
#include "tools/kestova/survey/workers.h"

namespace {

SurveyWork WorkOf(const CommandLine& line) {
    if (line.script.empty()) throw WrongUse("survey: --script names the operations, one a line");
    if (line.script == "-" && line.from == "-")
        throw WrongUse("survey: --script and --from cannot both be standard input");
    SurveyWork work{
        .choice = line.choice, .calls = ReadScriptFile(line.script), .initialize = line.initialize};
    work.choice.dryRun = !line.write;
    return work;
}

std::vector<std::string> InputsOf(const CommandLine& line) {
    std::vector<std::string> names = line.arguments;
    if (!line.from.empty()) {
        const std::vector<std::string> more = NamesFrom(line.from);
        names.insert(names.end(), more.begin(), more.end());
    }
    if (names.empty()) throw WrongUse("survey: no PC was named: folders, descriptions, images, or --from");
    return SurveyInputs(names);
}

WorkerLimits LimitsOf(const CommandLine& line) {
    constexpr uint64_t mostJobs = 1024;
    constexpr uint64_t mostSeconds = 86400;
    WorkerLimits limits{.atOnce = std::max(std::thread::hardware_concurrency(), 1U),
                        .mayBeEnded = !line.write};
    if (!line.jobs.empty()) limits.atOnce = ReadNumber("--jobs", line.jobs, 1, mostJobs);
    if (!line.timeLimit.empty())
        limits.time = std::chrono::seconds(ReadNumber("--time-limit", line.timeLimit, 1, mostSeconds));
    return limits;
}

bool WritesFile(const CommandLine& line) {
    return !line.output.empty() && line.output != "-";
}

void HoldSignals(const CommandLine& line) {
    const std::string goOn =
        "interrupted; the same command with --resume goes on with the PCs that are not in " + line.output;
    SayWhenInterrupted(WritesFile(line) ? goOn : "interrupted; what was written is whole lines");
    HoldInterruption();
}

std::string CountText(uint64_t count) {
    return std::to_string(count);
}

// Where the lines are not on the same terminal.
ProgressPlace PlaceOfSurvey(const CommandLine& line) {
    return !WritesFile(line) && StandardOutput().isRewritten ? ProgressPlace() : PlaceOfProgress(line);
}

// Whether any PC answers differently than in the survey of --against.
bool RunSurvey(const CommandLine& line, const SurveyWork& work, const WorkerLimits& limits,
               const std::vector<std::string>& pcs, SurveyResults& results) {
    Progress progress(PlaceOfSurvey(line), "Surveying", pcs.size(), CountText);
    bool differs = false;
    const auto answer = [&](size_t task) { return AsJson(Survey(pcs[task], work)); };
    const auto take = [&](size_t task, const WorkerEnd& end) {
        const std::string& pc = pcs[task];
        const std::vector<std::string> differences = results.Add(pc, LineOfWorker(pc, end));
        if (!differences.empty()) progress.Hide();
        for (const std::string& difference : differences)
            ShowMessage(difference);
        differs = differs || !differences.empty();
        progress.Add(1);
    };
    RunInWorkers(pcs.size(), limits, answer, take);
    return differs;
}

}  // namespace

namespace commands {

int Survey(const CommandLine& line) {
    RequireWorkers();
    const SurveyWork work = WorkOf(line);
    const WorkerLimits limits = LimitsOf(line);
    const std::vector<std::string> inputs = InputsOf(line);
    std::vector<std::string> pcs = line.shard.empty() ? inputs : PartOf(inputs, ReadShard(line.shard));
    SurveyResults results(line, inputs);
    std::erase_if(pcs, [&](const std::string& pc) { return results.Has(pc); });
    HoldSignals(line);
    bool differs = false;
    try {
        differs = RunSurvey(line, work, limits, pcs, results);
    } catch (const Unwritable&) {
        if (WritesFile(line)) throw Failed(line.output + ": cannot be written");
        return Done;  // what is wrong with standard output is found at the end
    }
    const std::vector<std::string> others = results.OtherDifferences(inputs);
    for (const std::string& difference : others)
        ShowMessage(difference);
    if (!line.quiet) std::cerr << PrintableText(results.Tally().Text());
    return differs || !others.empty() || results.Tally().Errors() > 0 ? Failure : Done;
}

}  // namespace commands
