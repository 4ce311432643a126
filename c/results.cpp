// The results of the operations in words, made from the table of operations (./dev bindings).
// clang-format off

#include "c/results.h"

#include <algorithm>
#include <iterator>

namespace c_interface {

namespace {

constexpr ResultWords ofInitialize[] = {
    {1, "the service is ready", false},
    {0, "the service could not be loaded in 20 attempts", true},
};

constexpr ResultWords ofGetFirstInternalDriveNumber[] = {
    {-1, "there is none, or it could not be told", true},
};

constexpr ResultWords ofGetDiskStyle[] = {
    {1, "asked; the style tells the rest", false},
    {0, "there is no volume layer", true},
};

constexpr ResultWords ofGetCurrentDiskType[] = {
    {1, "asked; the type tells the rest", false},
};

constexpr ResultWords ofIsDynamic[] = {
    {0, "no", false},
};

constexpr ResultWords ofIsEFIBootSystem[] = {
    {1, "UEFI", false},
    {0, "BIOS", false},
};

constexpr ResultWords ofGetDriveLetter[] = {
    {48, "it has none", true},
};

constexpr ResultWords ofIsNeedHidePartition[] = {
    {1, "yes", false},
    {0, "no, or it could not be told", false},
};

constexpr ResultWords ofIsBIOSHibernationPartition[] = {
    {1, "yes", false},
    {0, "no, or it could not be told", false},
};

constexpr ResultWords ofSetBIOSHibernationPartitionID[] = {
    {0, "done", false},
    {1, "failed", true},
};

constexpr ResultWords ofGetActivePartitionNumber[] = {
    {-1, "there is none, or it could not be told", true},
};

constexpr ResultWords ofSetActive[] = {
    {0, "done", false},
    {1, "failed", true},
};

constexpr ResultWords ofClearActive[] = {
    {0, "done", false},
    {1, "failed", true},
};

constexpr ResultWords ofGetFactoryPrtDriveLetter[] = {
    {1, "asked; the letter tells the rest", false},
};

constexpr ResultWords ofGetRCVDISC[] = {
    {48, "there is none", true},
};

constexpr ResultWords ofGetRCVUFD[] = {
    {48, "there is none", true},
};

constexpr ResultWords ofIsWindowsRE[] = {
    {1, "yes", false},
    {0, "no", false},
};

constexpr ResultWords ofIsVistaOS[] = {
    {1, "yes", false},
    {0, "no", false},
};

constexpr ResultWords ofIsCachePartitionForExpCacheExist[] = {
    {1, "yes", false},
    {0, "no, or it could not be told", false},
};

constexpr ResultWords ofActiveOrvoBootPartition[] = {
    {0, "done", false},
    {101, "the type could not be read", true},
    {104, "the partition has no letter all the same", true},
    {105, "the letter could not be given", true},
    {113, "partition 1 is not the maker's boot partition", true},
};

constexpr ResultWords ofDisableOrvoBootPartition[] = {
    {0, "done", false},
    {105, "the letter could not be taken", true},
};

constexpr ResultWords ofActiveGPTSystemPartition[] = {
    {0, "done", false},
    {101, "the type could not be read", true},
    {104, "the partition has no letter all the same", true},
    {105, "the letter could not be given", true},
    {113, "partition 3 is not the EFI system partition", true},
};

constexpr ResultWords ofDisableGPTSystemPartition[] = {
    {0, "done", false},
    {105, "the letter could not be taken", true},
};

constexpr ResultWords ofAssignRecoveryPartition[] = {
    {1, "asked; the letter tells the rest", false},
};

constexpr ResultWords ofAssignWinREPartition[] = {
    {1, "asked; the letter tells the rest", false},
};

constexpr ResultWords ofIsExistRcvprt[] = {
    {1, "yes", false},
    {0, "no, or it could not be given a letter", false},
};

constexpr ResultWords ofIsExistEncryptVolume[] = {
    {1, "it can, even if it encrypts nothing", false},
    {0, "it cannot", false},
};

constexpr ResultWords ofGetEncryptVolume[] = {
    {48, "there are none, or several, or BitLocker cannot be asked", true},
    {0, "it has no letter", false},
};

constexpr ResultWords ofGetAllEncryptVolume[] = {
    {1, "BitLocker was asked", false},
    {0, "BitLocker cannot be asked", true},
};

constexpr ResultWords ofGetBitLockerSystemInfo[] = {
    {0, "asked; the outputs tell the rest", false},
    {100, "there is no internal disk", true},
    {106, "the partition style is unknown", true},
    {111, "the partition style could not be read", true},
    {115, "the type of partition 3 could not be read", true},
    {116, "there is no volume layer", true},
};

constexpr ResultWords ofGetVistaOSInfo[] = {
    {0, "found", false},
    {104, "its partition has no letter, or the layout is another", true},
    {110, "its partition holds no Windows", true},
    {111, "the partition style is unknown or could not be read", true},
};

constexpr ResultWords ofGetWinDriveLetters[] = {
    {1, "done", false},
    {0, "something failed, or there was no room for all records", true},
};

constexpr ResultWords ofSetRcvprtActive[] = {
    {0, "done, or it was active already", false},
    {1, "no active partition could be read", true},
    {2, "the number of the active partition is unknown", true},
    {3, "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files", true},
    {4, "the record could not be written", true},
    {5, "the flag could not be set; setting the former one again was tried", true},
};

constexpr ResultWords ofSetSystemActive[] = {
    {0, "done, or there was nothing to do", false},
    {1, "no active partition could be read", true},
    {2, "the number of the active partition is unknown", true},
    {3, "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files", true},
    {4, "the flag could not be set", true},
    {5, "the record could not be deleted", true},
};

constexpr ResultWords ofSetPOneActive[] = {
    {0, "done", false},
    {1, "no active partition could be read", true},
    {2, "the number of the active partition is unknown", true},
    {3, "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files", true},
    {4, "the record could not be written", true},
    {5, "the flag could not be set; setting the former one again was tried", true},
    {6, "the record could not be dropped", true},
};

constexpr ResultWords ofSetPTwoActive[] = {
    {0, "done", false},
    {1, "the flag could not be set; setting partition 1 again was tried", true},
    {2, "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files", true},
    {3, "the record could not be deleted", true},
};

constexpr OperationResults all[] = {
    {"Initialize", ofInitialize, ""},
    {"GetFirstInternalDriveNumber", ofGetFirstInternalDriveNumber, "the number of the disk"},
    {"GetDiskStyle", ofGetDiskStyle, ""},
    {"GetCurrentDiskType", ofGetCurrentDiskType, ""},
    {"IsDynamic", ofIsDynamic, ""},
    {"IsEFIBootSystem", ofIsEFIBootSystem, ""},
    {"GetDriveLetter", ofGetDriveLetter, "its letter"},
    {"IsNeedHidePartition", ofIsNeedHidePartition, ""},
    {"IsBIOSHibernationPartition", ofIsBIOSHibernationPartition, ""},
    {"SetBIOSHibernationPartitionID", ofSetBIOSHibernationPartitionID, ""},
    {"GetActivePartitionNumber", ofGetActivePartitionNumber, "the number of the partition"},
    {"SetActive", ofSetActive, ""},
    {"ClearActive", ofClearActive, ""},
    {"GetFactoryPrtDriveLetter", ofGetFactoryPrtDriveLetter, ""},
    {"GetRCVDISC", ofGetRCVDISC, "its letter"},
    {"GetRCVUFD", ofGetRCVUFD, "its letter"},
    {"IsWindowsRE", ofIsWindowsRE, ""},
    {"IsVistaOS", ofIsVistaOS, ""},
    {"IsCachePartitionForExpCacheExist", ofIsCachePartitionForExpCacheExist, ""},
    {"ActiveOrvoBootPartition", ofActiveOrvoBootPartition, ""},
    {"DisableOrvoBootPartition", ofDisableOrvoBootPartition, ""},
    {"ActiveGPTSystemPartition", ofActiveGPTSystemPartition, ""},
    {"DisableGPTSystemPartition", ofDisableGPTSystemPartition, ""},
    {"AssignRecoveryPartition", ofAssignRecoveryPartition, ""},
    {"AssignWinREPartition", ofAssignWinREPartition, ""},
    {"RemoveRecoveryPartition", {}, ""},
    {"RemoveWinREPartition", {}, ""},
    {"IsExistRcvprt", ofIsExistRcvprt, ""},
    {"IsExistEncryptVolume", ofIsExistEncryptVolume, ""},
    {"GetEncryptVolume", ofGetEncryptVolume, "its letter"},
    {"GetAllEncryptVolume", ofGetAllEncryptVolume, ""},
    {"GetBitLockerSystemInfo", ofGetBitLockerSystemInfo, ""},
    {"GetVistaOSInfo", ofGetVistaOSInfo, ""},
    {"GetWinDriveLetters", ofGetWinDriveLetters, ""},
    {"SetRcvprtActive", ofSetRcvprtActive, ""},
    {"SetSystemActive", ofSetSystemActive, ""},
    {"SetPOneActive", ofSetPOneActive, ""},
    {"SetPTwoActive", ofSetPTwoActive, ""},
};

}  // namespace

const OperationResults* FindResults(std::string_view operation) {
    const auto* const found = std::ranges::find(all, operation, &OperationResults::operation);
    return found != std::end(all) ? found : nullptr;
}

}  // namespace c_interface
