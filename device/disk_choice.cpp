// Which of the disks is the first internal one.
#include <tuple>

#include "device/disk_drive.h"
#include "device/ide_ini.h"
#include "diag/failure_record.h"

namespace {

bool IsEligible(const tagDiskDriveTable_t& table, int row) {
    const int interfaceType = table.nInterfaceType[row];
    const int busType = table.nBusType[row];
    return (interfaceType == INTERFACE_IDE || interfaceType == INTERFACE_SCSI) &&
           (busType == BUS_TYPE_ATA || busType == BUS_TYPE_RAID || busType == BUS_TYPE_SATA);
}

template <typename Test>
bool AnyEligible(const tagDiskDriveTable_t& table, Test test) {
    for (int row = 0; row < table.nCount; ++row) {
        if (IsEligible(table, row) && test(row)) return true;
    }
    return false;
}

bool IsAtaLike(const tagDiskDriveTable_t& table, int row) {
    return table.nBusType[row] == BUS_TYPE_ATA || table.nBusType[row] == BUS_TYPE_SATA;
}

bool IsFirstAta(const tagDiskDriveTable_t& table, int row) {
    return IsAtaLike(table, row) && table.nLocation[row] == 0;
}

// Compares rows with the same marker and interface.
bool ComesBeforeOnInterface(const tagDiskDriveTable_t& table, int candidate, int best) {
    if (table.nBusType[candidate] == table.nBusType[best])
        return table.nLocation[candidate] < table.nLocation[best];
    if (IsFirstAta(table, best)) return false;
    if (IsAtaLike(table, best) && table.nLocation[candidate] == 0) return true;
    return table.nBusType[candidate] == BUS_TYPE_RAID;
}

// Compares rows with the same marker on different interfaces.
bool ComesBeforeAcrossInterfaces(const tagDiskDriveTable_t& table, int candidate, int best) {
    if (table.nBusType[candidate] != table.nBusType[best]) {
        if (IsFirstAta(table, best)) return false;
        if (IsFirstAta(table, candidate)) return true;
        return table.nInterfaceType[candidate] == INTERFACE_SCSI;
    }
    if (table.nLocation[candidate] != table.nLocation[best])
        return table.nInterfaceType[candidate] == INTERFACE_SCSI;
    return table.nLocation[candidate] == 0 && table.nInterfaceType[candidate] == INTERFACE_IDE;
}

bool ComesBeforeByLocation(const tagDiskDriveTable_t& table, int candidate, int best) {
    const int candidateMarker = table.nTargetLocation[candidate];
    const int bestMarker = table.nTargetLocation[best];
    if (candidateMarker != bestMarker) {
        // A target of bus 6 is second only to location 0.
        if (candidateMarker == 1) return table.nLocation[best] != 0;
        if (bestMarker == 1) return table.nLocation[candidate] == 0;
        return false;
    }
    return table.nInterfaceType[candidate] == table.nInterfaceType[best]
               ? ComesBeforeOnInterface(table, candidate, best)
               : ComesBeforeAcrossInterfaces(table, candidate, best);
}

// The port number is ignored.
auto ScsiOrder(const tagDiskDriveTable_t& table, int row) {
    return std::tuple(table.PathId[row], table.TargetId[row], table.Lun[row]);
}

bool ComesBefore(const tagDiskDriveTable_t& table, int candidate, int best, bool hasScsi, bool hasLocation) {
    if (table.nLocation[candidate] != -1 && table.nLocation[best] != -1)
        return ComesBeforeByLocation(table, candidate, best);
    if (table.bScsiAddress[candidate] && table.bScsiAddress[best])
        return ScsiOrder(table, candidate) < ScsiOrder(table, best);
    return !hasScsi && !hasLocation && table.nDriveNumber[candidate] < table.nDriveNumber[best];
}

}  // namespace

void CDiskDrive::Compare(const tagDiskDriveTable_t& table, int candidate, int& best, bool hasScsi,
                         bool hasLocation) {
    if (ComesBefore(table, candidate, best, hasScsi, hasLocation)) best = candidate;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::Compare End. nTarget = ")).Int(best);
}

BOOL CDiskDrive::GetFirstInternalDriveNumber(int& driveNumber, int& targetLocation) {
    return GetFirstInternalDriveNumber(driveNumber, -1, targetLocation);
}

BOOL CDiskDrive::GetFirstInternalDriveNumber(int& driveNumber, int skippedDrive, int& targetLocation) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CDiskDrive::GetFirstInternalDriveNumber Start"));
    driveNumber = -1;
    tagDiskDriveTable_t table;
    const HRESULT result = GetDiskDrive(table);
    if (FAILED(result)) {
        LogFailure(
            LOG_LEVEL_ERROR,
            {TEXT("Kestova CDiskDrive::GetFirstInternalDriveNumber GetDiskDrive hResult failed. hResult = "),
             LoggedCodes::Result},
            result);
        return FALSE;
    }
    const bool hasScsi = AnyEligible(table, [&](int row) { return table.bScsiAddress[row] == TRUE; });
    const bool hasLocation = AnyEligible(table, [&](int row) { return table.nLocation[row] != -1; });
    const WideString fileName = IdeIniPath();
    BOOL found = FALSE;
    BOOL excluded = FALSE;
    BOOL listed = FALSE;
    int best = -1;
    int bestOrder = 0;
    for (int row = 0; row < table.nCount; ++row) {
        if (!IsEligible(table, row)) continue;
        excluded = ExistExcludeID(table.strControllerID[row], fileName);
        if (excluded) continue;
        found = TRUE;
        int order = 0;
        listed = GetOrderIndex(table.strControllerID[row], fileName, order);
        if (table.nDriveNumber[row] == skippedDrive) continue;

        if (driveNumber == -1) {
            best = row;
        } else if (order == bestOrder) {
            Compare(table, row, best, hasScsi, hasLocation);
        } else if (listed && (bestOrder == 0 || order < bestOrder)) {
            best = row;
        } else {
            continue;
        }
        bestOrder = order;
        driveNumber = table.nDriveNumber[best];
        targetLocation = table.nTargetLocation[best];
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::GetFirstInternalDriveNumber bExist = "))
        .Int(excluded)
        .Text(TEXT(" bFind = "))
        .Int(found)
        .Text(TEXT(" bOrderIndex = "))
        .Int(listed);
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CDiskDrive::GetFirstInternalDriveNumber end. DriveNumber = "))
        .Int(driveNumber)
        .Text(TEXT(" bFind = "))
        .Int(found);
    return found;
}
