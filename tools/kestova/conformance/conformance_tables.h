// The differences between PCs as tables, for whoever shows them.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/conformance/conformance.h"

struct ConformanceTable {
    std::string title;
    std::vector<std::string> columns;
    std::vector<std::vector<std::string>> rows = {};  // never empty
};

// Two long answers are shown whole, or cut so that the place where they differ is seen.
enum class LongAnswers { Whole, Cut };

// Those that have rows, what matters most first.
std::vector<ConformanceTable> TablesOf(const ConformanceReport& report, LongAnswers answers);

// "Not asked, since they change the first internal disk or write files: SetActive, ClearActive.": what a
// trial of changes leaves out.
std::string NotAskedWords(const ConformanceReport& report);

// "55 operations and 1006 calls compared: 3 differences, 1 expected".
std::string CountWords(const ConformanceReport& report);
