// Selecting a disk by its number.
#include "base/scan.h"
#include "base/wide_string.h"
#include "vds/disk_list.h"
#include "vds/service_check.h"
#include "vds/vds_ex.h"
#include "vds/vds_partition.h"

namespace {

constexpr size_t diskNameUnits = 261;

constexpr ServiceTexts serviceTexts = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSPartition::SelectDisk\tNULL == m_pVdsService")},
    .notReady = {TEXT("Kestova CVDSPartition::SelectDisk  S_OK != hResult. hResult = "),
                 LoggedCodes::ResultAndLastError},
};

constexpr FailureText noDisks = {
    TEXT("Kestova CVDSPartition::SelectDisk  CVDSEx::QueryDisks\tS_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

constexpr FailureText noDisk = {
    TEXT("Kestova CVDSPartition::SelectDisk  CVDSEx::GetVdsDisk S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

constexpr FailureText noAdvancedDisk = {
    TEXT("Kestova CVDSPartition::SelectDisk  CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

}  // namespace

BOOL CVDSPartition::GetPhysicalDriveNumber(const WCHAR* name, int& diskNumber) {
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetPhysicalDriveNumber\tStart. pszName = "))
        .Text(name != nullptr ? name : TEXT(""));  // a disk can have no name
    WCHAR buffer[diskNameUnits] = {};
    if (name != nullptr) CopyBounded(buffer, diskNameUnits, name);
    diskNumber = -1;
    if (ScanNumbers(UpperCase(buffer).c_str(), TEXT("\\\\?\\PHYSICALDRIVE%d"), {&diskNumber}) != 1) {
        LogRecord(LOG_LEVEL_TRACE)
            .Text(TEXT("Kestova CVDSPartition::GetPhysicalDriveNumber\tEnd (FALSE). Number = "))
            .Int(diskNumber);
        return FALSE;
    }
    LogRecord(LOG_LEVEL_TRACE)
        .Text(TEXT("Kestova CVDSPartition::GetPhysicalDriveNumber\tEnd (TRUE). Number = "))
        .Int(diskNumber);
    return TRUE;
}

BOOL CVDSPartition::SelectDisk(int diskNumber) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSPartition::SelectDisk\tStart"));
    if (CheckService(m_pVdsService, serviceTexts) != S_OK) return FALSE;
    DiskList disks;
    HRESULT hResult = disks.Query(m_pVdsService);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noDisks, hResult);
        return FALSE;
    }
    const VDS_DISK_PROP* const chosen = FindDisk(disks.Disks(), diskNumber);
    if (chosen == nullptr) return FALSE;

    m_DiskProp = *chosen;
    hResult = CVDSEx::GetVdsDisk(m_pVdsService, m_DiskProp.id, &m_pVdsDisk);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noDisk, hResult);
        return FALSE;
    }
    hResult = CVDSEx::GetVdsAdvancedDisk(m_pVdsService, m_DiskProp.id, &m_pVdsAdvancedDisk);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, noAdvancedDisk, hResult);
        return FALSE;
    }
    return TRUE;
}

const VDS_DISK_PROP* CVDSPartition::FindDisk(std::span<const VDS_DISK_PROP> disks, int diskNumber) {
    for (const VDS_DISK_PROP& disk : disks) {
        int number = -1;
        if (disk.dwDeviceType != FILE_DEVICE_DISK) continue;
        if (GetPhysicalDriveNumber(disk.pwszName, number) && number == diskNumber) return &disk;
    }
    return nullptr;
}

BOOL CVDSPartition::RefreshDiskProperties() {
    if (CheckService(m_pVdsService, {}) != S_OK || m_pVdsDisk == nullptr) return FALSE;
    VDS_DISK_PROP properties = {};
    if (m_pVdsDisk->GetProperties(&properties) != S_OK) return FALSE;
    m_DiskProp = properties;
    return TRUE;
}

BOOL CVDSPartition::GetDiskPartitionStyle(int& style) {
    int diskNumber = -1;
    if (!GetFirstInternalDriveNumber(diskNumber) || !SelectDisk(diskNumber) || !RefreshDiskProperties()) {
        return FALSE;
    }
    style = m_DiskProp.PartitionStyle;
    return TRUE;
}
