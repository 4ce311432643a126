// Files and folders that tell by being there what a volume is for.
#pragma once

#include <span>

#include "diag/log_record.h"

struct Marker {
    const WCHAR* path;        // below the root
    const WCHAR* missRecord;  // the path follows
    int level = LOG_LEVEL_TRACE;
};

// Whether all of them are there. The first one missing ends the search after its record.
bool HasMarkers(WCHAR letter, std::span<const Marker> markers);
