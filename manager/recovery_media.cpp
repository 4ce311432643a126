// Recognising recovery media by the files and folders below the volume's root.

#include "manager/recovery_media.h"

#include "diag/log_record.h"
#include "manager/kestova.h"
#include "text/format.h"

namespace {

constexpr size_t pathCapacity = MAX_PATH + 1;

struct Marker {
    const WCHAR* path;
    const WCHAR* missRecord;
};

// In the order in which they are tested.
constexpr Marker recoveryMarkers[] = {
    {TEXT("sources\\Qelhdrcv.ini"), TEXT("Kestova::IsRCVVolume\tmiss QELHDRCVINI. szPath = ")},
    {TEXT("sources"), TEXT("Kestova::IsRCVVolume\tmiss SOURCES. szPath = ")},
    {TEXT("sources\\Orvo"), TEXT("Kestova::IsRCVVolume\tmiss ORVO_FOLDER. szPath = ")},
    {TEXT("sources\\data"), TEXT("Kestova::IsRCVVolume\tmiss DATA. szPath = ")},
    {TEXT("sources\\idf"), TEXT("Kestova::IsRCVVolume\tmiss IDF. szPath = ")},
};

// A path below a drive's root.
struct DrivePath {
    WCHAR text[pathCapacity];

    DrivePath(WCHAR letter, const WCHAR* below) {
        FormatInto(text, pathCapacity, TEXT("%c:"), letter);
        if (below != nullptr) PathAppendW(text, below);
    }
    bool Exists() const { return PathFileExistsW(text); }
};

bool HasDriveTypeOf(int mediaType, WCHAR letter) {
    UINT required = 0;
    switch (mediaType) {
        case TYPE_HDD:
            required = DRIVE_FIXED;
            break;
        case TYPE_DISC:
            required = DRIVE_CDROM;
            break;
        case TYPE_UFD:
            required = DRIVE_REMOVABLE;
            break;
        default:
            return true;
    }
    return GetDriveTypeW(DrivePath(letter, nullptr).text) == required;
}

}  // namespace

int Kestova::IsRCVVolume(WCHAR letter, int mediaType) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsRCVVolume\t\tStart"));
    if (!HasDriveTypeOf(mediaType, letter)) return 0;

    for (const Marker& marker : recoveryMarkers) {
        const DrivePath path(letter, marker.path);
        if (path.Exists()) continue;
        LogRecord(LOG_LEVEL_TRACE).Text(marker.missRecord).Text(path.text);
        return 0;
    }

    const DrivePath discFlag(letter, TEXT("sources\\DVD"));
    if (discFlag.Exists()) {
        if (mediaType == TYPE_HDD || mediaType == TYPE_UFD) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::IsRCVVolume\tMediaType error. MediaType = "))
                .Int(mediaType);
            return 0;
        }
    } else if (mediaType == TYPE_DISC) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::IsRCVVolume\tmiss FLAG_UFD.(TYPE_DISC == MediaType) szPath = "))
            .Text(discFlag.text);
        return 0;
    }

    // A hard-disk volume may bear this flag.
    const DrivePath stickFlag(letter, TEXT("sources\\UFD"));
    if (stickFlag.Exists()) {
        if (mediaType == TYPE_DISC) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("Kestova::IsRCVVolume\t\tMediaType error. MediaType = "))
                .Int(mediaType);
            return 0;
        }
    } else if (mediaType == TYPE_UFD) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::IsRCVVolume\tmiss FLAG_UFD.(TYPE_UFD == MediaType) szPath = "))
            .Text(stickFlag.text);
        return 0;
    }

    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsRCVVolume\t\tEnd return true"));
    return 1;
}
