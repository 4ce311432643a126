// The words of the command line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/kestova/pc/opened_pc.h"

struct CommandLine {
    PcChoice choice;
    std::string command;
    std::vector<std::string> arguments;  // of the command
    std::vector<std::string> options;    // that were given, by name
    std::string log;                     // file, or "-"
    bool overwrite = false;              // a log or a description may replace any file
    bool json = false;
    bool initialize = true;
    bool hash = false;
    std::string output;  // of `report`: a file, or "-"; of `generate`: a folder; of `survey`: a file
    std::string format;  // of `report`
    std::string seed;    // of `generate`, as the next two; empty: the usual one
    std::string first;
    std::string count;
    std::string script;  // of `survey`, as all to `write`
    std::string from;    // a file with names of PCs, or "-"
    std::string jobs;
    std::string timeLimit;
    std::string shard;
    std::string against;  // the output of an earlier survey
    bool resume = false;
    bool write = false;   // to images
    std::string expect;   // of `conform`: a file
    std::string changes;  // and the number of a disk
    bool bytes = false;
    bool anonymous = false;
    bool installedRegistry = false;  // of `capture`: mount it
    bool seen = false;               // of `compare`: only what a system can show
    bool quiet = false;
    std::string columns;  // of `status`; empty: the usual ones
    bool help = false;
    bool version = false;
    bool schema = false;
};

// Whether the words ask for JSON; also of a command line that is wrong.
bool WantsJson(const std::vector<std::string>& words);

// The words behind the program's name. Throws WrongUse.
CommandLine ReadCommandLine(const std::vector<std::string>& words);

struct OptionWords {
    std::string name;   // "--image"
    std::string value;  // as help shows it; empty for a flag
    std::string words;
};

const std::vector<OptionWords>& KnownOptions();

// The options for which that is true, in their groups, as help shows them.
std::string OptionsText(size_t columns, const std::function<bool(const std::string& option)>& isShown);
