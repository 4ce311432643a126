// The options as a table: the words of the command line are read by its rows, and help shows them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

struct Option {
    const char* names;  // "--help,-h"; a flag after "!" sets false
    const char* value;  // as help shows it; empty for a flag
    const char* words;
    // Where the value goes; a list takes one value each time that the option is given.
    std::variant<bool*, std::string*, std::vector<std::string>*> target;
    const char* excludes = nullptr;  // an option that cannot be given with this one
    bool isRisky = false;            // takes away a protection, so it is not suggested for a misspelt one
};

struct OptionGroup {
    const char* title;
    std::vector<Option> options;
};

// "--help".
std::string LongName(const Option& option);

// What the words are, apart from the values of the options.
struct ReadWords {
    std::vector<std::string> options;     // that were given, by long name
    std::vector<std::string> positional;  // all other words
};

// The value of a numeric option. Throws WrongUse for one that is no number from `least` to `most`.
uint64_t ReadNumber(const char* option, const std::string& value, uint64_t least, uint64_t most);

// Reads the words and fills in the values. Throws WrongUse for an unknown option, a missing or an empty
// value, an option that is given too often or beside one that it excludes.
ReadWords ReadOptions(const std::vector<OptionGroup>& groups, const std::vector<std::string>& words);
