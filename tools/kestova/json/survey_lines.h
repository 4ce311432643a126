// The lines that a survey writes, read again: an object each, of a PC.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kestova/survey/workers.h"

// The file of its PC; nothing for a line that is none of a survey, or not whole.
std::optional<std::string> PcOfLine(const std::string& line);

// The line of that PC from its worker: the worker's own, or one with the reason why there is none. What reads
// a hostile PC can answer anything.
std::string LineOfWorker(const std::string& pc, const WorkerEnd& end);

// Where a PC answers differently in two lines: "SetRcvprtActive: result 3 instead of 0", and so on.
std::vector<std::string> SurveyDifferences(const std::string& earlier, const std::string& now);

// What many lines say together.
class SurveyTally {
  public:
    void Add(const std::string& line);

    // PCs that could not be read, or whose worker ended without an answer.
    uint64_t Errors() const { return errors_; }
    // How often each operation had which result, and which PCs have which record of an error, for people.
    std::string Text() const;

  private:
    struct Pcs {
        uint64_t count = 0;
        std::vector<std::string> first = {};
    };
    // By text.
    using Kinds = std::map<std::string, Pcs>;

    static void AddPc(Kinds& kinds, const std::string& kind, const std::string& pc);
    static std::string TextOf(const Kinds& kinds);

    uint64_t pcs_ = 0;
    uint64_t errors_ = 0;
    std::vector<std::string> operations_;  // in the order of the script
    std::map<std::string, std::map<std::string, uint64_t>> results_;
    Kinds records_;
    Kinds errorsOfPcs_;
};
