// A PC as the text of its description.
#pragma once

#include <string>
#include <vector>

#include "machine/facts/pc.h"

// Throws Failed for text in the PC that is not UTF-8.
std::string DescriptionText(const machine::Pc& pc);

// What is wrong with a description, a line each.
std::vector<std::string> MistakesIn(const std::string& text);
