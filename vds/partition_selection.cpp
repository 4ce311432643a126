// Selecting a partition of the selected disk, with the extent that identifies its volume.
#include <cstring>

#include "vds/service_array.h"
#include "vds/service_check.h"
#include "vds/vds_partition.h"

namespace {

constexpr ServiceTexts serviceTexts = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSPartition::SelectPartition\tNULL == m_pVdsService")},
    .notReady = {TEXT("Kestova CVDSPartition::SelectPartition\tS_OK != hResult GetLastError = "),
                 LoggedCodes::LastError},
};

constexpr FailureText noPartitions = {
    TEXT(
        "Kestova CVDSPartition::SelectPartition\tm_pVdsAdvancedDisk->QueryPartitions S_OK != hResult GetLastError = "),
    LoggedCodes::LastError};

constexpr FailureText noExtents = {
    TEXT("Kestova CVDSPartition::SelectPartition\tm_pVdsDisk->QueryExtents S_OK != hResult GetLastError = "),
    LoggedCodes::LastError};

}  // namespace

BOOL CVDSPartition::SelectPartition(int partitionNumber) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::SelectPartition\tStart"));
    std::memset(&m_PartitionProp, 0, sizeof(m_PartitionProp));
    if (ReadPartition(partitionNumber)) ReadExtent();
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::SelectPartition\tEnd bRet = ")).Int(TRUE);
    return TRUE;
}

bool CVDSPartition::ReadPartition(int partitionNumber) {
    if (CheckService(m_pVdsService, serviceTexts) != S_OK) return false;
    if (m_pVdsDisk == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova CVDSPartition::SelectPartition\tNULL == m_pVdsDisk"),
                          false);
    }
    if (m_pVdsAdvancedDisk == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::SelectPartition\tNULL == m_pVdsAdvancedDisk"), false);
    }
    PartitionList partitions;
    const HRESULT hResult =
        m_pVdsAdvancedDisk->QueryPartitions(partitions.PutRecords(), partitions.PutCount());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noPartitions, hResult);
        return false;
    }
    if (!partitions.HasArray()) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT(
                "Kestova CVDSPartition::SelectPartition\tm_pVdsAdvancedDisk->QueryPartitions NULL == pVdsPartitionPropArray"),
            false);
    }
    const VDS_PARTITION_PROP* const found = FindPartition(partitions, partitionNumber);
    if (found == nullptr) return false;
    m_PartitionProp = *found;
    return true;
}

void CVDSPartition::ReadExtent() {
    ExtentList extents;
    const HRESULT hResult = m_pVdsDisk->QueryExtents(extents.PutRecords(), extents.PutCount());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noExtents, hResult);
        return;
    }
    if (!extents.HasArray()) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT(
                "Kestova CVDSPartition::SelectPartition m_pVdsDisk->QueryExtents NULL == pVdsDiskExtent"));
        return;
    }
    for (const VDS_DISK_EXTENT& extent : extents.Records()) {
        if (extent.ullOffset == m_PartitionProp.ullOffset) {
            m_DiskExtent = extent;
            return;
        }
    }
}
