// What is wrong with a file that describes a PC.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/description/description.h"

struct ValidationReport {
    std::string file;
    std::optional<std::string> problem = {};  // with which it cannot be read at all
    std::vector<machine::Mistake> mistakes = {};

    bool IsValid() const { return !problem && mistakes.empty(); }
};

// Reads the file, and opens no image that it names.
ValidationReport Validate(const std::string& file);
