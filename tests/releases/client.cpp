// An application as it was compiled with a release's headers, linked with the libraries as they are now. It
// refers to every operation, makes an object, asks it what needs no service and changes nothing, and receives
// records.

#include <cstdio>

#include "logging/logging.h"
#include "manager/kestova.h"

namespace {

class CountingSink : public ILogSink {
  public:
    void Write(const LogEntry& entry) override { records += entry.level == LOG_LEVEL_TRACE ? 1 : 0; }

    int records = 0;
};

// Read at run time, so that the linker has to find the operation.
template <typename Operation>
bool IsThere(Operation operation) {
    const volatile Operation there = operation;
    return there != nullptr;
}

template <typename... Operations>
int NumberOf(Operations... operations) {
    return (IsThere(operations) + ...);
}

int NumberOfOperations() {
    return NumberOf(
        &Kestova::Initialize, &Kestova::GetFirstInternalDriveNumber, &Kestova::GetDiskStyle,
        &Kestova::GetCurrentDiskType, &Kestova::IsDynamic, &Kestova::IsEFIBootSystem,
        &Kestova::GetDriveLetter, &Kestova::IsNeedHidePartition, &Kestova::IsBIOSHibernationPartition,
        &Kestova::SetBIOSHibernationPartitionID, &Kestova::GetActivePartitionNumber, &Kestova::SetActive,
        &Kestova::ClearActive, &Kestova::GetFactoryPrtDriveLetter, &Kestova::GetRCVDISC, &Kestova::GetRCVUFD,
        &Kestova::IsWindowsRE, &Kestova::IsVistaOS, &Kestova::IsCachePartitionForExpCacheExist,
        &Kestova::ActiveOrvoBootPartition, &Kestova::DisableOrvoBootPartition,
        &Kestova::ActiveGPTSystemPartition, &Kestova::DisableGPTSystemPartition,
        &Kestova::AssignRecoveryPartition, &Kestova::AssignWinREPartition, &Kestova::RemoveRecoveryPartition,
        &Kestova::RemoveWinREPartition, &Kestova::IsExistRcvprt, &Kestova::IsExistEncryptVolume,
        &Kestova::GetEncryptVolume, &Kestova::GetAllEncryptVolume, &Kestova::GetBitLockerSystemInfo,
        &Kestova::GetVistaOSInfo, &Kestova::GetWinDriveLetters, &Kestova::SetRcvprtActive,
        &Kestova::SetSystemActive, &Kestova::SetPOneActive, &Kestova::SetPTwoActive);
}

// No disk has this number.
constexpr int noDisk = 1000;

bool AnswersAsExpected() {
    Kestova kestova;
    return kestova.IsDynamic() == 0 && kestova.IsWindowsRE(L'?') == 0 &&
           kestova.GetDriveLetter(noDisk, 1) == L'0';
}

}  // namespace

int main() {
    CountingSink sink;
    CLoggingFactory::GetInstance().AddSink(sink);
    const bool expected = AnswersAsExpected();
    CLoggingFactory::GetInstance().RemoveSink(sink);
    std::printf("%d operations, answers %s, %d records\n", NumberOfOperations(),
                expected ? "as expected" : "differ", sink.records);
    return expected && sink.records > 0 ? 0 : 1;
}
