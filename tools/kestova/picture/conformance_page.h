// Where two PCs answer differently, for a page or a chat.
#pragma once

#include <string>

#include "tools/kestova/conformance/conformance.h"

// `making`: who made it, and when.
std::string ConformanceHtml(const ConformanceReport& report, const std::string& making);
std::string ConformanceMarkdown(const ConformanceReport& report, const std::string& making);
