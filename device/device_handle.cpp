#include "device/device_handle.h"

#include <iterator>

#include "base/format.h"

namespace {

FileHandle Open(const WCHAR* path, DWORD access) {
    return FileHandle(CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

FileHandle OpenDevice(const WCHAR* path) {
    return Open(path, GENERIC_READ | GENERIC_WRITE);
}

FileHandle OpenVolume(WCHAR letter, DWORD access) {
    WCHAR path[8];
    FormatInto(path, std::size(path), TEXT("\\\\.\\%c:"), letter);
    return Open(path, access);
}

bool ReadDiskNumber(const FileHandle& volume, int& diskNumber) {
    VOLUME_DISK_EXTENTS extents = {};  // space for one extent
    DWORD returned = 0;
    if (!DeviceIoControl(volume.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, &extents,
                         sizeof extents, &returned, nullptr)) {
        return false;
    }
    diskNumber = static_cast<int>(extents.Extents[0].DiskNumber);
    return true;
}
