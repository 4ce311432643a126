// The option --fail: parses a fault rule.
#pragma once

#include <string>

#include "machine/calls/fault_rule.h"

// Parses "NAME[#N][+]=CODE": the Nth call of that name fails with the code, with "+" all later ones too,
// without "#N" every call. The name "*" is for the calls of all names, counted together. The code is decimal
// or hexadecimal. Throws WrongUse in the name of who asks.
machine::FaultRule ReadFault(const std::string& text, const std::string& asker = "--fail");
