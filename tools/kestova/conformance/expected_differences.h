// Differences that are known, in a file of lines "CALL<tab>ARGUMENTS<tab>WHY".
#pragma once

#include <string>
#include <string_view>
#include <vector>

// A text in which each "*" stands for any number of characters.
class Pattern {
  public:
    explicit Pattern(std::string text) : text_(std::move(text)) {}
    bool Matches(std::string_view text) const;

  private:
    std::string text_;
};

struct ExpectedDifference {
    Pattern name;  // of a published call or an operation
    Pattern arguments;
    std::string why;
    std::string place;  // "known.tsv:3"
};

// The first row that matches a difference explains it.
struct ExpectedDifferences {
    std::vector<ExpectedDifference> rows = {};
};

// Empty lines and those that begin with "#" are left out. Throws WrongUse, with file and line, for a file
// that cannot be read, and a line that has not three columns.
ExpectedDifferences ReadExpectedDifferences(const std::string& file);
