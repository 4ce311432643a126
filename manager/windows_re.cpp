// Windows RE: the volume of the factory layout, and the maker's bootable media.

#include "diag/module.h"
#include "manager/drive.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/markers.h"
#include "platform/windows_api.h"

namespace {

constexpr Marker volumeMarkers[] = {
    {TEXT("Boot"), TEXT("Kestova::IsWinREVolume\tmiss boot. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("EFI"), TEXT("Kestova::IsWinREVolume\tmiss efi. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("Recovery"), TEXT("Kestova::IsWinREVolume\tmiss RECOVERY. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("bootmgr"), TEXT("Kestova::IsWinREVolume\tmiss BOOTMGR. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("bootmgr.efi"), TEXT("Kestova::IsWinREVolume\tmiss BOOTMGR_EFI. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("sources"), TEXT("Kestova::IsWinREVolume\tmiss SOURCES. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("sources\\Autorun"), TEXT("Kestova::IsWinREVolume\tmiss Autorun. szPath = "), LOG_LEVEL_ERROR},
    {TEXT("sources\\Orvo"), TEXT("Kestova::IsWinREVolume\tmiss ORVO_FOLDER. szPath = ")},
    {TEXT("sources\\HDD"), TEXT("Kestova::IsWinREVolume\tmiss FLAG_UFD.szPath = ")},
};

constexpr Marker mediaMarkers[] = {
    {TEXT("Bootmgr"), TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tBootmgr is not exist. szPath : ")},
    {TEXT("boot"), TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tboot is not exist. szPath: ")},
    {TEXT("boot\\bcd"), TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tbcd is not exist. szPath: ")},
    {TEXT("sources"), TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tSOURCES is not exist. szPath: ")},
    {TEXT("sources\\boot.wim"),
     TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tboot.wim is not exist. szPath: ")},
    {TEXT("Orvo"), TEXT("Kestova::IsWindowsRE\t\tPathFileExists\tORVO_FOLDER is not exist. szPath: ")},
};

}  // namespace

int Kestova::IsWinREVolume(WCHAR letter) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsWinREVolume\t\tStart"));
    int bRet = 0;
    if (!IsFixedDrive(letter)) {
        LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::IsWinREVolume It is not DRIVE_FIXED"));
    } else {
        bRet = HasMarkers(letter, volumeMarkers);
    }
    // The text is the same whatever the result.
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsRCVVolume     End return true"));
    return bRet;
}

int Kestova::IsWindowsRE(WCHAR letter) {
    return Guarded(ending::IsWindowsRE, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsWindowsRE\tStart cDriveLetter = ")).Char(letter);
        int bRet = 0;
        if (!IsFixedDrive(letter)) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsWindowsRE\t\tGetDriveType\tError"));
        } else {
            bRet = HasMarkers(letter, mediaMarkers);
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsWindowsRE\tEnd"));
        return bRet;
    });
}
