// The library's public interface: one class that queries and changes the recovery layout of the internal
// disk.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#if !defined(_WIN32)
#define KESTOVA_API
#elif defined(KESTOVA_EXPORTS)
#define KESTOVA_API __declspec(dllexport)
#else
#define KESTOVA_API __declspec(dllimport)
#endif

class CEncryptVolume;
class CVDSPartition;
class CReservedObject;

// Partition style of a disk.
enum THardDiskType : int { HARD_DISK_UNKNOWN = 0, HARD_DISK_MBR = 1, HARD_DISK_GPT = 2 };

// Layout of the first internal disk.
enum tagDiskTypeEnum : int {
    DISK_TYPE_UNKNOWN = 0,              // undetermined, or MBR and the ID of partition 2 is not 0x07
    DISK_TYPE_GPT_ESP = 1,              // GPT; partition 3 is the EFI system partition
    DISK_TYPE_GPT_OTHER = 2,            // GPT; partition 3 is anything else
    DISK_TYPE_MBR_SYSTEM_RESERVED = 3,  // MBR; partition 2 is labelled "System Reserved"
    DISK_TYPE_MBR_OTHER = 4,            // MBR; partition 2 has the ID 0x07 and any other label
};

// The volume to which the installed Windows assigns a letter.
struct tagDriveInfo_t {
    int iDiskNum;        // in the running system; 255 if it could not be read
    int iPartNum;        // 0 if it could not be read
    WCHAR cDriveLetter;  // the installed Windows' letter
};

// The data that a registry stores for a drive letter.
struct tagDeviceData_t {
    BYTE* pData;
    DWORD dwLength;  // bytes
};

// Create one object, call Initialize, then query and change. Every call is synchronous. Failures are returned
// and never thrown: if memory runs out, an operation returns its result of a failure, or that of the step it
// had reached. COM must be initialised on the calling thread. One object must not be used from two threads at
// once. A copy shares the objects that its source owns, and the destructor of each frees them: destroy only
// one of the two. docs/result-codes.md has what to do after each failure. If memory runs out, its maps of
// drive letters are empty, until GetWinDriveLetters reads them again.
class KESTOVA_API Kestova {
  public:
    Kestova();
    Kestova(const Kestova& other);
    ~Kestova();
    Kestova& operator=(const Kestova& other);

    // Sets COM security and loads the Virtual Disk Service: up to 20 attempts, one second apart. 0 if the
    // last one failed, else 1. The argument has no effect. Checks of files and letters work without this
    // call.
    int Initialize(bool reserved);

    // --- disks and partitions ---

    // Number of the first internal disk; -1 if there is none.
    int GetFirstInternalDriveNumber();
    // Partition style of the first internal disk, unknown if a query failed. 0 only without a volume layer
    // (memory ran out when the object was created), else 1.
    int GetDiskStyle(THardDiskType& style);
    // Layout of the first internal disk, unknown if a query failed. Always 1.
    int GetCurrentDiskType(tagDiskTypeEnum& type);
    // Always 0: no disk counts as dynamic.
    int IsDynamic();
    // 1 on UEFI firmware, 0 on BIOS, by the error of GetFirmwareEnvironmentVariableW.
    int IsEFIBootSystem();
    // Letter of a partition: the first of A to Z that is a fixed drive on exactly one extent; '0' if there is
    // none.
    WCHAR GetDriveLetter(int disk, int partition);
    // 1 if a partition should be hidden from users: on MBR one labelled "System Reserved", on GPT one of the
    // maker's boot, EFI system or Microsoft reserved type, on a disk of unknown style every one, as is a
    // partition that does not exist or cannot be read. Else 0, also if the disk cannot be selected or the
    // label cannot be read.
    int IsNeedHidePartition(int disk, int partition);
    // 1 if a partition is the BIOS's hibernation partition (MBR ID 0x84), else 0.
    int IsBIOSHibernationPartition(int disk, int partition);
    // Changes the MBR ID of a partition of the first internal disk to 0x84. 0 on success; 1 on failure, also
    // without a volume layer.
    int SetBIOSHibernationPartitionID(int partition);
    // Number of the active partition of the first internal disk; -1 if there is none.
    int GetActivePartitionNumber();
    // Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself. 0 on
    // success, and without a volume layer; 1 on failure.
    int SetActive(int partition);
    // Clears every active flag of the first internal disk. 0 on success, and without a volume layer; 1 on
    // failure.
    int ClearActive();

    // --- recovery media and volumes ---

    // Letter of the first volume labelled "Factory", ignoring case; '0' if there is none. Always 1.
    int GetFactoryPrtDriveLetter(WCHAR& letter);
    // Letter of the first recovery disc; '0' if there is none.
    WCHAR GetRCVDISC();
    // Letter of the first recovery USB flash drive; '0' if there is none.
    WCHAR GetRCVUFD();
    // 1 if the letter is a fixed drive with the maker's bootable Windows RE files, else 0.
    int IsWindowsRE(WCHAR letter);
    // 1 if the letter is a fixed drive with an installed Windows, or one that is encrypted, which counts as
    // one; else 0.
    int IsVistaOS(WCHAR letter);
    // 1 if the second internal disk has the cache partition, else 0.
    int IsCachePartitionForExpCacheExist();

    // --- letters on demand ---
    //
    // Each works on the first internal disk and requires an initialised object.

    // Assigns a letter to partition 1, or returns the one it has, if it is of the maker's boot type. 0 on
    // success. Otherwise the letter is unchanged: 101: the type could not be read; 113: another type; 105:
    // the letter could not be assigned; 104: it is '0'.
    int ActiveOrvoBootPartition(WCHAR& letter);
    // Deletes the letter of partition 1, whoever assigned it. 0 on success; 105 on failure.
    int DisableOrvoBootPartition();
    // The same as ActiveOrvoBootPartition for partition 3 and the EFI system type.
    int ActiveGPTSystemPartition(WCHAR& letter);
    // Deletes the letter of partition 3, whoever assigned it. 0 on success; 105 on failure.
    int DisableGPTSystemPartition();
    // Assigns a letter to the recovery partition (GPT), or returns the one it has; '0' if there is no such
    // partition or no letter. Always 1.
    int AssignRecoveryPartition(WCHAR& letter);
    // The same as AssignRecoveryPartition for the Windows RE partition, which is partition 2 or none.
    int AssignWinREPartition(WCHAR& letter);
    // Deletes the letter of the partition that AssignRecoveryPartition found last, whoever assigned it. Does
    // nothing before that operation first returned a letter.
    void RemoveRecoveryPartition();
    // The same as RemoveRecoveryPartition for AssignWinREPartition.
    void RemoveWinREPartition();
    // 1 if AssignRecoveryPartition returns a letter, which stays until RemoveRecoveryPartition; else 0.
    int IsExistRcvprt();

    // --- encryption and the installed Windows ---

    // 1 if BitLocker can be queried, even if no volume is encrypted; else 0.
    int IsExistEncryptVolume();
    // Letter of the only encrypted volume, in BitLocker's case; NUL if it has no letter; '0' if there is no
    // encrypted volume or more than one, or BitLocker cannot be queried.
    WCHAR GetEncryptVolume();
    // The letters of all encrypted volumes in upper case, as one string, truncated to size characters with
    // its terminator; 33 are always enough. 0 and the empty string if BitLocker cannot be queried, else 1.
    int GetAllEncryptVolume(WCHAR* buffer, DWORD size);
    // Disk and partition (always 3) of the EFI system partition; -1 and -1 if there is none, as on every MBR
    // disk. The letter is always '0'. 0 on success, found or not; 100: no internal disk; 106: unknown
    // partition style; 111: the style could not be read; 115: the type of partition 3 could not be read; 116:
    // no volume layer.
    DWORD GetBitLockerSystemInfo(int& disk, int& partition, WCHAR& letter);
    // Disk, partition and letter of the installed Windows: partition 5 of a GPT disk whose partition 3 is the
    // EFI system partition. 0 on success. Otherwise -1, -1 and '0': 104: the partition has no letter, also on
    // every other layout; 110: it contains no Windows; 111: the partition style could not be read or is
    // unknown.
    DWORD GetVistaOSInfo(int& disk, int& partition, WCHAR& letter);
    // The disk and partition of each letter of the installed Windows, in ascending order, at most count
    // records; those that are not filled are unchanged. 0 if a step failed or count was too small, else 1.
    // Needs the X: drive of Windows PE. May wait 61.8 seconds: `reg` loads and unloads a hive, each in up to
    // three attempts of up to 10 seconds and a pause of 0.3. Only one object at a time may do this, in all
    // processes: they share the batch file and the place of the hive.
    int GetWinDriveLetters(tagDriveInfo_t* records, int count);

    // --- choosing what the machine boots ---

    // Makes the recovery partition active and records the one that was active before. 0 on success, or if it
    // was active already; 1: no active partition could be read; 2: its number is unknown; 3: the recovery
    // partition cannot be used: no letter, an unexpected type, or no recovery files; 4: the record could not
    // be written; 5: the flag could not be set, and the operation tried to delete the record and to set the
    // previous flag again.
    int SetRcvprtActive();
    // Makes the recorded partition active again, or partition 2 without a usable record, and deletes the
    // record. 0 on success, or if there is nothing to do; 1 to 3: as for SetRcvprtActive; 4: the flag could
    // not be set; 5: the record could not be deleted.
    int SetSystemActive();
    // The same as SetRcvprtActive, but deletes a record that is unusable or contains 2. 0 to 5: as there; 6:
    // the record could not be deleted.
    int SetPOneActive();
    // Makes partition 2 active and deletes the record. 0 on success; 1: the flag could not be set, and the
    // operation tried to make partition 1 active; 2: the recovery partition cannot be used: no letter, an
    // unexpected type, or no recovery files; 3: the record could not be deleted. After 2 and 3 partition 2 is
    // active.
    int SetPTwoActive();

  private:
    using DeviceMap = std::map<WCHAR, tagDeviceData_t>;

    std::basic_string<WCHAR> StringFormat(const WCHAR* format, ...);

    // 255 if it cannot be read.
    int GetDiskNumber(WCHAR letter);
    // 0 if it cannot be read.
    int GetPartNumber(WCHAR letter);

    // Writes at most 260 characters to name, truncated and terminated; 0 without writing if the name cannot
    // be read.
    int GetVolumeName(WCHAR letter, WCHAR* name);
    int IsRCVVolume(WCHAR letter, int mediaType);
    int IsWinREVolume(WCHAR letter);
    int IsOSVolume(WCHAR letter);
    WCHAR GetOSVolume();

    int CheckMBRRcvprtStatus(int partition);
    int IsRecoveryPartition(int disk, int partition, int& is);
    int IsExistRecoveryPartition(int& disk, int& partition, int& exists);
    int IsWinREPartition(int disk, int partition, int& is);
    int IsExistWinREPartition(int& disk, int& partition, int& exists);
    int GetSystemVolumeIni(WCHAR* pszFile, DWORD dwFileNumberOfElements);

    // 0 is success, unlike in the neighbouring members.
    int LoadRegistry(const WCHAR* command);
    int LoadWindowsRegistry();
    int UnloadWindowsRegistry();
    int ReadRegistry(WCHAR* sRegisterPath);
    int TransformDriveLetter(WCHAR cWindowsDriveLetter, WCHAR& cWinPEDriveLetter);
    void CleanMap();

    THardDiskType m_HardDiskType = HARD_DISK_UNKNOWN;
    WCHAR m_wReserved;
    CEncryptVolume* m_pEncryptVolume = nullptr;
    CVDSPartition* m_pVDSPartition = nullptr;
    CReservedObject* m_pReserved1 = nullptr;
    CReservedObject* m_pReserved2 = nullptr;
    DeviceMap m_mapWinDrive;
    DeviceMap m_mapPEDrive;
    WCHAR m_cWinREDriveLetter;
    WCHAR m_cRcvDriveLetter;
    int m_iWinREPartNumber = -1;
    int m_iRcvPartNumber = -1;
};
