// Where the EFI system partition and the installed Windows lie, told by the layout of the first internal
// disk.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/kestova.h"
#include "manager/result_codes.h"
#include "vds/vds_partition.h"

namespace {

// The partition of Windows by the partition that the boot files were found on, -1 for none.
struct WindowsPartition {
    THardDiskType style;
    int bootPartition;
    int partition;
};

constexpr WindowsPartition windowsPartitions[] = {
    {HARD_DISK_MBR, 2, 3},
    {HARD_DISK_MBR, -1, 2},
    {HARD_DISK_GPT, 3, 5},
    {HARD_DISK_GPT, -1, 3},
};

const WindowsPartition* FindWindowsPartition(THardDiskType style, int bootPartition) {
    for (const WindowsPartition& row : windowsPartitions)
        if (row.style == style && row.bootPartition == bootPartition) return &row;
    return nullptr;
}

void TellNoWindowsPartition(THardDiskType style) {
    if (style == HARD_DISK_MBR) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova::GetVistaOSInfo   MBR Does not get os partition number"));
    } else if (style == HARD_DISK_GPT) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova::GetVistaOSInfo   GPT Does not get os partition number"));
    } else {
        LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::GetVistaOSInfo\tGetDiskStyle\tUNKNOWTYPE"));
    }
}

}  // namespace

DWORD Kestova::GetBitLockerSystemInfo(int& disk, int& partition, WCHAR& letter) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tStart"));
    disk = -1;
    partition = -1;
    letter = TEXT('0');
    const int internalDisk = GetFirstInternalDriveNumber();
    if (internalDisk < 0) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova::GetBitLockerSystemInfo\tGetFirstInternalDriveNumber error"));
        return NO_INTERNAL_DISK;
    }
    if (m_pVDSPartition == nullptr) {
        LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::GetBitLockerSystemInfo\tNULL == m_pVDSPartition"));
        return NO_VOLUME_LAYER;
    }
    THardDiskType style = HARD_DISK_UNKNOWN;
    if (!GetDiskStyle(style)) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova::GetBitLockerSystemInfo\tGetDiskStyle ERROR_GET_DISK_STYLE"));
        return ERROR_GET_DISK_STYLE;
    }
    constexpr int systemPartition = 3;
    GUID type = {};
    if (style == HARD_DISK_MBR) {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is MBR"));
    } else if (style == HARD_DISK_GPT) {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is GPT"));
        if (!m_pVDSPartition->GetPartitionType(systemPartition, type)) {
            LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::GetBitLockerSystemInfo\tGetPartitionType Error"));
            return NO_SYSTEM_PARTITION_TYPE;
        }
    } else {
        LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is UNKNOWN"));
        return UNKNOWN_DISK_STYLE;
    }
    if (type == PARTITION_SYSTEM_GUID) {
        disk = internalDisk;
        partition = systemPartition;
    }
    LogRecord(LOG_LEVEL_TRACE)
        .String(StringFormat(
            TEXT("Kestova::GetBitLockerSystemInfo DiskNumber: %d  PartitionNumber: %d  cDriveLetter: %c"),
            disk, partition, letter));
    return 0;
}

DWORD Kestova::GetVistaOSInfo(int& disk, int& partition, WCHAR& letter) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetVistaOSInfo\tStart"));

    const auto locate = [&]() -> DWORD {
        THardDiskType style = HARD_DISK_UNKNOWN;
        if (!GetDiskStyle(style)) {
            LogRecord(LOG_LEVEL_ERROR)
                .Text(TEXT("Kestova::GetVistaOSInfo\tGetDiskStyle\tERROR_GET_DISK_STYLE"));
            return ERROR_GET_DISK_STYLE;
        }
        int bootDisk = -1;
        int bootPartition = -1;
        WCHAR bootLetter = TEXT('0');
        const DWORD code = GetBitLockerSystemInfo(bootDisk, bootPartition, bootLetter);
        const WindowsPartition* const windows = FindWindowsPartition(style, bootPartition);
        if (windows == nullptr) {
            TellNoWindowsPartition(style);
            const bool isKnownStyle = style == HARD_DISK_MBR || style == HARD_DISK_GPT;
            return isKnownStyle ? code : static_cast<DWORD>(ERROR_GET_DISK_STYLE);
        }
        // Without an EFI system partition the disk is -1, and no letter is found.
        const WCHAR found = GetDriveLetter(bootDisk, windows->partition);
        if (found == TEXT('0')) {
            LogRecord(LOG_LEVEL_ERROR)
                .Text(TEXT("Kestova::GetVistaOSInfo\tGetDriveLetter\tERROR_GET_DRIVE_LETTER"));
            return ERROR_GET_DRIVE_LETTER;
        }
        if (!IsVistaOS(found)) {
            LogRecord(LOG_LEVEL_ERROR).Text(TEXT("Kestova::GetVistaOSInfo\tIsVistaOS\tERROR_NO_EXIST_OS"));
            return ERROR_NO_EXIST_OS;
        }
        disk = bootDisk;
        partition = windows->partition;
        letter = found;
        return 0;
    };

    disk = -1;
    partition = -1;
    letter = TEXT('0');
    const DWORD code = locate();
    LogRecord(LOG_LEVEL_TRACE)
        .String(StringFormat(
            TEXT("Kestova::GetVistaOSInfo DiskNumber: %d  PartitionNumber: %d  cDriveLetter: %c"), disk,
            partition, letter));
    return code;
}
