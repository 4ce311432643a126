// Which operations make the library's module current while they run, as their records see it.

#include <gtest/gtest.h>

#include <algorithm>

#include "diag/module.h"
#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"

namespace {

// Notes for each record whether the module is current.
class CurrentModule : public ILogSink {
  public:
    CurrentModule() { CLoggingFactory::GetInstance().AddSink(*this); }
    ~CurrentModule() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    std::vector<bool> seen;

  private:
    void Write(const LogEntry&) override { seen.push_back(ModuleContext::IsCurrent()); }
};

struct Operation {
    const char* name;
    void (*call)(Kestova&);
};

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

// What the records of an operation saw.
std::vector<bool> Seen(const Operation& operation) {
    Application application(machine::FactoryMbr());
    CurrentModule module;
    operation.call(application.kestova);
    EXPECT_FALSE(module.seen.empty());
    EXPECT_FALSE(ModuleContext::IsCurrent());
    return module.seen;
}

const auto nameOf = [](const auto& tested) { return std::string(tested.param.name); };

class ModuleIsCurrent : public testing::TestWithParam<Operation> {};

TEST_P(ModuleIsCurrent, Operation_HasItWhileItRunsAndNotAfterwards) {
    EXPECT_TRUE(std::ranges::count(Seen(GetParam()), false) == 0);
}

constexpr Operation current[] = {
    {"Initialize", [](Kestova& kestova) { kestova.Initialize(false); }},
    {"GetFirstInternalDriveNumber", [](Kestova& kestova) { kestova.GetFirstInternalDriveNumber(); }},
    {"GetDiskStyle",
     [](Kestova& kestova) {
         THardDiskType style;
         kestova.GetDiskStyle(style);
     }},
    {"GetCurrentDiskType",
     [](Kestova& kestova) {
         tagDiskTypeEnum type;
         kestova.GetCurrentDiskType(type);
     }},
    {"IsDynamic", [](Kestova& kestova) { kestova.IsDynamic(); }},
    {"IsEFIBootSystem", [](Kestova& kestova) { kestova.IsEFIBootSystem(); }},
    {"GetDriveLetter", [](Kestova& kestova) { kestova.GetDriveLetter(0, 2); }},
    {"IsNeedHidePartition", [](Kestova& kestova) { kestova.IsNeedHidePartition(0, 2); }},
    {"IsBIOSHibernationPartition", [](Kestova& kestova) { kestova.IsBIOSHibernationPartition(0, 4); }},
    {"GetActivePartitionNumber", [](Kestova& kestova) { kestova.GetActivePartitionNumber(); }},
    {"SetActive", [](Kestova& kestova) { kestova.SetActive(2); }},
    {"ClearActive", [](Kestova& kestova) { kestova.ClearActive(); }},
    {"GetRCVDISC", [](Kestova& kestova) { kestova.GetRCVDISC(); }},
    {"GetRCVUFD", [](Kestova& kestova) { kestova.GetRCVUFD(); }},
    {"IsWindowsRE", [](Kestova& kestova) { kestova.IsWindowsRE(TEXT('C')); }},
    {"IsVistaOS", [](Kestova& kestova) { kestova.IsVistaOS(TEXT('C')); }},
    {"ActiveOrvoBootPartition",
     [](Kestova& kestova) {
         WCHAR letter;
         kestova.ActiveOrvoBootPartition(letter);
     }},
    {"DisableOrvoBootPartition", [](Kestova& kestova) { kestova.DisableOrvoBootPartition(); }},
    {"ActiveGPTSystemPartition",
     [](Kestova& kestova) {
         WCHAR letter;
         kestova.ActiveGPTSystemPartition(letter);
     }},
    {"DisableGPTSystemPartition", [](Kestova& kestova) { kestova.DisableGPTSystemPartition(); }},
    {"AssignRecoveryPartition",
     [](Kestova& kestova) {
         WCHAR letter;
         kestova.AssignRecoveryPartition(letter);
     }},
    {"AssignWinREPartition",
     [](Kestova& kestova) {
         WCHAR letter;
         kestova.AssignWinREPartition(letter);
     }},
    {"RemoveRecoveryPartition", [](Kestova& kestova) { kestova.RemoveRecoveryPartition(); }},
    {"RemoveWinREPartition", [](Kestova& kestova) { kestova.RemoveWinREPartition(); }},
    {"IsExistRcvprt", [](Kestova& kestova) { kestova.IsExistRcvprt(); }},
    {"IsExistEncryptVolume", [](Kestova& kestova) { kestova.IsExistEncryptVolume(); }},
    {"GetEncryptVolume", [](Kestova& kestova) { kestova.GetEncryptVolume(); }},
    {"GetAllEncryptVolume", [](Kestova& kestova) { kestova.GetAllEncryptVolume(nullptr, 0); }},
    {"GetBitLockerSystemInfo",
     [](Kestova& kestova) {
         int disk, partition;
         WCHAR letter;
         kestova.GetBitLockerSystemInfo(disk, partition, letter);
     }},
    {"GetVistaOSInfo",
     [](Kestova& kestova) {
         int disk, partition;
         WCHAR letter;
         kestova.GetVistaOSInfo(disk, partition, letter);
     }},
    {"GetWinDriveLetters", [](Kestova& kestova) { kestova.GetWinDriveLetters(nullptr, 0); }},
    {"SetRcvprtActive", [](Kestova& kestova) { kestova.SetRcvprtActive(); }},
    {"SetSystemActive", [](Kestova& kestova) { kestova.SetSystemActive(); }},
    {"SetPOneActive", [](Kestova& kestova) { kestova.SetPOneActive(); }},
    {"SetPTwoActive", [](Kestova& kestova) { kestova.SetPTwoActive(); }},
};

INSTANTIATE_TEST_SUITE_P(Every, ModuleIsCurrent, testing::ValuesIn(current), nameOf);

class ModuleIsNotCurrent : public testing::TestWithParam<Operation> {};

TEST_P(ModuleIsNotCurrent, Operation_NeverHasIt) {
    EXPECT_TRUE(std::ranges::count(Seen(GetParam()), true) == 0);
}

constexpr Operation notCurrent[] = {
    {"GetFactoryPrtDriveLetter",
     [](Kestova& kestova) {
         WCHAR letter;
         kestova.GetFactoryPrtDriveLetter(letter);
     }},
    {"IsCachePartitionForExpCacheExist",
     [](Kestova& kestova) { kestova.IsCachePartitionForExpCacheExist(); }},
    {"GetDiskNumber", [](Kestova& kestova) { (kestova.*Open(internals::GetDiskNumberTag()))(TEXT('C')); }},
    {"GetPartNumber", [](Kestova& kestova) { (kestova.*Open(internals::GetPartNumberTag()))(TEXT('C')); }},
    {"IsRCVVolume", [](Kestova& kestova) { (kestova.*Open(internals::IsRCVVolumeTag()))(TEXT('C'), 1); }},
    {"IsWinREVolume", [](Kestova& kestova) { (kestova.*Open(internals::IsWinREVolumeTag()))(TEXT('C')); }},
};

INSTANTIATE_TEST_SUITE_P(Every, ModuleIsNotCurrent, testing::ValuesIn(notCurrent), nameOf);

TEST(SetBIOSHibernationPartitionIDContext, Operation_BeginsAfterItsFirstRecord) {
    const std::vector<bool> seen =
        Seen({"", [](Kestova& kestova) { kestova.SetBIOSHibernationPartitionID(3); }});
    ASSERT_GT(seen.size(), 2U);
    EXPECT_FALSE(seen.front());
    EXPECT_EQ(std::ranges::count(seen, false), 1);
}

}  // namespace
