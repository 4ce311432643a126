// What a command writes with --json, as a JSON Schema.
#pragma once

#include <string>

#include "tools/kestova/json/output_keys.h"

// Of one object, indented (draft 2020-12).
std::string OutputSchema(const CommandOutput& output);
