// The partitions of the internal disks: finding, selecting, lettering, activating and retyping them.
#pragma once

#include "platform/vds.h"
#include "platform/partition_types.h"

// What SetDriveLetter does; any other value than the first two queries.
inline constexpr int FLAG_QUERY = 0;
inline constexpr int FLAG_ASSIGN = 1;
inline constexpr int FLAG_DELETE = 2;

// Owns one connection to the Virtual Disk Service and remembers what was selected. Unless said otherwise an
// operation works on the first internal disk, which it finds afresh at every call, and answers TRUE or FALSE.
class CVDSPartition {
  public:
    CVDSPartition();
    ~CVDSPartition();
    CVDSPartition(const CVDSPartition&) = delete;
    CVDSPartition& operator=(const CVDSPartition&) = delete;

    // --- the service and the internal disks ---
    BOOL Initialize();
    IVdsService* GetService() const { return m_pVdsService; }
    BOOL GetFirstInternalDriveNumber(int& diskNumber);
    BOOL GetSecondInternalDriveNumber(int& diskNumber);

    // --- selection ---
    BOOL SelectDisk(int diskNumber);
    BOOL GetPhysicalDriveNumber(const WCHAR* name, int& diskNumber);
    BOOL RefreshDiskProperties();
    BOOL GetDiskPartitionStyle(int& style);
    BOOL SelectPartition(int partitionNumber);
    const VDS_DISK_PROP& DiskProperties() const { return m_DiskProp; }
    const VDS_PARTITION_PROP& PartitionProperties() const { return m_PartitionProp; }

    // --- partitions ---
    BOOL QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    BOOL QuerySecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    BOOL GetTotalPartitionNumbers(int* numbers, int capacity);
    BOOL GetVolumeLabel(WCHAR* label, int capacity);
    BOOL GetPartitionType(int partitionNumber, GUID& type);
    BOOL GetPartitionType(int partitionNumber, BYTE& type);
    BOOL GetGPTPartitionType(GUID& type);
    BOOL IsBIOSHibernationPartition(int diskNumber, int partitionNumber);
    BOOL IsNeedHidePartition(int diskNumber, int partitionNumber);
    BOOL IsDynamic();
    BOOL IsCachePartitionForExpCacheExist();

    // --- changes ---
    BOOL SetDriveLetter(int partitionNumber, int flag);
    WCHAR GetDriveLetter() const { return m_cDriveLetter; }
    BOOL SetActive(int partitionNumber);
    BOOL ClearActive();
    BOOL GetActivePartitionNumber(int& partitionNumber);
    BOOL ChangePartitionType(int partitionNumber, BYTE newType);

  private:
    WCHAR GetUnusedDriveLetter();

    int m_DiskNumber = -1;
    int m_FirstDiskNumber = -1;
    WCHAR m_cDriveLetter = TEXT('0');
    IVdsService* m_pVdsService = nullptr;
    IVdsAdvancedDisk* m_pVdsAdvancedDisk = nullptr;
    GUID m_FirstDiskId{};
    GUID m_SecondDiskId{};
    BOOL m_bServiceLoaded = FALSE;
    VDS_DISK_PROP m_DiskProp{};
    VDS_PARTITION_PROP m_PartitionProp{};
    VDS_DISK_EXTENT m_DiskExtent{};
    IVdsVolumeMF* m_pVdsVolumeMF = nullptr;
    IVdsDisk* m_pVdsDisk = nullptr;
};
