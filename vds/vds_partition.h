// The partitions of the internal disks: finding and selecting them, changing letters, active flags and types.
#pragma once

#include <span>

#include "base/drive_letter.h"
#include "platform/partition_types.h"
#include "platform/vds.h"

// What SetDriveLetter does; any value other than 1 and 2 queries.
inline constexpr int FLAG_QUERY = 0;
inline constexpr int FLAG_ASSIGN = 1;
inline constexpr int FLAG_DELETE = 2;

// Owns one connection to the Virtual Disk Service, and stores the current selection. Unless stated otherwise,
// an operation works on the first internal disk, which it determines again at every call, and returns TRUE or
// FALSE. Every call of the service must return exactly S_OK; FALSE follows a record of what failed. Disk and
// partition numbers are those of Windows; -1 means none. COM must be initialised on the calling thread, and
// only one thread at a time may use the object.
class CVDSPartition {
  public:
    CVDSPartition();
    // Releases the interfaces that the object holds. Those of an earlier selection, which a later one
    // overwrote, are leaked.
    ~CVDSPartition();
    CVDSPartition(const CVDSPartition&) = delete;
    CVDSPartition& operator=(const CVDSPartition&) = delete;

    // --- the service and the internal disks ---

    // Connects to the service: up to 20 attempts, one second apart. FALSE if the last one failed; a service
    // that was loaded but is not ready is kept then.
    BOOL Initialize();
    // The service, which the object owns; null before Initialize.
    IVdsService* GetService() const { return m_pVdsService; }
    // Installed Windows: the disk that contains the Windows directory. Windows PE: the choice of CDiskDrive
    // if there is an IDE.INI beside the host application, else the lowest number among the ATA, RAID and SATA
    // disks. FALSE if no disk of the service matches; the number is then the one that was searched for, or
    // -1.
    BOOL GetFirstInternalDriveNumber(int& diskNumber);
    // The smallest ATA, RAID or SATA disk, which may be the first internal one; the first of several of equal
    // size. FALSE and -1 outside Windows PE.
    BOOL GetSecondInternalDriveNumber(int& diskNumber);

    // --- selection ---

    // Selects the disk of that number, on any bus. FALSE without a record if there is none.
    BOOL SelectDisk(int diskNumber);
    // The number in \\?\PhysicalDriveN, ignoring case; FALSE and -1 for every other name and for null.
    BOOL GetPhysicalDriveNumber(const WCHAR* name, int& diskNumber);
    // Reads the properties of the selected disk again. FALSE without a record.
    BOOL RefreshDiskProperties();
    // Selects the first internal disk and returns its VDS_PARTITION_STYLE; unchanged on FALSE.
    BOOL GetDiskPartitionStyle(int& style);
    // Selects a partition of the disk that SelectDisk or QueryPartitions selected last, with the extent of
    // the selected disk at its offset. Always TRUE: PartitionProperties are all zero for a missing partition,
    // and without a matching extent that of an earlier selection is kept.
    BOOL SelectPartition(int partitionNumber);
    const VDS_DISK_PROP& DiskProperties() const { return m_DiskProp; }
    const VDS_PARTITION_PROP& PartitionProperties() const { return m_PartitionProp; }

    // --- partitions ---

    // The partitions of the first internal disk, which GetTotalPartitionNumbers and SelectPartition use from
    // then on. FALSE also for a disk without partitions (S_FALSE). The caller frees the array with
    // CoTaskMemFree.
    BOOL QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    // The same for the second internal disk; selects nothing.
    BOOL QuerySecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    // The partition numbers of the disk selected last, in reverse order, followed by zeros. FALSE with a full
    // array if the capacity is too small.
    BOOL GetTotalPartitionNumbers(int* numbers, int capacity);
    // The label of the volume on the selected extent, truncated to the capacity (in characters, with the
    // terminator); empty for a volume without one. FALSE without a record if there is no volume or it cannot
    // be read; the buffer is unchanged then.
    BOOL GetVolumeLabel(WCHAR* label, int capacity);
    // The GPT type of a partition. FALSE for an MBR partition; the type is unchanged then.
    BOOL GetPartitionType(int partitionNumber, GUID& type);
    // The MBR ID of a partition. FALSE and MBR_ID_NONE without a record, as for a GPT partition.
    BOOL GetPartitionType(int partitionNumber, BYTE& type);
    // The GPT type of the selected partition; unchanged on FALSE.
    BOOL GetGPTPartitionType(GUID& type);
    // Whether a partition has the MBR ID of a BIOS hibernation partition. Selects disk and partition.
    BOOL IsBIOSHibernationPartition(int diskNumber, int partitionNumber);
    // Whether a partition should be hidden from users: on GPT by its type (PartitionType::hidden), on MBR a
    // volume labelled "System Reserved", ignoring case; of unknown style every one, including one that does
    // not exist. Selects disk and partition.
    BOOL IsNeedHidePartition(int diskNumber, int partitionNumber);
    // Always FALSE: dynamic disks are not reported.
    BOOL IsDynamic();
    // Whether the second internal disk has a cache partition (MBR ID 0x49 or the GPT type).
    BOOL IsCachePartitionForExpCacheExist();

    // --- changes ---

    // Reads, assigns or deletes the letter of a partition whose type allows one (PartitionType::letterable).
    // GetDriveLetter then returns the letter: '0' after a deletion, the letter that was tried after a failed
    // assignment.
    //   FLAG_ASSIGN  TRUE if the partition has a letter, or got the first free one of C to Z, A, B
    //   FLAG_DELETE  TRUE if it has no letter any more
    //   others       TRUE if the service returned a letter or none
    BOOL SetDriveLetter(int partitionNumber, int flag);
    // The letter of the last SetDriveLetter; '0': none.
    WCHAR GetDriveLetter() const { return m_cDriveLetter; }
    // Sets the active flag of an MBR partition and changes no other flag. FALSE without a record if there is
    // no such partition.
    BOOL SetActive(int partitionNumber);
    // Clears every active flag; FALSE at the first that cannot be cleared. TRUE also if none was set.
    BOOL ClearActive();
    // The first MBR partition whose active flag is 1; FALSE and -1 if there is none, as on GPT disks.
    BOOL GetActivePartitionNumber(int& partitionNumber);
    // Changes the ID of an MBR partition, forced; TRUE without a change if it has that ID already.
    BOOL ChangePartitionType(int partitionNumber, BYTE newType);

  private:
    int FindSmallestDisk();
    const VDS_DISK_PROP* FindDisk(std::span<const VDS_DISK_PROP> disks, int diskNumber);
    bool ReadPartition(int partitionNumber);
    void ReadExtent();
    BOOL ReadLabel(WCHAR* label, int capacity);
    BOOL ReadSecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    BOOL FindLetterablePartition(int partitionNumber, ULONGLONG& offset);
    BOOL AssignLetter(ULONGLONG offset);
    BOOL DeleteLetter(ULONGLONG offset);
    // The first letter of C to Z, A, B that no drive has; '0' if all are in use.
    WCHAR GetUnusedDriveLetter();

    int m_DiskNumber = -1;
    int m_FirstDiskNumber = -1;
    WCHAR m_cDriveLetter = noLetter;
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
