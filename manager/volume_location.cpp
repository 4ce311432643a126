#include "manager/volume_location.h"

#include "device/owners.h"
#include "text/format.h"

namespace {

bool IsFixedDrive(WCHAR letter) {
    WCHAR root[MAX_PATH];
    FormatInto(root, MAX_PATH, TEXT("%c:"), letter);
    return GetDriveTypeW(root) == DRIVE_FIXED;
}

HANDLE OpenVolume(WCHAR letter, DWORD access) {
    WCHAR path[MAX_PATH];
    FormatInto(path, MAX_PATH, TEXT("\\\\.\\%c:"), letter);
    return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Both questions have an output of fixed size and no input. The extents have room for one: a volume on
// several fails.
template <typename Output>
bool Query(HANDLE volume, DWORD control, Output& output) {
    DWORD returned = 0;
    return DeviceIoControl(volume, control, nullptr, 0, &output, sizeof output, &returned, nullptr);
}

}  // namespace

bool IsLetterOfPartition(WCHAR letter, int disk, int partition) {
    if (!IsFixedDrive(letter)) return false;
    const FileHandle volume(OpenVolume(letter, GENERIC_READ | GENERIC_WRITE));
    if (!volume) return false;
    VOLUME_DISK_EXTENTS extents{};
    if (!Query(volume.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, extents) ||
        static_cast<int>(extents.Extents[0].DiskNumber) != disk) {
        return false;
    }
    PARTITION_INFORMATION_EX information{};
    return Query(volume.Get(), IOCTL_DISK_GET_PARTITION_INFO_EX, information) &&
           static_cast<int>(information.PartitionNumber) == partition;
}
