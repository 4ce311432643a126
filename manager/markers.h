// Marker files and folders, whose presence identifies the purpose of a volume.
#pragma once

#include <span>

#include "diag/log_record.h"

struct Marker {
    const WCHAR* path;        // below the root
    const WCHAR* missRecord;  // followed by the path
    int level = LOG_LEVEL_TRACE;
};

// Whether all of them exist; ends at the first one missing, after its record.
bool HasMarkers(WCHAR letter, std::span<const Marker> markers);
