#include "tests/faults/memory/operations.h"

namespace {

template <typename... Outputs>
std::string Text(int result, Outputs... outputs) {
    return (std::to_string(result) + ... + (" " + std::to_string(outputs)));
}

template <auto Member>
std::string Plain(Kestova& kestova) {
    return Text((kestova.*Member)());
}

template <auto Member, WCHAR Letter>
std::string OfLetter(Kestova& kestova) {
    return Text((kestova.*Member)(Letter));
}

template <auto Member, int Disk, int Partition>
std::string OfPartition(Kestova& kestova) {
    return Text((kestova.*Member)(Disk, Partition));
}

template <auto Member, int Partition>
std::string Change(Kestova& kestova) {
    return Text((kestova.*Member)(Partition));
}

template <auto Member>
std::string Letter(Kestova& kestova) {
    WCHAR letter = TEXT('q');
    const int result = (kestova.*Member)(letter);
    return Text(result, letter);
}

template <auto Member>
std::string Location(Kestova& kestova) {
    int disk = 77;
    int partition = 77;
    WCHAR letter = TEXT('q');
    const DWORD result = (kestova.*Member)(disk, partition, letter);
    return Text(static_cast<int>(result), disk, partition, letter);
}

// After an assignment, which is repeated if memory runs out in it.
template <auto Assign, auto Member>
std::string Removal(Kestova& kestova) {
    WCHAR letter = TEXT('0');
    (kestova.*Assign)(letter);
    (kestova.*Member)();
    return "";
}

std::string DiskStyle(Kestova& kestova) {
    THardDiskType style = HARD_DISK_GPT;
    const int result = kestova.GetDiskStyle(style);
    return Text(result, style);
}

std::string DiskType(Kestova& kestova) {
    tagDiskTypeEnum type = DISK_TYPE_GPT_OTHER;
    const int result = kestova.GetCurrentDiskType(type);
    return Text(result, type);
}

std::string AllEncrypted(Kestova& kestova) {
    WCHAR letters[33] = {TEXT('q')};
    const int result = kestova.GetAllEncryptVolume(letters, 33);
    return Text(result, letters[0]);
}

// The letters of records that are not filled stay as they are, so only the result is compared.
std::string WindowsLetters(Kestova& kestova) {
    tagDriveInfo_t records[4] = {};
    return Text(kestova.GetWinDriveLetters(records, 4));
}

}  // namespace

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = {
        {"Initialize", [](Kestova& kestova) { return Text(kestova.Initialize(false)); }, {"0"}},
        {"GetFirstInternalDriveNumber", Plain<&Kestova::GetFirstInternalDriveNumber>, {"-1"}},
        {"GetDiskStyle", DiskStyle, {"1 0"}},
        {"GetCurrentDiskType", DiskType, {"1 0"}},
        {"IsDynamic", Plain<&Kestova::IsDynamic>, {"0"}},
        {"IsEFIBootSystem", Plain<&Kestova::IsEFIBootSystem>, {"0"}},
        {"GetDriveLetter", OfPartition<&Kestova::GetDriveLetter, 0, 2>, {"48"}},
        {"IsNeedHidePartition", OfPartition<&Kestova::IsNeedHidePartition, 0, 2>, {"0"}},
        {"IsBIOSHibernationPartition", OfPartition<&Kestova::IsBIOSHibernationPartition, 0, 4>, {"0"}},
        {"SetBIOSHibernationPartitionID", Change<&Kestova::SetBIOSHibernationPartitionID, 3>, {"1"}},
        {"GetActivePartitionNumber", Plain<&Kestova::GetActivePartitionNumber>, {"-1"}},
        {"SetActive", Change<&Kestova::SetActive, 2>, {"1"}},
        {"ClearActive", Plain<&Kestova::ClearActive>, {"1"}},
        {"GetFactoryPrtDriveLetter", Letter<&Kestova::GetFactoryPrtDriveLetter>, {"1 48"}},
        {"GetRCVDISC", Plain<&Kestova::GetRCVDISC>, {"48"}},
        {"GetRCVUFD", Plain<&Kestova::GetRCVUFD>, {"48"}},
        {"IsWindowsRE", OfLetter<&Kestova::IsWindowsRE, TEXT('C')>, {"0"}},
        {"IsVistaOS", OfLetter<&Kestova::IsVistaOS, TEXT('C')>, {"0"}},
        {"IsCachePartitionForExpCacheExist", Plain<&Kestova::IsCachePartitionForExpCacheExist>, {"0"}},
        {"ActiveOrvoBootPartition", Letter<&Kestova::ActiveOrvoBootPartition>, {"101 113", "105 113"}},
        {"DisableOrvoBootPartition", Plain<&Kestova::DisableOrvoBootPartition>, {"105"}},
        {"ActiveGPTSystemPartition", Letter<&Kestova::ActiveGPTSystemPartition>, {"101 113", "105 113"}},
        {"DisableGPTSystemPartition", Plain<&Kestova::DisableGPTSystemPartition>, {"105"}},
        {"AssignRecoveryPartition", Letter<&Kestova::AssignRecoveryPartition>, {"1 48"}},
        {"AssignWinREPartition", Letter<&Kestova::AssignWinREPartition>, {"1 48"}},
        {"RemoveRecoveryPartition",
         Removal<&Kestova::AssignRecoveryPartition, &Kestova::RemoveRecoveryPartition>,
         {""},
         true},
        {"RemoveWinREPartition",
         Removal<&Kestova::AssignWinREPartition, &Kestova::RemoveWinREPartition>,
         {""},
         true},
        {"IsExistRcvprt", Plain<&Kestova::IsExistRcvprt>, {"0"}},
        {"IsExistEncryptVolume", Plain<&Kestova::IsExistEncryptVolume>, {"0"}},
        {"GetEncryptVolume", Plain<&Kestova::GetEncryptVolume>, {"48"}},
        {"GetAllEncryptVolume", AllEncrypted, {"0 0"}},
        // After a step that is an operation with an ending of its own, the code is that of what follows it.
        {"GetBitLockerSystemInfo",
         Location<&Kestova::GetBitLockerSystemInfo>,
         {"100 -1 -1 48", "106 -1 -1 48", "115 -1 -1 48"}},
        {"GetVistaOSInfo",
         Location<&Kestova::GetVistaOSInfo>,
         {"104 -1 -1 48", "110 -1 -1 48", "111 -1 -1 48"}},
        {"GetWinDriveLetters", WindowsLetters, {"0"}},
        {"SetRcvprtActive", Plain<&Kestova::SetRcvprtActive>, {"1", "3", "5"}},
        {"SetSystemActive", Plain<&Kestova::SetSystemActive>, {"1", "3", "4"}},
        {"SetPOneActive", Plain<&Kestova::SetPOneActive>, {"1", "3", "5"}},
        {"SetPTwoActive", Plain<&Kestova::SetPTwoActive>, {"1", "2"}},
    };
    return operations;
}
