// Questions about the internal disk and its partitions, and the active flag: thin fronts over the volume
// layer.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/kestova.h"
#include "manager/volume_location.h"
#include "vds/vds_partition.h"

int Kestova::GetFirstInternalDriveNumber() {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetFirstInternalDriveNumber\tStart"));
    int number = -1;
    if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetFirstInternalDriveNumber(number)) number = -1;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::GetFirstInternalDriveNumber\tEnd. DriveNumber = "))
        .Int(number);
    return number;
}

int Kestova::GetActivePartitionNumber() {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetActivePartitionNumber\tStart"));
    int number = -1;
    if (m_pVDSPartition == nullptr || !m_pVDSPartition->GetActivePartitionNumber(number)) number = -1;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova::GetActivePartitionNumber\tEnd. PartitionNumber = "))
        .Int(number);
    return number;
}

int Kestova::SetActive(int partition) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetActive\tStart"));
    const int iRet = m_pVDSPartition != nullptr && !m_pVDSPartition->SetActive(partition);
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::SetActive\tEnd. iRet = ")).Int(iRet);
    return iRet;
}

int Kestova::ClearActive() {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::ClearActive\t\tStart"));
    const int iRet = m_pVDSPartition != nullptr && !m_pVDSPartition->ClearActive();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::ClearActive\t\tEnd. iRet = ")).Int(iRet);
    return iRet;
}

int Kestova::GetDiskStyle(THardDiskType& style) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDiskStyle\t\tStart"));
    style = HARD_DISK_UNKNOWN;
    if (m_pVDSPartition != nullptr) {
        int disk = -1;
        VDS_PARTITION_PROP* partitions = nullptr;
        LONG count = 0;
        if (m_pVDSPartition->GetFirstInternalDriveNumber(disk) && m_pVDSPartition->SelectDisk(disk) &&
            m_pVDSPartition->QueryPartitions(&partitions, &count)) {
            style = static_cast<THardDiskType>(m_pVDSPartition->DiskProperties().PartitionStyle);
            CoTaskMemFree(partitions);
        }
        m_HardDiskType = style;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDiskStyle\t\tEnd. enumDiskStyle = ")).Int(style);
    return m_pVDSPartition != nullptr;
}

WCHAR Kestova::GetDriveLetter(int disk, int partition) {
    ModuleContext context;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDriveLetter\tStart"));
    for (WCHAR letter = TEXT('A'); letter <= TEXT('Z'); ++letter) {
        if (!IsLetterOfPartition(letter, disk, partition)) continue;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDriveLetter\tEnd. Driver is ")).Char(letter);
        return letter;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::GetDriveLetter\tEnd. Driver is 0"));
    return TEXT('0');
}
