// Recovery media: the recovery partition, discs and USB flash drives with the maker's recovery files.

#include "manager/recovery_media.h"

#include <algorithm>
#include <optional>

#include "diag/module.h"
#include "manager/drive.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/markers.h"
#include "platform/windows_api.h"

namespace {

// In the order of the tests, like the tables below.
constexpr Marker recoveryMarkers[] = {
    {recovery_files::ini, TEXT("Kestova::IsRCVVolume\tmiss QELHDRCVINI. szPath = ")},
    {recovery_files::sources, TEXT("Kestova::IsRCVVolume\tmiss SOURCES. szPath = ")},
    {recovery_files::orvo, TEXT("Kestova::IsRCVVolume\tmiss ORVO_FOLDER. szPath = ")},
    {recovery_files::data, TEXT("Kestova::IsRCVVolume\tmiss DATA. szPath = ")},
    {recovery_files::idf, TEXT("Kestova::IsRCVVolume\tmiss IDF. szPath = ")},
};

// A file or folder that distinguishes kinds of media. For a kind that is neither required nor forbidden it is
// optional, such as the flag of a USB flash drive for a hard-disk volume.
struct MediaFlag {
    const WCHAR* path;
    int required;      // the kind that must have it
    int forbidden[2];  // the kinds that must not
    const WCHAR* presentRecord;
    const WCHAR* missRecord;
};

constexpr MediaFlag mediaFlags[] = {
    {recovery_files::disc,
     TYPE_DISC,
     {TYPE_HDD, TYPE_UFD},
     TEXT("Kestova::IsRCVVolume\tMediaType error. MediaType = "),
     TEXT("Kestova::IsRCVVolume\tmiss FLAG_UFD.(TYPE_DISC == MediaType) szPath = ")},
    {recovery_files::stick,
     TYPE_UFD,
     {TYPE_DISC, TYPE_DISC},
     TEXT("Kestova::IsRCVVolume\t\tMediaType error. MediaType = "),
     TEXT("Kestova::IsRCVVolume\tmiss FLAG_UFD.(TYPE_UFD == MediaType) szPath = ")},
};

std::optional<UINT> RequiredDriveType(int mediaType) {
    switch (mediaType) {
        case TYPE_HDD:
            return DRIVE_FIXED;
        case TYPE_DISC:
            return DRIVE_CDROM;
        case TYPE_UFD:
            return DRIVE_REMOVABLE;
        default:
            return std::nullopt;
    }
}

// False after a record.
bool SuitsMedia(const MediaFlag& flag, WCHAR letter, int mediaType) {
    const DrivePath path(letter, flag.path);
    if (path.Exists()) {
        if (std::ranges::find(flag.forbidden, mediaType) == std::end(flag.forbidden)) return true;
        LogRecord(LOG_LEVEL_TRACE).Text(flag.presentRecord).Int(mediaType);
        return false;
    }
    if (mediaType != flag.required) return true;
    LogRecord(LOG_LEVEL_TRACE).Text(flag.missRecord).Text(path.text);
    return false;
}

}  // namespace

int Kestova::IsRCVVolume(WCHAR letter, int mediaType) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsRCVVolume\t\tStart"));
    const std::optional<UINT> driveType = RequiredDriveType(mediaType);
    if (driveType.has_value() && DriveType(letter) != *driveType) return 0;
    if (!HasMarkers(letter, recoveryMarkers)) return 0;
    for (const MediaFlag& flag : mediaFlags) {
        if (!SuitsMedia(flag, letter, mediaType)) return 0;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsRCVVolume\t\tEnd return true"));
    return 1;
}

WCHAR Kestova::GetRCVDISC() {
    return Guarded(ending::GetRCVDISC, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetRCVDISC\tStart"));
        const WCHAR found = FirstLetter([&](WCHAR letter) { return IsRCVVolume(letter, TYPE_DISC); });
        LogSearched(found, TEXT("Kestova::GetRCVDISC\tcDriveLetter = "),
                    TEXT("Kestova::GetRCVDISC\tEnd cDriveLetter = 0"));
        return found;
    });
}

WCHAR Kestova::GetRCVUFD() {
    return Guarded(ending::GetRCVUFD, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetRCVUFD\tStart"));
        const WCHAR found = FirstLetter([&](WCHAR letter) { return IsRCVVolume(letter, TYPE_UFD); });
        LogSearched(found, TEXT("Kestova::GetRCVUFD\tDriver = "),
                    TEXT("Kestova::GetRCVUFD\tEnd. Driver = 0"));
        return found;
    });
}
