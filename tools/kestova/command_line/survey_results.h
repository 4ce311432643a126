// Where the lines of a survey go, and what they say together.
#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tools/kestova/command_line/command_line.h"
#include "tools/kestova/json/survey_lines.h"

// Calls `visit` with each line of a survey's file, its PC and where it begins. Returns the length of the
// whole lines: a last one that was torn off is left out. Throws WrongUse for a file that cannot be read, or
// holds other lines.
uint64_t ReadSurvey(
    const std::string& file,
    const std::function<void(const std::string& pc, const std::string& line, uint64_t begin)>& visit);

// The lines of an earlier survey, which stay in its file until they are asked for.
class EarlierSurvey {
  public:
    // Throws WrongUse.
    explicit EarlierSurvey(const std::string& file);
    // Nothing for a PC that was not in it.
    std::optional<std::string> LineOf(const std::string& pc);
    // Those that are not among the PCs.
    std::vector<std::string> Without(const std::vector<std::string>& pcs) const;

  private:
    std::ifstream stream_;
    std::map<std::string, uint64_t> begins_;
};

// Standard output or the output could not be written, so that the survey ends.
struct Unwritable {};

class SurveyResults {
  public:
    // Opens --output, and with --resume counts what is in it. Throws WrongUse, with nothing written.
    SurveyResults(const CommandLine& line, const std::vector<std::string>& inputs);

    // Whether a line on the PC is there from before.
    bool Has(const std::string& pc) const { return there_.contains(pc); }
    // Writes the line of a PC. Throws Unwritable. Returns where it differs from the survey of --against, in
    // words.
    std::vector<std::string> Add(const std::string& pc, const std::string& line);
    // Those of the lines that are there from before, and PCs that only the survey of --against has.
    std::vector<std::string> OtherDifferences(const std::vector<std::string>& inputs) const;
    const SurveyTally& Tally() const { return tally_; }

  private:
    std::vector<std::string> Count(const std::string& pc, const std::string& line);

    std::ofstream file_;
    std::ostream* stream_;
    std::set<std::string> there_;
    std::vector<std::string> earlierDifferences_;
    std::optional<EarlierSurvey> against_;
    SurveyTally tally_;
};
