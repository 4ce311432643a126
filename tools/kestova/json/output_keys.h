// The keys of what each command writes with --json: a contract with scripts.
#pragma once

#include <span>
#include <string_view>
#include <vector>

// "partitions[].roles[].role": [] is a list, each of whose entries has that key. A key with ? behind it can
// be missing.
struct OutputKey {
    std::string_view path;
    std::string_view type;  // of JSON; several are separated by |
    std::string_view words;
};

using OutputKeys = std::span<const OutputKey>;

// One object, or one on each line.
struct CommandOutput {
    std::string_view command;
    std::vector<OutputKeys> keys;  // in their order
};

// The output of that command; null for one that writes no JSON.
const CommandOutput* FindOutput(std::string_view command);
