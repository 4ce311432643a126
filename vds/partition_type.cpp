// Partition types: reading and changing them, and what depends on them.
#include "base/owners.h"
#include "base/wide_string.h"
#include "vds/first_disk_query.h"
#include "vds/required_interface.h"
#include "vds/vds_ex.h"

namespace {

constexpr int labelUnits = 260;

constexpr FirstDiskTexts typeTexts = {
    .service = {.level = LOG_LEVEL_TRACE,
                .missing = {TEXT("Kestova CVDSPartition::GetPartitionType NULL == m_pVdsService")},
                .notReady = {TEXT("Kestova CVDSPartition::GetPartitionType IsServiceReady S_OK != hResult")}},
    .noPartitions = {TEXT("Kestova CVDSPartition::GetPartitionType QueryPartitions return False")},
};

constexpr FirstDiskTexts changeTexts = {
    .service =
        {.level = LOG_LEVEL_ERROR,
         .missing = {TEXT("Kestova CVDSPartition::ChangePartitionType m_pVdsService is NULL")},
         .notReady =
             {TEXT("Kestova CVDSPartition::ChangePartitionType IsServiceReady S_OK != hResult. hResult = "),
              LoggedCodes::Result}},
    .noPartitions = {TEXT("Kestova CVDSPartition::ChangePartitionType QueryPartitions FALSE == bReturn")},
};

constexpr FailureText changeNoDisk = {
    TEXT(
        "Kestova CVDSPartition::ChangePartitionType CVDSEx::GetVdsAdvancedDisk2 S_OK != hResult. hResult = "),
    LoggedCodes::Result};

constexpr FailureText changeRefused = {
    TEXT("Kestova CVDSPartition::ChangePartitionType ChangePartitionType S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

}  // namespace

BOOL CVDSPartition::GetPartitionType(int partitionNumber, GUID& type) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetPartitionType\t\tStart"));
    PartitionList partitions;
    if (!QueryFirstDisk(*this, typeTexts, partitions)) return FALSE;
    const VDS_PARTITION_PROP* const partition = FindPartition(partitions, partitionNumber);
    if (partition == nullptr) {
        return LogFailure(LOG_LEVEL_TRACE,
                          TEXT("Kestova CVDSPartition::GetPartitionType does not find the partition"), FALSE);
    }
    if (partition->PartitionStyle != VDS_PST_GPT) {
        return LogFailure(
            LOG_LEVEL_TRACE,
            TEXT("Kestova CVDSPartition::GetPartitionType VDS_PST_GPT != PartitionProp.PartitionStyle"),
            FALSE);
    }
    type = partition->Gpt.partitionType;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetPartitionType End"));
    return TRUE;
}

BOOL CVDSPartition::GetPartitionType(int partitionNumber, BYTE& type) {
    type = MBR_ID_NONE;
    PartitionList partitions;
    if (!QueryFirstDisk(*this, {}, partitions)) return FALSE;
    const VDS_PARTITION_PROP* const partition = FindPartition(partitions, partitionNumber);
    if (partition == nullptr || partition->PartitionStyle != VDS_PST_MBR) return FALSE;
    type = partition->Mbr.partitionType;
    return TRUE;
}

BOOL CVDSPartition::GetGPTPartitionType(GUID& type) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::GetGPTPartitionType Start"));
    const BOOL bRet = m_PartitionProp.PartitionStyle == VDS_PST_GPT;
    if (bRet) type = m_PartitionProp.Gpt.partitionType;
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetGPTPartitionType end. bRet = "))
        .Int(bRet);
    return bRet;
}

BOOL CVDSPartition::IsBIOSHibernationPartition(int diskNumber, int partitionNumber) {
    if (!SelectDisk(diskNumber)) return FALSE;
    SelectPartition(partitionNumber);
    return m_PartitionProp.PartitionStyle == VDS_PST_MBR &&
           m_PartitionProp.Mbr.partitionType == MBR_ID_BIOS_HIBERNATION;
}

BOOL CVDSPartition::IsNeedHidePartition(int diskNumber, int partitionNumber) {
    if (!SelectDisk(diskNumber)) return FALSE;
    SelectPartition(partitionNumber);
    if (m_PartitionProp.PartitionStyle == VDS_PST_GPT)
        return PartitionTypeOf(m_PartitionProp.Gpt.partitionType).hidden;
    if (m_PartitionProp.PartitionStyle == VDS_PST_MBR) {
        WCHAR label[labelUnits] = {};
        GetVolumeLabel(label, labelUnits);
        return EqualIgnoringCase(label, TEXT("System Reserved"));
    }
    return TRUE;
}

BOOL CVDSPartition::ChangePartitionType(int partitionNumber, BYTE newType) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::ChangePartitionType Start"));
    PartitionList partitions;
    if (!QueryFirstDisk(*this, changeTexts, partitions)) return FALSE;
    const VDS_PARTITION_PROP* const partition = FindPartition(partitions, partitionNumber);
    if (partition == nullptr) {
        return LogFailure(LOG_LEVEL_ERROR, TEXT("Kestova CVDSPartition::ChangePartitionType FALSE == bFind"),
                          FALSE);
    }
    if (partition->PartitionStyle != VDS_PST_MBR) {
        return LogFailure(LOG_LEVEL_ERROR,
                          TEXT("Kestova CVDSPartition::ChangePartitionType partition style is not MBR"),
                          FALSE);
    }
    if (partition->Mbr.partitionType == newType) return TRUE;

    ComPtr<IVdsAdvancedDisk2> disk;
    HRESULT hResult = CVDSEx::GetVdsAdvancedDisk2(m_pVdsService, m_FirstDiskId, disk.Put());
    hResult = RequireInterface(hResult, disk.Get());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, changeNoDisk, hResult);
        return FALSE;
    }
    CHANGE_PARTITION_TYPE_PARAMETERS parameters = {};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.partitionType = newType;
    hResult = disk->ChangePartitionType(partition->ullOffset, TRUE, &parameters);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, changeRefused, hResult);
        return FALSE;
    }
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::ChangePartitionType End"));
    return TRUE;
}
