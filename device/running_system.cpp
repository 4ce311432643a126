// Which Windows is running, and on which disk.
#include "base/format.h"
#include "device/device_handle.h"
#include "device/disk_drive.h"
#include "platform/start_options.h"

BOOL CDiskDrive::IsWindowsPE() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, startOptionsKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return FALSE;
    }
    constexpr DWORD capacity = 1000;                   // bytes
    WCHAR options[capacity / sizeof(WCHAR) + 1] = {};  // terminated even if the registry value is not
    DWORD size = capacity;
    const LSTATUS read =
        RegQueryValueExW(key, startOptionsValue, nullptr, nullptr, reinterpret_cast<BYTE*>(options), &size);
    const LSTATUS closed = RegCloseKey(key);
    if (read != ERROR_SUCCESS || closed != ERROR_SUCCESS) return FALSE;
    return UpperCase(options).find(windowsPeOption) != WideString::npos;
}

BOOL CDiskDrive::GetCurrentDriveNumber(int& driveNumber) {
    driveNumber = -1;
    WCHAR directory[MAX_PATH] = {};
    GetWindowsDirectoryW(directory, MAX_PATH);
    const WCHAR letter = UpperCase(directory)[0];
    if (letter < TEXT('A') || letter > TEXT('Z') || directory[1] != TEXT(':')) return FALSE;

    WCHAR path[8];
    FormatInto(path, std::size(path), TEXT("%c:"), letter);
    if (GetDriveTypeW(path) != DRIVE_FIXED) return FALSE;
    const FileHandle volume = OpenVolume(letter, GENERIC_READ | GENERIC_WRITE);
    return volume && ReadDiskNumber(volume, driveNumber);
}
