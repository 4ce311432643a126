// The EFI system partition and the installed Windows, by the layout of the first internal disk.

#include "diag/failure_record.h"
#include "diag/module.h"
#include "manager/factory_layout.h"
#include "manager/formatted_record.h"
#include "manager/guard.h"
#include "manager/kestova.h"
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
    DWORD step = ending::GetBitLockerSystemInfo;
    return Guarded(step, [&]() -> DWORD {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tStart"));
        disk = noDisk;
        partition = noPartition;
        letter = noLetter;
        const int internalDisk = GetFirstInternalDriveNumber();
        if (internalDisk < 0) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetBitLockerSystemInfo\tGetFirstInternalDriveNumber error"),
                              step);
        }
        if (m_pVDSPartition == nullptr) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetBitLockerSystemInfo\tNULL == m_pVDSPartition"),
                              DWORD{NO_VOLUME_LAYER});
        }
        step = ERROR_GET_DISK_STYLE;
        THardDiskType style = HARD_DISK_UNKNOWN;
        if (!GetDiskStyle(style)) {
            return LogFailure(LOG_LEVEL_ERROR,
                              TEXT("Kestova::GetBitLockerSystemInfo\tGetDiskStyle ERROR_GET_DISK_STYLE"),
                              step);
        }
        step = NO_SYSTEM_PARTITION_TYPE;
        GUID type = {};
        if (style == HARD_DISK_MBR) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is MBR"));
        } else if (style == HARD_DISK_GPT) {
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is GPT"));
            if (!m_pVDSPartition->GetPartitionType(gpt_layout::efiSystem, type)) {
                return LogFailure(LOG_LEVEL_ERROR,
                                  TEXT("Kestova::GetBitLockerSystemInfo\tGetPartitionType Error"), step);
            }
        } else {
            return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova::GetBitLockerSystemInfo\tDiskStyle is UNKNOWN"),
                              DWORD{UNKNOWN_DISK_STYLE});
        }
        const bool found = type == PARTITION_SYSTEM_GUID;
        const int foundDisk = found ? internalDisk : noDisk;
        const int foundPartition = found ? gpt_layout::efiSystem : noPartition;
        TraceString(StringFormat(
            TEXT("Kestova::GetBitLockerSystemInfo DiskNumber: %d  PartitionNumber: %d  cDriveLetter: %c"),
            foundDisk, foundPartition, letter));
        disk = foundDisk;
        partition = foundPartition;
        return 0;
    });
}

DWORD Kestova::GetVistaOSInfo(int& disk, int& partition, WCHAR& letter) {
    DWORD step = ending::GetVistaOSInfo;
    return Guarded(step, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetVistaOSInfo\tStart"));
        int foundDisk = noDisk;
        int foundPartition = noPartition;
        WCHAR foundLetter = noLetter;

        const auto locate = [&]() -> DWORD {
            THardDiskType style = HARD_DISK_UNKNOWN;
            if (!GetDiskStyle(style)) {
                return LogFailure(LOG_LEVEL_ERROR,
                                  TEXT("Kestova::GetVistaOSInfo\tGetDiskStyle\tERROR_GET_DISK_STYLE"), step);
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
            step = ERROR_GET_DRIVE_LETTER;
            const WCHAR found = GetDriveLetter(bootDisk, windows->partition);
            if (found == noLetter) {
                return LogFailure(LOG_LEVEL_ERROR,
                                  TEXT("Kestova::GetVistaOSInfo\tGetDriveLetter\tERROR_GET_DRIVE_LETTER"),
                                  step);
            }
            step = ERROR_NO_EXIST_OS;
            if (!IsVistaOS(found)) {
                return LogFailure(LOG_LEVEL_ERROR,
                                  TEXT("Kestova::GetVistaOSInfo\tIsVistaOS\tERROR_NO_EXIST_OS"), step);
            }
            foundDisk = bootDisk;
            foundPartition = windows->partition;
            foundLetter = found;
            return 0;
        };

        disk = noDisk;
        partition = noPartition;
        letter = noLetter;
        const DWORD code = locate();
        TraceString(StringFormat(
            TEXT("Kestova::GetVistaOSInfo DiskNumber: %d  PartitionNumber: %d  cDriveLetter: %c"), foundDisk,
            foundPartition, foundLetter));
        disk = foundDisk;
        partition = foundPartition;
        letter = foundLetter;
        return code;
    });
}
