// The location texts of disks, as their port drivers write them.
#pragma once

#include "platform/windows_api.h"

// The location number in a text; -1 when none can be read. A bare number is the location. In "Bus Number B,
// Target Id T" (case counts) it is B, except on bus 6: there it is T, and `targetLocation` becomes 1. The
// marker is otherwise left as it is.
int ReadLocation(const WCHAR* text, int& targetLocation);
