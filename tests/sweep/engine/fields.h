// Lines of fields with tabs between them.
#pragma once

#include <string>

#include "tests/sweep/engine/findings.h"

namespace sweep {

Row Split(const std::string& line);
std::string Joined(const Row& fields);

}  // namespace sweep
