// Reading, assigning and deleting the drive letter of a partition of the first internal disk.
#include "base/wide_string.h"
#include "vds/first_disk_query.h"

namespace {

constexpr DWORD driveStringUnits = 1024;

constexpr FirstDiskTexts beginTexts = {
    .service = {.level = LOG_LEVEL_ERROR,
                .missing = {TEXT("Kestova CVDSPartition::SetDriveLetter m_pVdsService is NULL")},
                .notReady = {TEXT("Kestova CVDSPartition::SetDriveLetter IsServiceReady error. hResult = "),
                             LoggedCodes::Result}},
    .noPartitions = {TEXT("Kestova CVDSPartition::SetDriveLetter QueryPartitions error. hResult = "),
                     LoggedCodes::Result},
};

// Both fields of the type are tested whatever the partition's style is: they share their first byte, and no
// type GUID of the table begins with a letterable MBR ID.
bool CanHaveLetter(const VDS_PARTITION_PROP& partition) {
    return PartitionTypeOf(partition.Mbr.partitionType).letterable ||
           PartitionTypeOf(partition.Gpt.partitionType).letterable;
}

bool IsLetter(WCHAR unit) {
    return (unit >= TEXT('A') && unit <= TEXT('Z')) || (unit >= TEXT('a') && unit <= TEXT('z'));
}

void LogDeleteFailure(HRESULT hResult, WCHAR letter, DWORD lastError) {
    LogRecord(LOG_LEVEL_ERROR)
        .Text(TEXT("Kestova CVDSPartition::SetDriveLetter DeleteDriveLetter error. hResult = "))
        .Long(hResult)
        .Text(TEXT(" m_cDriveLetter = "))
        .Char(letter)
        .Text(TEXT(" GetLastError = "))
        .ULong(lastError);
}

void LogEnd() {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::SetDriveLetter\t\tEnd"));
}

}  // namespace

BOOL CVDSPartition::SetDriveLetter(int partitionNumber, int flag) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::SetDriveLetter\t\tStart  PartitionNumber = "))
        .Int(partitionNumber)
        .Text(TEXT(" SetFlag = "))
        .Int(flag);
    m_cDriveLetter = noLetter;
    ULONGLONG offset = 0;
    if (!FindLetterablePartition(partitionNumber, offset)) return FALSE;

    const HRESULT hResult = m_pVdsAdvancedDisk->GetDriveLetter(offset, &m_cDriveLetter);
    const DWORD lastError = GetLastError();
    if (hResult != S_OK) {
        LogFailure(
            LOG_LEVEL_TRACE,
            {TEXT(
                 "Kestova CVDSPartition::SetDriveLetter m_pVdsAdvancedDisk->GetDriveLetter error. hResult = "),
             LoggedCodes::Result},
            hResult);
    }
    if (!IsLetter(m_cDriveLetter)) m_cDriveLetter = noLetter;
    if (flag == FLAG_ASSIGN) return AssignLetter(offset);
    if (flag == FLAG_DELETE) return DeleteLetter(offset);
    if (hResult != S_OK) {
        LogDeleteFailure(hResult, m_cDriveLetter, lastError);
        return FALSE;
    }
    LogEnd();
    return TRUE;
}

BOOL CVDSPartition::FindLetterablePartition(int partitionNumber, ULONGLONG& offset) {
    PartitionList partitions;
    if (!QueryFirstDisk(*this, beginTexts, partitions)) return FALSE;
    const VDS_PARTITION_PROP* const partition = FindPartition(partitions, partitionNumber);
    if (partition == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::SetDriveLetter does not find the partition."), FALSE);
    }
    if (partition->PartitionStyle != VDS_PST_MBR && partition->PartitionStyle != VDS_PST_GPT) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::SetDriveLetter PartitionStyle error. PartitionProp.PartitionStyle = "))
            .Int(partition->PartitionStyle);
        return FALSE;
    }
    if (!CanHaveLetter(*partition)) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::SetDriveLetter partitionType error. PartitionProp.Mbr.partitionType = "))
            .Int(partition->Mbr.partitionType);
        return FALSE;
    }
    offset = partition->ullOffset;
    return TRUE;
}

BOOL CVDSPartition::AssignLetter(ULONGLONG offset) {
    if (m_cDriveLetter != noLetter) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CVDSPartition::SetDriveLetter exist driver letter. DriveLetter = "))
            .Char(m_cDriveLetter);
        return TRUE;
    }
    m_cDriveLetter = GetUnusedDriveLetter();
    if (m_cDriveLetter == noLetter) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::SetDriveLetter GetUnusedDriveLetter DriveLetter error. m_cDriveLetter = "))
            .Char(m_cDriveLetter);
        return FALSE;
    }
    const HRESULT hResult = m_pVdsAdvancedDisk->AssignDriveLetter(offset, m_cDriveLetter);
    if (hResult != S_OK) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova CVDSPartition::SetDriveLetter AssignDriveLetter DriveLetter = "))
            .Char(m_cDriveLetter);
        LogFailure(
            LOG_LEVEL_ERROR,
            {TEXT("Kestova CVDSPartition::SetDriveLetter AssignDriveLetter hResult = "), LoggedCodes::Result},
            hResult);
        return FALSE;
    }
    LogEnd();
    return TRUE;
}

BOOL CVDSPartition::DeleteLetter(ULONGLONG offset) {
    if (m_cDriveLetter == noLetter) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CVDSPartition::SetDriveLetter DriveLetter is 0. SetFlag = "))
            .Int(FLAG_DELETE);
        return TRUE;
    }
    const HRESULT hResult = m_pVdsAdvancedDisk->DeleteDriveLetter(offset, m_cDriveLetter);
    if (hResult != S_OK) {
        LogDeleteFailure(hResult, m_cDriveLetter, GetLastError());
        return FALSE;
    }
    m_cDriveLetter = noLetter;
    LogEnd();
    return TRUE;
}

WCHAR CVDSPartition::GetUnusedDriveLetter() {
    WCHAR drives[driveStringUnits] = {};
    if (GetLogicalDriveStringsW(driveStringUnits, drives) == 0) return noLetter;
    WideString used;
    for (const WCHAR* root = drives; *root != 0; root += WideString(root).size() + 1)
        used += *root;
    for (const WCHAR letter : WideString(TEXT("CDEFGHIJKLMNOPQRSTUVWXYZAB"))) {
        if (used.find(letter) == WideString::npos) return letter;
    }
    return noLetter;
}
