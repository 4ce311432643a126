// The active flag of the MBR partitions of the first internal disk.
#include "vds/first_disk_query.h"

namespace {

constexpr FirstDiskTexts setTexts = {
    .service = {.level = LOG_LEVEL_ERROR,
                .missing = {TEXT("Kestova CVDSPartition::SetActive m_pVdsService is NULL.")},
                .notReady = {TEXT("Kestova CVDSPartition::SetActive IsServiceReady error. hResult = "),
                             LoggedCodes::ResultAndLastError}},
    .noPartitions = {TEXT("Kestova CVDSPartition::SetActive QueryPartitions error. FALSE == bReturn ")},
};

constexpr FirstDiskTexts clearTexts = {
    .service = {.level = LOG_LEVEL_ERROR,
                .missing = {TEXT("Kestova CVDSPartition::ClearActive\tm_pVdsService is NULL.")},
                .notReady = {TEXT("Kestova CVDSPartition::ClearActive\tIsServiceReady error. hResult = "),
                             LoggedCodes::Result}},
    .noPartitions = {TEXT("Kestova CVDSPartition::ClearActive\tQueryPartitions return false.")},
};

constexpr FirstDiskTexts getTexts = {
    .service = {.level = LOG_LEVEL_ERROR,
                .missing = {TEXT("Kestova CVDSPartition::GetActivePartitionNumber\tm_pVdsService is NULL.")},
                .notReady =
                    {TEXT(
                         "Kestova CVDSPartition::GetActivePartitionNumber\tIsServiceReady error. hResult = "),
                     LoggedCodes::Result}},
    .noPartitions = {TEXT("Kestova CVDSPartition::GetActivePartitionNumber\tQueryPartitions return false.")},
};

constexpr FailureText setRefused = {
    TEXT("Kestova CVDSPartition::SetActive ChangeAttributes error. hResult = "), LoggedCodes::Result};

constexpr FailureText clearRefused = {
    TEXT("Kestova CVDSPartition::ClearActive\tChangeAttributes error.hResult = "),
    LoggedCodes::ResultAndLastError, TEXT(" GetLastError: ")};

HRESULT ChangeActiveFlag(IVdsAdvancedDisk& disk, const VDS_PARTITION_PROP& partition, BOOLEAN indicator) {
    CHANGE_ATTRIBUTES_PARAMETERS parameters = {};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.bootIndicator = indicator;
    return disk.ChangeAttributes(partition.ullOffset, &parameters);
}

}  // namespace

BOOL CVDSPartition::SetActive(int partitionNumber) {
    PartitionList partitions;
    if (!QueryFirstDisk(*this, setTexts, partitions)) return FALSE;
    BOOL bFind = FALSE;
    for (const VDS_PARTITION_PROP& partition : partitions.Records()) {
        if (partition.PartitionStyle != VDS_PST_MBR ||
            partition.ulPartitionNumber != static_cast<ULONG>(partitionNumber)) {
            continue;
        }
        const HRESULT hResult = ChangeActiveFlag(*m_pVdsAdvancedDisk, partition, TRUE);
        if (hResult != S_OK) {
            LogFailure(LOG_LEVEL_ERROR, setRefused, hResult);
            return FALSE;
        }
        bFind = TRUE;
    }
    return bFind;
}

BOOL CVDSPartition::ClearActive() {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::ClearActive\t\tStart"));
    PartitionList partitions;
    if (!QueryFirstDisk(*this, clearTexts, partitions)) return FALSE;
    for (const VDS_PARTITION_PROP& partition : partitions.Records()) {
        if (partition.PartitionStyle != VDS_PST_MBR || partition.Mbr.bootIndicator == 0) continue;
        const HRESULT hResult = ChangeActiveFlag(*m_pVdsAdvancedDisk, partition, FALSE);
        if (hResult != S_OK) {
            LogFailure(LOG_LEVEL_ERROR, clearRefused, hResult);
            return FALSE;
        }
    }
    return TRUE;
}

BOOL CVDSPartition::GetActivePartitionNumber(int& partitionNumber) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetActivePartitionNumber\t\tStart"));
    partitionNumber = -1;
    PartitionList partitions;
    if (!QueryFirstDisk(*this, getTexts, partitions)) return FALSE;
    BOOL bFind = FALSE;
    for (const VDS_PARTITION_PROP& partition : partitions.Records()) {
        if (partition.PartitionStyle == VDS_PST_MBR && partition.Mbr.bootIndicator == 1) {
            partitionNumber = static_cast<int>(partition.ulPartitionNumber);
            bFind = TRUE;
            break;
        }
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetActivePartitionNumber\t\tEnd. bFind = "))
        .Int(bFind);
    return bFind;
}
