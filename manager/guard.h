// The guard at the border of the library, and the result with which each operation ends if memory runs out in
// it: the one it has for a failure. No exception leaves an operation.
#pragma once

#include "manager/factory_layout.h"
#include "manager/result_codes.h"

// One row for each operation. It sets its outputs to what they are after a failure before its first step, and
// to anything else after its last one, so no row needs them.
namespace ending {

inline constexpr int Initialize = FALSE;

inline constexpr int GetFirstInternalDriveNumber = noDisk;
inline constexpr int GetDiskStyle = TRUE;
inline constexpr int GetCurrentDiskType = TRUE;
inline constexpr int IsDynamic = FALSE;
inline constexpr int IsEFIBootSystem = FALSE;
inline constexpr WCHAR GetDriveLetter = noLetter;
inline constexpr int IsNeedHidePartition = FALSE;
inline constexpr int IsBIOSHibernationPartition = FALSE;
inline constexpr int SetBIOSHibernationPartitionID = 1;
inline constexpr int GetActivePartitionNumber = noPartition;
inline constexpr int SetActive = 1;
inline constexpr int ClearActive = 1;

inline constexpr int GetFactoryPrtDriveLetter = TRUE;
inline constexpr WCHAR GetRCVDISC = noLetter;
inline constexpr WCHAR GetRCVUFD = noLetter;
inline constexpr int IsWindowsRE = FALSE;
inline constexpr int IsVistaOS = FALSE;
inline constexpr int IsCachePartitionForExpCacheExist = FALSE;

inline constexpr int AssignPartition = TRUE;  // AssignRecoveryPartition, AssignWinREPartition
inline constexpr int IsExistRcvprt = FALSE;

inline constexpr int IsExistEncryptVolume = FALSE;
inline constexpr WCHAR GetEncryptVolume = noLetter;
inline constexpr int GetAllEncryptVolume = FALSE;
inline constexpr int GetWinDriveLetters = FALSE;

// Of the operations with several codes, that of the first step. Each later step replaces it by its own.
inline constexpr int ActivePartition = ERROR_GET_PARTITION_TYPE;  // ActiveOrvoBoot…, ActiveGPTSystemPartition
// DisableOrvoBootPartition, DisableGPTSystemPartition
inline constexpr int DisablePartition = ERROR_SET_DRIVE_LETTER;
inline constexpr DWORD GetBitLockerSystemInfo = NO_INTERNAL_DISK;
inline constexpr DWORD GetVistaOSInfo = ERROR_GET_DISK_STYLE;
inline constexpr int SetRcvprtActive = 1;
inline constexpr int SetSystemActive = 1;
inline constexpr int SetPOneActive = 1;
inline constexpr int SetPTwoActive = 1;

}  // namespace ending

// Runs an operation, or a step whose failure the operation undoes. If memory runs out in it, the result is
// the ending, as it is by then, and no record is written.
template <typename Result, typename Operation>
Result Guarded(const Result& ending, const Operation& operation) {
    try {
        return operation();
    } catch (...) {
        return ending;
    }
}
