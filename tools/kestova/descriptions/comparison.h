// Where two PCs differ.
#pragma once

#include <string>
#include <vector>

#include "machine/description/description.h"

struct ComparisonReport {
    std::string left;  // as they were named
    std::string right;
    std::vector<machine::Difference> differences;
};

enum class Compared { Whole, Seen };

// Machines that come with the tool, or descriptions, whole or what a system can show of them. Throws
// WrongUse, UnreadablePc.
ComparisonReport ComparePcs(const std::string& left, const std::string& right, Compared compared);
