// The option --fail: a line of the fault plan as text.
#pragma once

#include <string>

#include "machine/facts/fault_rule.h"

// From "NAME[#N][+]=CODE": the Nth call of that name fails with the code; with "+" all later ones too;
// without
// "#N" every call. The code is decimal or hexadecimal. Throws WrongUse.
machine::FaultRule ReadFault(const std::string& text);
