// Which disks are the internal ones. In installed Windows the first is the one that Windows runs from. In
// Windows PE it is the choice of IDE.INI and CDiskDrive if that file exists, else the lowest number; the
// second is the smallest.
#include "device/disk_drive.h"
#include "device/ide_ini.h"
#include "vds/disk_list.h"
#include "vds/service_check.h"
#include "vds/vds_partition.h"

namespace {

constexpr ServiceTexts firstService = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber m_pVdsService = NULL")},
    .notReady = {TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber IsServiceReady Error hResult = "),
                 LoggedCodes::Result},
};

constexpr FailureText firstNoDisks = {
    TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber call CVDSEx::QueryDisks Error hResult = "),
    LoggedCodes::Result};

constexpr ServiceTexts secondService = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber m_pVdsService is NULL")},
    .notReady = {TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber IsServiceReady S_OK != hResult")},
};

constexpr FailureText secondNoDisks = {
    TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber CVDSEx::QueryDisks S_OK != hResult")};

constexpr FailureText secondNoNumber = {
    TEXT(
        "Kestova CVDSPartition::GetSecondInternalDriveNumber GetPhysicalDriveNumber S_OK != hResult. hResult="),
    LoggedCodes::ResultAndLastError, TEXT("GetLastError=")};

// A chosen disk, and its index in the list of disks.
struct Candidate {
    int number = -1;
    int targetLocation = 0;  // 1: its location is a Target Id of bus 6
    size_t position = 0;     // 0 until the disk is found in the list
};

// The search for the first internal disk. Only IDE.INI produces a second candidate.
struct FirstDiskSearch {
    bool windowsPe;
    bool settingFile;
    Candidate first;
    Candidate second;
};

bool IsInternalBus(VDS_STORAGE_BUS_TYPE bus) {
    return bus == VDS_BUS_TYPE_ATA || bus == VDS_BUS_TYPE_RAID || bus == VDS_BUS_TYPE_SATA;
}

bool IsNumber(int diskNumber) {
    if (diskNumber >= 0) return true;
    LogRecord(LOG_LEVEL_ERROR)
        .Text(TEXT(
            "Kestova CVDSPartition::GetFirstInternalDriveNumber call pDiskDrive->GetFirstInternalDriveNumber Error DiskNumber < 0. DiskNumber = "))
        .Int(diskNumber);
    return false;
}

bool ChooseInWindows(int& diskNumber) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber bWindowsPE = FALSE"));
    if (!CDiskDrive().GetCurrentDriveNumber(diskNumber)) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::GetFirstInternalDriveNumber call pDiskDrive->GetCurrentDriveNumber Error bResult = "))
            .Int(FALSE)
            .Text(TEXT("  DiskNumber = "))
            .Int(diskNumber);
        return false;
    }
    return IsNumber(diskNumber);
}

bool ChooseBySettingFile(Candidate& first, Candidate& second) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber bExistSettingFile = TRUE"));
    const BOOL bResult = CDiskDrive().GetFirstInternalDriveNumber(first.number, first.targetLocation);
    if (first.targetLocation == 1) {
        CDiskDrive().GetFirstInternalDriveNumber(second.number, first.number, second.targetLocation);
    }
    if (!bResult) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::GetFirstInternalDriveNumber call pDiskDrive->GetFirstInternalDriveNumber Error hResult = "))
            .Long(bResult)
            .Text(TEXT("  DiskNumber = "))
            .Int(first.number);
        return false;
    }
    return IsNumber(first.number);
}

// False after the record if there is no candidate. In Windows PE without IDE.INI the list decides later.
bool Choose(FirstDiskSearch& search) {
    if (!search.windowsPe) return ChooseInWindows(search.first.number);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber bWindowsPE = TRUE"));
    if (search.settingFile) return ChooseBySettingFile(search.first, search.second);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber bExistSettingFile = FALSE"));
    return true;
}

// Tests one eligible disk of the list: whether it is the first internal one among those tested so far.
bool IsFirstDisk(FirstDiskSearch& search, int nDiskNumber, size_t position) {
    if (search.windowsPe) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber  bExistRAIDEXE && bWindowsPE"));
        if (nDiskNumber == search.first.number) search.first.position = position;
        if (nDiskNumber == search.second.number) search.second.position = position;
        if (!search.settingFile) {
            const bool lowest = search.first.number == -1 || nDiskNumber < search.first.number;
            if (lowest) search.first.number = nDiskNumber;
            return lowest;
        }
    }
    if (nDiskNumber != search.first.number) return false;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber  DiskNumber = nDiskNumber = "))
        .Int(nDiskNumber);
    return true;
}

// Walks the list; whether it contains the first internal disk, whose id is stored.
BOOL MatchDisks(CVDSPartition& partition, std::span<const VDS_DISK_PROP> disks, FirstDiskSearch& search,
                GUID& firstDiskId) {
    BOOL bFind = FALSE;
    for (size_t position = 0; position < disks.size(); ++position) {
        const VDS_DISK_PROP& disk = disks[position];
        if (disk.dwDeviceType != FILE_DEVICE_DISK) {
            LogRecord(LOG_LEVEL_TRACE)
                .Text(TEXT("FILE_DEVICE_DISK != dwDeviceType, lDisk = "))
                .Long(static_cast<LONG>(position));
            continue;
        }
        int nDiskNumber = -1;
        if (!IsInternalBus(disk.BusType)) continue;
        if (!partition.GetPhysicalDriveNumber(disk.pwszName, nDiskNumber)) continue;
        if (IsFirstDisk(search, nDiskNumber, position)) {
            firstDiskId = disk.id;
            bFind = TRUE;
        }
    }
    return bFind;
}

// Of two candidates on Target Ids of bus 6 the larger disk is the internal one.
bool PrefersSecond(const FirstDiskSearch& search, std::span<const VDS_DISK_PROP> disks) {
    return search.first.targetLocation == 1 && search.second.targetLocation == 1 &&
           search.second.number >= 0 && !disks.empty() &&
           disks[search.second.position].ullSize > disks[search.first.position].ullSize;
}

}  // namespace

BOOL CVDSPartition::GetFirstInternalDriveNumber(int& diskNumber) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber Start"));
    diskNumber = -1;
    if (CheckService(m_pVdsService, firstService) != S_OK) return FALSE;
    FirstDiskSearch search = {};
    search.settingFile = PathFileExistsW(IdeIniPath().c_str());
    search.windowsPe = CDiskDrive().IsWindowsPE();
    const bool chosen = Choose(search);
    diskNumber = search.first.number;
    if (!chosen) return FALSE;

    DiskList list;
    const HRESULT hResult = list.Query(m_pVdsService);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, firstNoDisks, hResult);
        return FALSE;
    }
    const std::span<const VDS_DISK_PROP> disks = list.Disks();
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber lNumberOfDisks = "))
        .Long(static_cast<LONG>(disks.size()));
    BOOL bFind = MatchDisks(*this, disks, search, m_FirstDiskId);
    if (PrefersSecond(search, disks)) {
        search.first.number = search.second.number;
        m_FirstDiskId = disks[search.second.position].id;
        bFind = TRUE;
    }
    diskNumber = search.first.number;
    m_FirstDiskNumber = diskNumber;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetFirstInternalDriveNumber End DiskNumber = "))
        .Int(diskNumber)
        .Text(TEXT(" bFind = "))
        .Int(bFind);
    return bFind;
}

BOOL CVDSPartition::GetSecondInternalDriveNumber(int& diskNumber) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Info: Kestova CVDSPartition::GetSecondInternalDriveNumber Start"));
    diskNumber = FindSmallestDisk();
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber End. DiskNumber ="))
        .Int(diskNumber);
    return diskNumber >= 0;
}

int CVDSPartition::FindSmallestDisk() {
    if (CheckService(m_pVdsService, secondService) != S_OK || !CDiskDrive().IsWindowsPE()) return -1;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber bWindowsPE  TRUE"));
    DiskList list;
    const HRESULT hResult = list.Query(m_pVdsService);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, secondNoDisks, hResult);
        return -1;
    }
    int smallest = -1;
    ULONGLONG smallestSize = 0;  // 0: none yet
    for (const VDS_DISK_PROP& disk : list.Disks()) {
        if (disk.dwDeviceType != FILE_DEVICE_DISK || !IsInternalBus(disk.BusType)) continue;
        int nDiskNumber = -1;
        const BOOL parsed = GetPhysicalDriveNumber(disk.pwszName, nDiskNumber);
        if (!parsed) {
            LogFailure(LOG_LEVEL_ERROR, secondNoNumber, parsed);
            continue;
        }
        if (smallestSize != 0 && disk.ullSize >= smallestSize) continue;
        smallestSize = disk.ullSize;
        smallest = nDiskNumber;
        m_SecondDiskId = disk.id;
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetSecondInternalDriveNumber TRUE == bFind. FirstDiskNumber ="))
        .Int(m_FirstDiskNumber);
    return smallest;
}
