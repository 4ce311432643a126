// When a report is made.
#pragma once

#include <string>

// The time now, "2026-11-22T23:01:38Z"; that of SOURCE_DATE_EPOCH, in seconds since 1970, where it is set, so
// that a report can be made again as it was. Throws WrongUse for a value of that which is not a time up to
// the year 9999.
std::string MakingTime();
