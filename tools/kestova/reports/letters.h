// The letters of the installed Windows, and the partition behind each.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/kestova/operations/session.h"

struct LetterReport {
    std::string letter;                 // of the installed Windows
    std::optional<int> disk = {};       // none when the volume does not report it
    std::optional<int> partition = {};  // the same
    std::optional<WCHAR> here = {};     // the running system's letter
};

struct LettersReport {
    std::vector<LetterReport> letters;
    std::vector<Finding> remarks;  // that there are none, for a reason that the library does not report
    std::string problem;           // why not all letters could be read; else empty
};

LettersReport ReadLetters(Session& session);
