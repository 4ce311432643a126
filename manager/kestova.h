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
    // Letter of a partition, the first in the alphabet that is a fixed drive on exactly one extent; '0'
    // without one.
    WCHAR GetDriveLetter(int disk, int partition);
    // Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself.
    // 0: done; 1: failed. Also 0 when the object has no volume layer.
    int SetActive(int partition);
    // Clears every active flag of the first internal disk. 0: done; 1: failed. Also 0 without a volume layer.
    int ClearActive();
    // Number of the active partition of the first internal disk; -1 when there is none.
    int GetActivePartitionNumber();
    // Partition style of the first internal disk, unknown when a query failed. 1; 0 only without a volume
    // layer.
    int GetDiskStyle(THardDiskType& style);

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
    int IsRCVVolume(WCHAR letter, int mediaType);
    int CheckMBRRcvprtStatus(int partition);
    int GetSystemVolumeIni(WCHAR* pszFile, DWORD dwFileNumberOfElements);
    void CleanMap();

    THardDiskType m_HardDiskType = HARD_DISK_UNKNOWN;
    WCHAR m_wReserved;
    CEncryptVolume* m_pEncryptVolume = nullptr;
    CVDSPartition* m_pVDSPartition = nullptr;
    CReservedObject* m_pReserved1 = nullptr;
    CReservedObject* m_pReserved2 = nullptr;
    DeviceMap m_mapWinDrive;
    DeviceMap m_mapPEDrive;
    WCHAR m_cWinREDriveLetter = TEXT('0');
    WCHAR m_cRcvDriveLetter = TEXT('0');
    int m_iWinREPartNumber = -1;
    int m_iRcvPartNumber = -1;
};
