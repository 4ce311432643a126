// What a PC is, asked of the library and the platform.
#pragma once

#include <string>

#include "manager/kestova.h"
#include "tools/kestova/json.h"

// {"firmware", "system", "windowsDirectory", "internalDisk", "style", "activePartition", "partitions"}, and
// "problem" when a part could not be read.
Json ReadStatus(Kestova& object);

// The same for people.
std::string StatusText(const Json& status);
