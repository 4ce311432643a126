#include "manager/markers.h"

#include "manager/drive.h"

bool HasMarkers(WCHAR letter, std::span<const Marker> markers) {
    for (const Marker& marker : markers) {
        const DrivePath path(letter, marker.path);
        if (path.Exists()) continue;
        LogRecord(marker.level).Text(marker.missRecord).Text(path.text);
        return false;
    }
    return true;
}
