// The EFI system partition and the installed Windows, by the layout of the first internal disk.

#include "diag/failure_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/kestova.h"
#include "manager/result_codes.h"
#include "vds/vds_partition.h"

namespace {

// The partition of Windows, by the partition with the boot files, or noPartition.
struct WindowsPartition {
    THardDiskType style;
    int bootPartition;
    int partition;
};

constexpr WindowsPartition windowsPartitions[] = {
    {HARD_DISK_MBR, mbr_layout::system, mbr_layout::windowsAfterSystemReserved},
    {HARD_DISK_MBR, noPartition, mbr_layout::system},
    {HARD_DISK_GPT, gpt_layout::efiSystem, gpt_layout::windows},
    {HARD_DISK_GPT, noPartition, gpt_layout::windowsWithoutEfi},
};

const WindowsPartition* FindWindowsPartition(THardDiskType style, int bootPartition) {
    for (const WindowsPartition& row : windowsPartitions)
        if (row.style == style && row.bootPartition == bootPartition) return &row;
    return nullptr;
}

void LogNoWindowsPartition(THardDiskType style) {
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
    disk = noDisk;
    partition = noPartition;
    letter = noLetter;
    const int internalDisk = GetFirstInternalDriveNumber();
    if (internalDisk < 0) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova::GetBitLockerSystemInfo\tGetFirstInternalDriveNumber error"),
                          DWORD{NO_INTERNAL_DISK});
    }
    if (m_pVDSPartition == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::GetBitLockerSystemInfo\tNULL == m_pVDSPartition"),
                          DWORD{NO_VOLUME_LAYER});
    }
    THardDiskType style = HARD_DISK_UNKNOWN;
    if (!GetDiskStyle(style)) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova::GetBitLockerSystemInfo\tGetDiskStyle ERROR_GET_DISK_STYLE"),
                          DWORD{ERROR_GET_DISK_STYLE});
    }
    GUID type = {};
    if (style == HARD_DISK_MBR) {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is MBR"));
    } else if (style == HARD_DISK_GPT) {
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is GPT"));
        if (!m_pVDSPartition->GetPartitionType(gpt_layout::efiSystem, type)) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetBitLockerSystemInfo\tGetPartitionType Error"),
                              DWORD{NO_SYSTEM_PARTITION_TYPE});
        }
    } else {
        return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is UNKNOWN"),
                          DWORD{UNKNOWN_DISK_STYLE});
    }
    if (type == PARTITION_SYSTEM_GUID) {
        disk = internalDisk;
        partition = gpt_layout::efiSystem;
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
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetVistaOSInfo\tGetDiskStyle\tERROR_GET_DISK_STYLE"),
                              DWORD{ERROR_GET_DISK_STYLE});
        }
        int bootDisk = noDisk;
        int bootPartition = noPartition;
        WCHAR bootLetter = noLetter;
        const DWORD code = GetBitLockerSystemInfo(bootDisk, bootPartition, bootLetter);
        const WindowsPartition* const windows = FindWindowsPartition(style, bootPartition);
        if (windows == nullptr) {
            LogNoWindowsPartition(style);
            const bool isKnownStyle = style == HARD_DISK_MBR || style == HARD_DISK_GPT;
            return isKnownStyle ? code : static_cast<DWORD>(DWORD{ERROR_GET_DISK_STYLE});
        }
        // Without an EFI system partition the disk is noDisk, and no letter is found.
        const WCHAR found = GetDriveLetter(bootDisk, windows->partition);
        if (found == noLetter) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetVistaOSInfo\tGetDriveLetter\tERROR_GET_DRIVE_LETTER"),
                              DWORD{ERROR_GET_DRIVE_LETTER});
        }
        if (!IsVistaOS(found)) {
            return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::GetVistaOSInfo\tIsVistaOS\tERROR_NO_EXIST_OS"),
                              DWORD{ERROR_NO_EXIST_OS});
        }
        disk = bootDisk;
        partition = windows->partition;
        letter = found;
        return 0;
    };

    disk = noDisk;
    partition = noPartition;
    letter = noLetter;
    const DWORD code = locate();
    LogRecord(LOG_LEVEL_TRACE)
        .String(StringFormat(
            TEXT("Kestova::GetVistaOSInfo DiskNumber: %d  PartitionNumber: %d  cDriveLetter: %c"), disk,
            partition, letter));
    return code;
}
