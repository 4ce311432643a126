// Volume names.

#include "base/format.h"
#include "base/wide_string.h"
#include "diag/log_record.h"
#include "manager/drive.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "platform/windows_api.h"

namespace {

constexpr DWORD nameCapacity = 1024;

}  // namespace

int Kestova::GetVolumeName(WCHAR letter, WCHAR* name) {
    WCHAR root[MAX_PATH + 1];
    FormatInto(root, std::size(root), TEXT("%c:\\"), letter);
    WCHAR volumeName[nameCapacity] = {};
    WCHAR fileSystem[nameCapacity] = {};
    if (!GetVolumeInformationW(root, volumeName, nameCapacity, nullptr, nullptr, nullptr, fileSystem,
                               nameCapacity)) {
        return FALSE;
    }
    CopyBounded(name, MAX_PATH, volumeName);
    return TRUE;
}

int Kestova::GetFactoryPrtDriveLetter(WCHAR& letter) {
    return Guarded(ending::GetFactoryPrtDriveLetter, [&] {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetFactoryPrtDriveLetter\tStart. "));
        letter = FirstLetter([&](WCHAR candidate) {
            WCHAR name[MAX_PATH] = {};
            return GetVolumeName(candidate, name) && EqualIgnoringCase(name, TEXT("Factory"));
        });
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova::GetFactoryPrtDriveLetter\tEnd. cDriveLetter = "))
            .Char(letter)
            .Text(TEXT(" bResult = "))
            .Int(TRUE);
        return TRUE;
    });
}
