// The one kind of value that passes between the parts of the program: an argument, a result, a report. Keys
// keep the order in which they were written.
#pragma once

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;
