// A PC as the text of its description.
#pragma once

#include <string>

#include "machine/facts/pc.h"

// Throws Failed for text in the PC that is not UTF-8.
std::string DescriptionText(const machine::Pc& pc);
