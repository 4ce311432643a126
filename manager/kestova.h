// The library's public interface: one class that knows and changes the recovery layout of the internal disk.
#pragma once

#include <map>
#include <string>

#include "platform/windows_api.h"

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
    DISK_TYPE_UNKNOWN = 0,              // undetermined, or an MBR disk whose partition 2 is not of ID 0x07
    DISK_TYPE_GPT_ESP = 1,              // GPT; partition 3 is the EFI system partition
    DISK_TYPE_GPT_OTHER = 2,            // GPT; partition 3 is anything else
    DISK_TYPE_MBR_SYSTEM_RESERVED = 3,  // MBR; partition 2 is labelled "System Reserved"
    DISK_TYPE_MBR_OTHER = 4,            // MBR; partition 2 is of ID 0x07 under any other label
};

// Where the volume lies that the installed Windows calls by a letter.
struct tagDriveInfo_t {
    int iDiskNum;        // as the running system counts; 255 when the volume tells none
    int iPartNum;        // 0 when the volume tells none
    WCHAR cDriveLetter;  // the installed Windows' letter
};

// The data that a registry records for a drive letter.
struct tagDeviceData_t {
    BYTE* pData;
    DWORD dwLength;  // bytes
};

// Create one object, call Initialize, then ask and change; every call is synchronous and nothing is thrown.
// COM must be initialised on the calling thread. One object must not be used from two threads at once. A copy
// shares the objects that its source owns, and the destructor of each frees them: destroy only one of a pair.
class KESTOVA_API Kestova {
  public:
    Kestova();
    Kestova(const Kestova& other);
    ~Kestova();
    Kestova& operator=(const Kestova& other);

    // Prepares COM security and loads the Virtual Disk Service: up to 20 attempts, a second apart. 1, or 0
    // after the last. The argument is without effect. File and letter checks work without it.
    int Initialize(bool reserved);

    // --- disks and partitions ---

    // Number of the first internal disk; -1 when there is none.
    int GetFirstInternalDriveNumber();
    // Partition style of the first internal disk, unknown when a query failed. 1; 0 only without a volume
    // layer.
    int GetDiskStyle(THardDiskType& style);
    // Layout of the first internal disk, unknown when a query failed. Always 1.
    int GetCurrentDiskType(tagDiskTypeEnum& type);
    // Always 0, whatever the disk: no disk counts as dynamic.
    int IsDynamic();
    // 1 on UEFI firmware, 0 on BIOS. Rests on the error of GetFirmwareEnvironmentVariableW.
    int IsEFIBootSystem();
    // Letter of a partition, the first in the alphabet that is a fixed drive on exactly one extent; '0'
    // without one.
    WCHAR GetDriveLetter(int disk, int partition);
    // 1 when a partition is not for the user's eyes: on MBR one labelled "System Reserved", on GPT the
    // maker's boot, EFI system and Microsoft reserved types, on a disk of unknown style every one. 0 also
    // when it could not be looked at.
    int IsNeedHidePartition(int disk, int partition);
    // 1 when a partition is the BIOS's hibernation partition (MBR ID 0x84), else 0.
    int IsBIOSHibernationPartition(int disk, int partition);
    // Gives a partition of the first internal disk the MBR ID 0x84. 0: done; 1: failed, also without a
    // volume layer.
    int SetBIOSHibernationPartitionID(int partition);
    // Number of the active partition of the first internal disk; -1 when there is none.
    int GetActivePartitionNumber();
    // Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself.
    // 0: done; 1: failed. Also 0 when the object has no volume layer.
    int SetActive(int partition);
    // Clears every active flag of the first internal disk. 0: done; 1: failed. Also 0 without a volume layer.
    int ClearActive();

    // --- recovery media and volumes ---

    // Letter of the first volume labelled "Factory", in any case; '0' without one. Always 1.
    int GetFactoryPrtDriveLetter(WCHAR& letter);
    // Letter of the first recovery disc; '0' without one.
    WCHAR GetRCVDISC();
    // Letter of the first recovery USB flash drive; '0' without one.
    WCHAR GetRCVUFD();
    // 1 when a fixed drive holds the maker's bootable Windows RE files, else 0.
    int IsWindowsRE(WCHAR letter);
    // 1 when a fixed drive holds an installed Windows, or is encrypted, and so taken for one; else 0.
    int IsVistaOS(WCHAR letter);
    // 1 when the second internal disk bears the cache partition, else 0.
    int IsCachePartitionForExpCacheExist();

    // --- letters on demand ---
    //
    // Each acts on the first internal disk and expects an initialised object.

    // Gives partition 1 a letter, or reports the one it has, if it is of the maker's boot type. 0: done;
    // otherwise the letter is left as it was: 101: the type could not be read; 113: another type; 105: the
    // letter could not be given; 104: it is '0'.
    int ActiveOrvoBootPartition(WCHAR& letter);
    // Takes the letter of partition 1, whoever gave it. 0: done; 105: failed.
    int DisableOrvoBootPartition();
    // As ActiveOrvoBootPartition, for partition 3 and the EFI system type.
    int ActiveGPTSystemPartition(WCHAR& letter);
    // Takes the letter of partition 3, whoever gave it. 0: done; 105: failed.
    int DisableGPTSystemPartition();
    // Always 1. Gives the recovery partition (GPT) a letter, or reports the one it has; '0' without one.
    int AssignRecoveryPartition(WCHAR& letter);
    // As AssignRecoveryPartition, for the Windows RE partition, which is partition 2 or none.
    int AssignWinREPartition(WCHAR& letter);
    // Takes the letter of the partition that AssignRecoveryPartition last found, whoever gave it; nothing
    // before that operation first told a letter.
    void RemoveRecoveryPartition();
    // As RemoveRecoveryPartition, after AssignWinREPartition.
    void RemoveWinREPartition();
    // 1 when AssignRecoveryPartition gives a letter, which stays until RemoveRecoveryPartition; else 0.
    int IsExistRcvprt();

    // --- encryption and the installed Windows ---

    // 1 when BitLocker could be asked, even if it encrypts nothing; else 0.
    int IsExistEncryptVolume();
    // Letter of the only encrypted volume, as BitLocker writes it; NUL when it has none; '0' when there are
    // none, or several, or BitLocker could not be asked.
    WCHAR GetEncryptVolume();
    // The letters of all encrypted volumes in upper case, one string, cut to size characters with its
    // terminator; 33 hold every answer. 1; 0 with the empty string when BitLocker could not be asked.
    int GetAllEncryptVolume(WCHAR* buffer, DWORD size);
    // Disk and partition (always 3) of the EFI system partition; -1 and -1 without one, as on every MBR disk.
    // The letter is always '0'. 0: asked; 100: no internal disk; 106: unknown partition style; 111: style
    // unreadable; 115: type of partition 3 unreadable; 116: no volume layer.
    DWORD GetBitLockerSystemInfo(int& disk, int& partition, WCHAR& letter);
    // Disk, partition and letter of the installed Windows: partition 5 of a GPT disk whose partition 3 is the
    // EFI system partition. -1, -1 and '0' with every other code than 0: 104: its partition has no letter,
    // which is the answer on every other layout; 110: it holds no Windows; 111: style unreadable or unknown.
    DWORD GetVistaOSInfo(int& disk, int& partition, WCHAR& letter);
    // Which disk and partition each letter of the installed Windows stands for, in ascending order, at most
    // count records; those not filled keep what they held. 1; 0 when something failed or count was too small.
    // Needs Windows PE's X: drive. Blocks up to 61 seconds: a hive is loaded and unloaded by `reg`, each at
    // most three times 10.3 seconds.
    int GetWinDriveLetters(tagDriveInfo_t* records, int count);

    // --- choosing what the machine boots ---

    // Makes the recovery partition active and records the partition that was. 0: done, or it was active
    // already; 1: no active partition could be read; 2: its number is unknown; 3: the recovery partition
    // cannot be used: no letter, an unexpected type, or no recovery files; 4: the record could not be
    // written; 5: the flag could not be set; deleting the record and setting the former flag again was tried.
    int SetRcvprtActive();
    // Returns to the recorded partition, 2 without a usable record. 0: done, or nothing to do; 1 to 3 as
    // SetRcvprtActive; 4: the flag could not be set; 5: the record could not be deleted.
    int SetSystemActive();
    // As SetRcvprtActive, and drops a record that says nothing usable or 2. 0 to 5 as there; 6: it could not
    // be dropped.
    int SetPOneActive();
    // Makes partition 2 active and deletes the record. 0: done; 1: the flag could not be set; setting
    // partition 1 again was tried; 2: the recovery partition cannot be used: no letter, an unexpected type,
    // or no recovery files; 3: the record could not be deleted. At 2 and 3 partition 2 is active already.
    int SetPTwoActive();

  private:
    using DeviceMap = std::map<WCHAR, tagDeviceData_t>;

    std::basic_string<WCHAR> StringFormat(const WCHAR* format, ...);

    // 255 when the volume tells no disk.
    int GetDiskNumber(WCHAR letter);
    // 0 when the volume tells no partition.
    int GetPartNumber(WCHAR letter);

    // Writes at most 260 characters, cut and terminated, to name; nothing when the name cannot be read (0).
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

    // 0 is success, unlike in the members around it.
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
