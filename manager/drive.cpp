#include "manager/drive.h"

#include <iterator>

#include "base/format.h"
#include "diag/log_record.h"

DrivePath::DrivePath(WCHAR letter, const WCHAR* below) {
    FormatInto(text, std::size(text), TEXT("%c:"), letter);
    // The bare root would exist even if the path below it does not.
    if (below != nullptr && !PathAppendW(text, below)) text[0] = 0;
}

bool DrivePath::Exists() const {
    return PathFileExistsW(text);
}

UINT DriveType(WCHAR letter) {
    return GetDriveTypeW(DrivePath(letter).text);
}

bool IsFixedDrive(WCHAR letter) {
    return DriveType(letter) == DRIVE_FIXED;
}

void LogSearched(WCHAR letter, const WCHAR* found, const WCHAR* none) {
    if (letter == noLetter) {
        LogRecord(LOG_LEVEL_TRACE).Text(none);
    } else {
        LogRecord(LOG_LEVEL_TRACE).Text(found).Char(letter);
    }
}
