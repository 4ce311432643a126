// Where two PCs answer differently: the PC at hand, and an emulated one that is to be like it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/conformance/answers.h"
#include "tools/kestova/conformance/expected_differences.h"

struct ConformanceDifference {
    bool isOperation = false;  // else a published call
    std::string name;          // of the operation or the call
    std::string arguments;
    // Each PC's answer; nothing if it was not asked that, as it has no such disk, letter or object.
    std::optional<std::string> here = {};
    std::optional<std::string> emulated = {};
    // Operations that make this call, with the arguments that the trace shows.
    std::vector<std::string> operations = {};
    std::optional<std::string> expected = {};  // why it is known
};

// What the documents leave open, as each PC answers it.
struct OpenQuestion {
    std::string key;  // of the switch that says so in a description; empty if there is none
    std::string question;
    std::string here;  // as a description writes it, or in words
    std::string emulated;
};

struct ConformanceReport {
    std::string here;  // the PCs as they were named
    std::string emulated;
    size_t calls = 0;  // that were compared
    size_t operations = 0;
    std::vector<ConformanceDifference> differences = {};
    std::vector<std::string> unmet = {};  // differences that were expected, and are none
    std::vector<OpenQuestion> questions = {};
    std::vector<std::string> left = {};      // of the PC at hand: what could not be put back
    std::vector<std::string> notAsked = {};  // operations

    // The number of differences that nobody expected.
    size_t Unexpected() const;
};

// Answers to the same call with the same arguments are compared, the second with the second; records of an
// operation's log up to the first that differs. The emulated PC has to have answered with its trace.
ConformanceReport CompareAnswers(const PcAnswers& here, const PcAnswers& emulated);

// Says of each difference whether it is expected.
void NoteExpected(const ExpectedDifferences& expected, ConformanceReport& report);
