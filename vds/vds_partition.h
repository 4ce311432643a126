// The partitions of the internal disks: finding, selecting, lettering, activating and retyping them.
#pragma once

#include <span>

#include "base/drive_letter.h"
#include "platform/partition_types.h"
#include "platform/vds.h"

// What SetDriveLetter does; any other value than the first two queries.
inline constexpr int FLAG_QUERY = 0;
inline constexpr int FLAG_ASSIGN = 1;
inline constexpr int FLAG_DELETE = 2;

// Owns one connection to the Virtual Disk Service and remembers what was selected. Unless said otherwise an
// operation works on the first internal disk, which it finds afresh at every call, and answers TRUE or FALSE.
// Every operation of the service must answer exactly S_OK; FALSE comes after the record of what failed. Disk
// and partition numbers are those of Windows; -1 means none. COM must be initialised on the calling thread,
// and one caller at a time uses the object.
class CVDSPartition {
  public:
    CVDSPartition();
    // Releases the interfaces that the object holds at its end. What was selected before and replaced by a
    // later selection is not released by anyone.
    ~CVDSPartition();
    CVDSPartition(const CVDSPartition&) = delete;
    CVDSPartition& operator=(const CVDSPartition&) = delete;

    // --- the service and the internal disks ---

    // Connects to the service: up to 20 attempts, one second apart. FALSE when the last one failed; a service
    // that was loaded but is not ready is held then.
    BOOL Initialize();
    // The service, or null before Initialize. It stays the object's.
    IVdsService* GetService() const { return m_pVdsService; }
    // Installed Windows: the disk that holds the Windows directory. Windows PE: by IDE.INI and CDiskDrive if
    // that file lies beside the host program, otherwise the lowest number among the ATA, RAID and SATA disks.
    // FALSE when no disk of the service matches; the number is then what was looked for, or -1.
    BOOL GetFirstInternalDriveNumber(int& diskNumber);
    // The smallest ATA, RAID or SATA disk, the first internal one included; the first of several of equal
    // size. Only in Windows PE: elsewhere FALSE and -1.
    BOOL GetSecondInternalDriveNumber(int& diskNumber);

    // --- selection ---

    // Selects the disk of that number on whatever bus. FALSE without a record when there is none.
    BOOL SelectDisk(int diskNumber);
    // The number in \\?\PhysicalDriveN, in any case; FALSE and -1 for every other name and for none.
    BOOL GetPhysicalDriveNumber(const WCHAR* name, int& diskNumber);
    // Reads the properties of the selected disk again. FALSE without a record.
    BOOL RefreshDiskProperties();
    // Selects the first internal disk and tells its VDS_PARTITION_STYLE; untouched on FALSE.
    BOOL GetDiskPartitionStyle(int& style);
    // Selects a partition of the disk that SelectDisk or QueryPartitions chose last, with the extent of the
    // selected disk at its offset. Always TRUE: a missing partition leaves PartitionProperties all zero, and
    // the extent of an earlier selection stays when no new one was found.
    BOOL SelectPartition(int partitionNumber);
    const VDS_DISK_PROP& DiskProperties() const { return m_DiskProp; }
    const VDS_PARTITION_PROP& PartitionProperties() const { return m_PartitionProp; }

    // --- partitions ---

    // The partitions of the first internal disk, which also becomes the disk of GetTotalPartitionNumbers and
    // SelectPartition. FALSE also for a disk without partitions (S_FALSE). The caller frees the array with
    // CoTaskMemFree.
    BOOL QueryPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    // The same of the second internal disk; nothing is selected.
    BOOL QuerySecondPartitions(VDS_PARTITION_PROP** partitions, LONG* count);
    // The partition numbers of the disk chosen last, last partition first, zeros behind them. FALSE with the
    // array filled when the capacity does not suffice.
    BOOL GetTotalPartitionNumbers(int* numbers, int capacity);
    // The label of the volume on the selected extent, cut to the capacity (in characters, with the
    // terminator); empty for a volume without one. FALSE without a record when there is no volume or it
    // cannot be read; the buffer is untouched then.
    BOOL GetVolumeLabel(WCHAR* label, int capacity);
    // The GPT type of a partition; untouched on FALSE, as on MBR disks.
    BOOL GetPartitionType(int partitionNumber, GUID& type);
    // The MBR ID of a partition. FALSE and MBR_ID_NONE without a record of its own, as on GPT disks.
    BOOL GetPartitionType(int partitionNumber, BYTE& type);
    // The GPT type of the selected partition; untouched on FALSE.
    BOOL GetGPTPartitionType(GUID& type);
    // Whether the MBR ID is that of a BIOS hibernation partition. Selects disk and partition.
    BOOL IsBIOSHibernationPartition(int diskNumber, int partitionNumber);
    // Whether users should not see the partition: the maker's boot, EFI system and reserved partitions of GPT
    // disks, an MBR volume labelled "System Reserved" in any case, and every partition of unknown style, so
    // also one that does not exist. Selects disk and partition.
    BOOL IsNeedHidePartition(int diskNumber, int partitionNumber);
    // Always FALSE: dynamic disks are not reported.
    BOOL IsDynamic();
    // Whether the second internal disk carries a cache partition (MBR ID 0x49 or its GPT type).
    BOOL IsCachePartitionForExpCacheExist();

    // --- changes ---

    // Reads, gives or takes the letter of a partition that may be lettered: MBR IDs 0x27 and 0x12; GPT types
    // recovery, basic data, EFI system and maker's boot. GetDriveLetter tells the letter afterwards; '0'
    // after a deletion, and the letter that was tried after a failed assignment.
    //   FLAG_ASSIGN  TRUE when the partition has or got a letter: the first free one of C to Z, A, B
    //   FLAG_DELETE  TRUE when it has none any more
    //   others       TRUE when the service could tell
    BOOL SetDriveLetter(int partitionNumber, int flag);
    // The letter that SetDriveLetter dealt with last; '0': none.
    WCHAR GetDriveLetter() const { return m_cDriveLetter; }
    // Sets the active flag of an MBR partition and touches no other flag. FALSE without a record when there
    // is no such partition.
    BOOL SetActive(int partitionNumber);
    // Clears every active flag, stopping at the first that cannot be cleared; TRUE also when none was set.
    BOOL ClearActive();
    // The first MBR partition whose active flag is 1; FALSE and -1 when there is none, as on GPT disks.
    BOOL GetActivePartitionNumber(int& partitionNumber);
    // Gives an MBR partition another ID, by force; TRUE at once when it has that ID already.
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
    // The first letter of C to Z, A, B that no drive has; '0' when all are taken.
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
