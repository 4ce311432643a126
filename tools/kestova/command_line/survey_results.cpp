#include "tools/kestova/command_line/survey_results.h"

#include <filesystem>
#include <iostream>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/output_file.h"
#include "tools/kestova/recording/json_line.h"

namespace {

// What the program reads must not be what it writes.
void KeepApart(const OutputFile& output, const CommandLine& line, const std::vector<std::string>& inputs) {
    std::vector<std::string> read = inputs;
    read.insert(read.end(), {line.script, line.from, line.against});
    for (const std::string& file : read) {
        if (!file.empty() && file != "-" && output.Is(file))
            throw WrongUse("--output: " + output.Path() + " is a file that the survey reads");
    }
}

}  // namespace

uint64_t ReadSurvey(
    const std::string& file,
    const std::function<void(const std::string& pc, const std::string& line, uint64_t begin)>& visit) {
    std::error_code error;
    if (std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        throw WrongUse(file + ": not a regular file");
    std::ifstream lines(file, std::ios::binary);
    if (!lines) throw WrongUse(file + ": cannot be read");
    uint64_t end = 0;
    std::string line;
    for (LineEnd read = ReadLine(lines, line); read != LineEnd::TornOff; read = ReadLine(lines, line)) {
        const std::optional<std::string> pc = read == LineEnd::Whole ? PcOfLine(line) : std::nullopt;
        if (!pc) throw WrongUse(file + ": byte " + std::to_string(end) + ": no line of a survey");
        visit(*pc, line, end);
        end += line.size() + 1;
    }
    return end;
}

EarlierSurvey::EarlierSurvey(const std::string& file) {
    ReadSurvey(file, [&](const std::string& pc, const std::string&, uint64_t begin) { begins_[pc] = begin; });
    stream_.open(file, std::ios::binary);
}

std::optional<std::string> EarlierSurvey::LineOf(const std::string& pc) {
    const auto found = begins_.find(pc);
    if (found == begins_.end()) return std::nullopt;
    std::string line;
    stream_.clear();
    stream_.seekg(static_cast<std::streamoff>(found->second));
    std::getline(stream_, line);
    return line;
}

std::vector<std::string> EarlierSurvey::Without(const std::vector<std::string>& pcs) const {
    const std::set<std::string> known(pcs.begin(), pcs.end());
    std::vector<std::string> missing;
    for (const auto& [pc, begin] : begins_)
        if (!known.contains(pc)) missing.push_back(pc);
    return missing;
}

SurveyResults::SurveyResults(const CommandLine& line, const std::vector<std::string>& inputs)
    : stream_(&std::cout) {
    if (!line.against.empty()) against_.emplace(line.against);
    if (line.output.empty() || line.output == "-") {
        if (line.resume) throw WrongUse("--resume: it goes on with the file of --output, and none was named");
        return;
    }
    OutputFile output("--output", line.output);
    KeepApart(output, line, inputs);
    const bool isThere = !output.Beginning(1).value_or("").empty();
    if (isThere && !line.resume && !line.overwrite)
        throw WrongUse("--output: " + line.output +
                       " is not empty; --resume goes on with it, --overwrite replaces it");
    uint64_t bytes = 0;
    if (isThere && line.resume)
        bytes = ReadSurvey(line.output, [&](const std::string& pc, const std::string& text, uint64_t) {
            there_.insert(pc);
            for (const std::string& difference : Count(pc, text))
                earlierDifferences_.push_back(difference);
        });
    file_ = output.StreamAfter(bytes);
    stream_ = &file_;
}

std::vector<std::string> SurveyResults::Count(const std::string& pc, const std::string& line) {
    tally_.Add(line);
    if (!against_) return {};
    const std::optional<std::string> earlier = against_->LineOf(pc);
    if (!earlier) return {pc + ": was not surveyed earlier"};
    std::vector<std::string> differences = SurveyDifferences(*earlier, line);
    for (std::string& difference : differences)
        difference.insert(0, pc + ": ");
    return differences;
}

std::vector<std::string> SurveyResults::Add(const std::string& pc, const std::string& line) {
    if (!(*stream_ << line << std::flush)) throw Unwritable();
    return Count(pc, line);
}

std::vector<std::string> SurveyResults::OtherDifferences(const std::vector<std::string>& inputs) const {
    std::vector<std::string> differences = earlierDifferences_;
    if (!against_) return differences;
    for (const std::string& pc : against_->Without(inputs))
        differences.push_back(pc + ": was surveyed earlier only");
    return differences;
}
