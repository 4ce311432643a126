// Differences between PCs as text for people.
#pragma once

#include <string>

#include "tools/kestova/common/terminal.h"
#include "tools/kestova/conformance/conformance.h"

// A line for each difference, those that are expected last; then how many there are of how much that was
// asked.
std::string ConformanceText(const ConformanceReport& report, const Terminal& terminal);
