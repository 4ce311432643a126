// The partitions of the first and second internal disks.
#include <algorithm>

#include "base/owners.h"
#include "vds/first_disk_query.h"
#include "vds/vds_ex.h"
#include "vds/vds_partition.h"

namespace {

constexpr FailureText noFirstDisk = {
    TEXT("Kestova CVDSPartition::QueryPartitions CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = "),
    LoggedCodes::Result};

constexpr FailureText noFirstPartitions = {
    TEXT("Kestova CVDSPartition::QueryPartitions QueryPartitions S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

constexpr FailureText noSecondDisk = {
    TEXT(
        "Kestova CVDSPartition::QuerySecondPartitions CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = "),
    LoggedCodes::Result};

constexpr FailureText noSecondPartitions = {
    TEXT("Kestova CVDSPartition::QuerySecondPartitions QueryPartitions S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

constexpr FailureText noTotalPartitions = {
    TEXT(
        "Kestova CVDSPartition::GetTotalPartitionNumbers\tm_pVdsAdvancedDisk->QueryPartitions S_OK != hResult GetLastError = "),
    LoggedCodes::LastError};

bool IsExpCache(const VDS_PARTITION_PROP& partition) {
    if (partition.PartitionStyle == VDS_PST_GPT) {
        return partition.Gpt.partitionType == EXPCACHE_PARTITION_GUID;
    }
    return partition.PartitionStyle == VDS_PST_MBR && partition.Mbr.partitionType == MBR_ID_CACHE;
}

}  // namespace

BOOL CVDSPartition::QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::QueryPartitions Start"));
    m_pVdsAdvancedDisk = nullptr;
    if (!GetFirstInternalDriveNumber(m_DiskNumber)) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT("Kestova CVDSPartition::QueryPartitions GetFirstInternalDriveNumber return FALSE"), FALSE);
    }
    if (m_DiskNumber == -1) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT("Kestova CVDSPartition::QueryPartitions GetFirstInternalDriveNumber m_DiskNumber = -1"),
            FALSE);
    }
    HRESULT hResult = CVDSEx::GetVdsAdvancedDisk(m_pVdsService, m_FirstDiskId, &m_pVdsAdvancedDisk);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noFirstDisk, hResult);
        return FALSE;
    }
    if (m_pVdsAdvancedDisk == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::QueryPartitions m_pVdsAdvancedDisk is NULL"), FALSE);
    }
    hResult = m_pVdsAdvancedDisk->QueryPartitions(partitions, count);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noFirstPartitions, hResult);
        return FALSE;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::QueryPartitions End"));
    return TRUE;
}

BOOL CVDSPartition::QuerySecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::QueryPartitions Start"));
    const BOOL bRet = ReadSecondPartitions(partitions, count);
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::QuerySecondPartitions End"));
    return bRet;
}

BOOL CVDSPartition::ReadSecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count) {
    int diskNumber = -1;
    if (!GetSecondInternalDriveNumber(diskNumber)) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT("Kestova CVDSPartition::QuerySecondPartitions GetSecondInternalDriveNumber return FALSE"),
            FALSE);
    }
    if (diskNumber == -1) {
        return LogFailure(
            LOG_LEVEL_ERROR,
            TEXT(
                "Kestova CVDSPartition::QuerySecondPartitions GetSecondInternalDriveNumber m_DiskNumber = -1"),
            FALSE);
    }
    ComPtr<IVdsAdvancedDisk> disk;
    HRESULT hResult = CVDSEx::GetVdsAdvancedDisk(m_pVdsService, m_SecondDiskId, disk.Put());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noSecondDisk, hResult);
        return FALSE;
    }
    if (!disk) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::QuerySecondPartitions m_pVdsAdvancedDisk is NULL"),
                          FALSE);
    }
    hResult = disk->QueryPartitions(partitions, count);
    if (hResult != S_OK) LogFailure(LOG_LEVEL_ERROR, noSecondPartitions, hResult);
    return hResult == S_OK;
}

BOOL CVDSPartition::GetTotalPartitionNumbers(int* numbers, int capacity) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetTotalPartitionNumbers Start"));
    if (numbers == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::GetTotalPartitionNumbers\tNULL == pPartitionArray"),
                          FALSE);
    }
    for (int index = 0; index < capacity; ++index)
        numbers[index] = 0;
    if (m_pVdsAdvancedDisk == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::GetTotalPartitionNumbers\tNULL == m_pVdsAdvancedDisk"),
                          FALSE);
    }
    PartitionList partitions;
    const HRESULT hResult =
        m_pVdsAdvancedDisk->QueryPartitions(partitions.PutRecords(), partitions.PutCount());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noTotalPartitions, hResult);
        return FALSE;
    }
    BOOL bRet = TRUE;
    int copied = 0;
    const std::span<const VDS_PARTITION_PROP> records = partitions.Records();
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        if (copied >= capacity) {
            LogRecord(LOG_LEVEL_ERROR)
                .Text(TEXT(
                    "Kestova CVDSPartition::GetTotalPartitionNumbers\tpPartitionArray number is not enough"));
            bRet = FALSE;
            break;
        }
        numbers[copied++] = static_cast<int>(record->ulPartitionNumber);
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetTotalPartitionNumbers end."));
    return bRet;
}

BOOL CVDSPartition::IsDynamic() {
    PartitionList partitions;
    QueryFirstDisk(*this, {}, partitions);
    return FALSE;
}

BOOL CVDSPartition::IsCachePartitionForExpCacheExist() {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::IsCachePartitionForExpCacheExist\t\tStart"));
    BOOL bRet = FALSE;
    PartitionList partitions;
    if (!QuerySecondPartitions(partitions.PutRecords(), partitions.PutCount())) {
        LogRecord(LOG_LEVEL_ERROR)
            .Text(TEXT("Kestova CVDSPartition::QuerySecondDiskPartitions error. bReturn = FALSE"));
    } else if (std::ranges::any_of(partitions.Records(), IsExpCache)) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CVDSPartition::IsCachePartitionForExpCacheExist\treturn true"));
        bRet = TRUE;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::IsCachePartitionForExpCacheExist\t\t End"));
    return bRet;
}
