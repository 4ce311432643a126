// Which Windows is running, and on which disk.
#include "base/format.h"
#include "device/device_handle.h"
#include "device/disk_drive.h"

BOOL CDiskDrive::IsWindowsPE() {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control"), 0, KEY_READ, &key) !=
        ERROR_SUCCESS) {
        return FALSE;
    }
    constexpr DWORD capacity = 1000;                   // bytes
    WCHAR options[capacity / sizeof(WCHAR) + 1] = {};  // terminated even if the registry value is not
    DWORD size = capacity;
    const LSTATUS read = RegQueryValueExW(key, TEXT("SystemStartOptions"), nullptr, nullptr,
                                          reinterpret_cast<BYTE*>(options), &size);
    const LSTATUS closed = RegCloseKey(key);
    if (read != ERROR_SUCCESS || closed != ERROR_SUCCESS) return FALSE;
    return UpperCase(options).find(TEXT("MININT")) != WideString::npos;
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
    FormatInto(path, std::size(path), TEXT("\\\\.\\%c:"), letter);
    const FileHandle volume = OpenDevice(path);
    if (!volume) return FALSE;
    // Space for one extent: a volume with more fails with ERROR_MORE_DATA.
    VOLUME_DISK_EXTENTS extents = {};
    DWORD returned = 0;
    if (!DeviceIoControl(volume.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, &extents,
                         sizeof extents, &returned, nullptr)) {
        return FALSE;
    }
    driveNumber = static_cast<int>(extents.Extents[0].DiskNumber);
    return TRUE;
}
