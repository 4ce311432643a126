// The argument of `files`: a path on a volume.
#pragma once

#include <string>

#include "tools/kestova/reports/files.h"

// Parses "C:\sources", "2", "2:\sources" or "1.2:\sources": a letter, or a partition with its disk in front
// unless that is the internal one. Slashes are as good as backslashes. Throws WrongUse.
FilePlace ReadFilePlace(const std::string& text);
