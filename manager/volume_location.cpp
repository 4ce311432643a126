// Where the volume behind a drive letter lies, as the volume itself tells; and which letter leads there.

#include <iterator>

#include "base/format.h"
#include "base/owners.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/drive.h"
#include "manager/kestova.h"

namespace {

HANDLE OpenVolume(WCHAR letter, DWORD access) {
    WCHAR path[MAX_PATH];
    FormatInto(path, std::size(path), TEXT("\\\\.\\%c:"), letter);
    return CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Both questions have an output of fixed size and no input.
template <typename Output>
bool Query(const FileHandle& volume, DWORD control, Output& output) {
    DWORD returned = 0;
    return DeviceIoControl(volume.Get(), control, nullptr, 0, &output, sizeof output, &returned, nullptr);
}

// The disk of the one extent that there is room for: false for a volume on several.
bool QueryDisk(const FileHandle& volume, int& disk) {
    VOLUME_DISK_EXTENTS extents{};
    if (!Query(volume, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, extents)) return false;
    disk = static_cast<int>(extents.Extents[0].DiskNumber);
    return true;
}

bool QueryPartition(const FileHandle& volume, int& partition) {
    PARTITION_INFORMATION_EX information{};
    if (!Query(volume, IOCTL_DISK_GET_PARTITION_INFO_EX, information)) return false;
    partition = static_cast<int>(information.PartitionNumber);
    return true;
}

bool LeadsTo(WCHAR letter, int disk, int partition) {
    if (!IsFixedDrive(letter)) return false;
    const FileHandle volume(OpenVolume(letter, GENERIC_READ | GENERIC_WRITE));
    int number = -1;
    return volume && QueryDisk(volume, number) && number == disk && QueryPartition(volume, number) &&
           number == partition;
}

}  // namespace

WCHAR Kestova::GetDriveLetter(int disk, int partition) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDriveLetter\tStart"));
    const WCHAR found = FirstLetter([&](WCHAR letter) { return LeadsTo(letter, disk, partition); });
    LogSearched(found, TEXT("Kestova::GetDriveLetter\tEnd. Driver is "),
                TEXT("Kestova::GetDriveLetter\tEnd. Driver is 0"));
    return found;
}

int Kestova::GetDiskNumber(WCHAR letter) {
    LogRecord(LOG_LEVEL_TRACE)
        .String(StringFormat(TEXT("Kestova::GetDiskNumber      cDriveLetter is %c "), letter));
    int iDiskNum = 255;
    const FileHandle volume(OpenVolume(letter, GENERIC_READ));
    if (volume && QueryDisk(volume, iDiskNum)) {
        // Under the tag of GetPartNumber.
        LogRecord(LOG_LEVEL_TRACE)
            .String(StringFormat(TEXT("Kestova::GetPartNumber      iDiskNum is %d "), iDiskNum));
    }
    return iDiskNum;
}

int Kestova::GetPartNumber(WCHAR letter) {
    LogRecord(LOG_LEVEL_TRACE)
        .String(StringFormat(TEXT("Kestova::GetPartNumber      cDriveLetter is %c "), letter));
    int iPartNum = 0;
    const FileHandle volume(OpenVolume(letter, GENERIC_READ));
    if (volume && QueryPartition(volume, iPartNum)) {
        LogRecord(LOG_LEVEL_TRACE)
            .String(StringFormat(TEXT("Kestova::GetPartNumber      iPartNum is %d "), iPartNum));
    }
    return iPartNum;
}
