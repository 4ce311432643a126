// The disk and partition of a drive letter, and the letter of a disk and partition, by queries of the
// volumes.

#include "base/owners.h"
#include "device/device_handle.h"
#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/drive.h"
#include "manager/formatted_record.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "manager/letter_map/unread_location.h"
#include "platform/windows_api.h"

namespace {

bool ReadPartitionNumber(const FileHandle& volume, int& partition) {
    PARTITION_INFORMATION_EX information{};
    DWORD returned = 0;
    if (!DeviceIoControl(volume.Get(), IOCTL_DISK_GET_PARTITION_INFO_EX, nullptr, 0, &information,
                         sizeof information, &returned, nullptr)) {
        return false;
    }
    partition = static_cast<int>(information.PartitionNumber);
    return true;
}

bool IsOnPartition(WCHAR letter, int disk, int partition) {
    if (!IsFixedDrive(letter)) return false;
    const FileHandle volume = OpenVolume(letter, GENERIC_READ | GENERIC_WRITE);
    int number = -1;
    return volume && ReadDiskNumber(volume, number) && number == disk &&
           ReadPartitionNumber(volume, number) && number == partition;
}

}  // namespace

WCHAR Kestova::GetDriveLetter(int disk, int partition) {
    return Guarded(ending::GetDriveLetter, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDriveLetter\tStart"));
        const WCHAR found = FirstLetter([&](WCHAR letter) { return IsOnPartition(letter, disk, partition); });
        LogSearched(found, TEXT("Kestova::GetDriveLetter\tEnd. Driver is "),
                    TEXT("Kestova::GetDriveLetter\tEnd. Driver is 0"));
        return found;
    });
}

int Kestova::GetDiskNumber(WCHAR letter) {
    TraceString(StringFormat(TEXT("Kestova::GetDiskNumber      cDriveLetter is %c "), letter));
    int iDiskNum = unreadDisk;
    const FileHandle volume = OpenVolume(letter, GENERIC_READ);
    if (volume && ReadDiskNumber(volume, iDiskNum)) {
        // The text names GetPartNumber.
        TraceString(StringFormat(TEXT("Kestova::GetPartNumber      iDiskNum is %d "), iDiskNum));
    }
    return iDiskNum;
}

int Kestova::GetPartNumber(WCHAR letter) {
    TraceString(StringFormat(TEXT("Kestova::GetPartNumber      cDriveLetter is %c "), letter));
    int iPartNum = unreadPartition;
    const FileHandle volume = OpenVolume(letter, GENERIC_READ);
    if (volume && ReadPartitionNumber(volume, iPartNum)) {
        TraceString(StringFormat(TEXT("Kestova::GetPartNumber      iPartNum is %d "), iPartNum));
    }
    return iPartNum;
}
