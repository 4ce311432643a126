// What a PC is, asked of the library and the platform.
#pragma once

#include <string>

#include "tools/kestova/common/json.h"
#include "tools/kestova/operations/session.h"

// {"firmware", "system", "windowsDirectory", "internalDisk", "style", "activePartition", "partitions"}, what
// AddRoles adds, then "problem" when a part could not be read, and "remark" when more than one partition is
// active. Initialize is called first where the caller wants it.
Json ReadStatus(Session& session, bool initialize);

// "2 partitions are active; ..." of the first internal disk; empty when it is one or none, or cannot be read.
std::string ActiveFlagsRemark(Kestova& object);

// The same for people.
std::string StatusText(const Json& status);
