// The location texts that port drivers write for disks.
#pragma once

#include "platform/windows_api.h"

// The location number in a text; -1 if there is none. A bare number is the location. In "Bus Number B, Target
// Id T" (case-sensitive) it is B, except on bus 6: there it is T, and `targetLocation` is set to 1. Otherwise
// `targetLocation` is unchanged.
int ReadLocation(const WCHAR* text, int& targetLocation);
