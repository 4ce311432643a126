// Mounting the installed Windows' hive by a batch file, and taking it away.

#include <gmock/gmock.h>

#include "tests/manager/internals.h"
#include "tests/support/application/two_systems.h"

namespace {

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const WCHAR* load = TEXT("reg load HKLM\\TEMSYSTEM D:\\Windows\\System32\\Config\\SYSTEM");

// An object of the library in Windows PE; whatever it does here, it logs nothing.
struct Offline {
    EmulatedPc pc;
    Kestova kestova;

    explicit Offline(machine::Pc facts = TwoSystems()) : pc(std::move(facts)) { pc.journal.Clear(); }
    ~Offline() {
        EXPECT_THAT(pc.journal.Records(), IsEmpty());
        EXPECT_THAT(pc.ledger.Violations(), IsEmpty());
    }

    int Run(const WCHAR* command) { return (kestova.*Open(internals::LoadRegistryTag()))(command); }
    int Load() { return (kestova.*Open(internals::LoadWindowsRegistryTag()))(); }
    int Unload() { return (kestova.*Open(internals::UnloadWindowsRegistryTag()))(); }

    void Fail(const char* call, uint32_t nth, uint32_t code, bool afterEffect = false) {
        pc.faults.Arm({.call = call, .nth = nth, .afterEffect = afterEffect, .code = code});
    }
    std::vector<std::string> Calls() const {
        std::vector<std::string> names;
        for (const machine::CallRecord& call : pc.journal.Calls())
            names.push_back(call.call);
        return names;
    }
    size_t Count(const char* call) const { return pc.journal.Calls(call).size(); }
};

// --- one batch ---

TEST(LoadRegistry, Command_WritesRunsAndDeletesABatch) {
    Offline offline;
    EXPECT_EQ(offline.Run(load), 0);
    EXPECT_TRUE(IsHiveMounted(offline.pc));
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_EQ(offline.pc.clockMilliseconds, 50U);
    EXPECT_THAT(offline.Calls(),
                ElementsAre("CreateFileW", "WideCharToMultiByte", "WideCharToMultiByte", "WriteFile",
                            "CloseHandle", "ShellExecuteExW", "reg", "WaitForSingleObject", "CloseHandle",
                            "PathFileExistsW", "DeleteFileW"));
    const auto calls = offline.pc.journal.Calls();
    EXPECT_THAT(calls[0].arguments,
                ElementsAre("X:\\LoadRegistry.bat", "0x40000000", "0x00000000", "CREATE_ALWAYS"));
    EXPECT_EQ(calls[1].arguments[0], "0");  // CP_ACP
    EXPECT_EQ(calls[2].arguments[0], "1");  // CP_OEMCP
    EXPECT_THAT(calls[5].arguments, ElementsAre("open", "X:\\LoadRegistry.bat", "", "", "0", "0x00000040"));
    EXPECT_THAT(calls[7].arguments, ElementsAre("X:\\LoadRegistry.bat", "10000"));
    EXPECT_THAT(offline.pc.ledger.Outstanding(), ElementsAre(Pair("mounted hive", 1)));
}

TEST(LoadRegistry, CommandBeyondAscii_IsWrittenInTheOemCodePage) {
    Offline offline;
    offline.pc.facts.volumes.front().files.PutFile("LoadRegistry.bat", "a longer batch that was left behind");
    offline.Fail("DeleteFileW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(offline.Run(TEXT("echo Übung")), 0);
    ASSERT_NE(BatchFile(offline.pc), nullptr);
    EXPECT_EQ(BatchFile(offline.pc)->content,
              "echo \x9A"
              "bung\r\nexit\r\n");
}

TEST(LoadRegistry, BatchThatFails_Succeeds) {
    Offline offline;
    offline.pc.facts.shell.regFails = true;
    EXPECT_EQ(offline.Run(load), 0);
    EXPECT_FALSE(IsHiveMounted(offline.pc));
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
}

TEST(LoadRegistry, NoCommand_OnlyDeletesTheBatchLeftBehind) {
    Offline offline;
    offline.pc.facts.volumes.front().files.PutFile("LoadRegistry.bat", "left behind");
    EXPECT_EQ(offline.Run(nullptr), 1);
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_THAT(offline.Calls(), ElementsAre("PathFileExistsW", "DeleteFileW"));
}

// 1023 units with the line that ends the interpreter.
TEST(LoadRegistry, CommandTooLong_FailsAndRunsNothing) {
    const std::basic_string<WCHAR> longest(1015, TEXT('x'));
    Offline offline;
    EXPECT_EQ(offline.Run(longest.c_str()), 0);
    EXPECT_EQ(offline.Count("ShellExecuteExW"), 1U);
    EXPECT_EQ(offline.Run((longest + TEXT('x')).c_str()), 1);
    EXPECT_EQ(offline.Count("ShellExecuteExW"), 1U);
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
}

TEST(LoadRegistry, NoDriveX_Fails) {
    machine::Pc facts = TwoSystems();
    facts.volumes.clear();
    facts.host.path = "E:\\Recovery.exe";
    Offline offline(facts);
    EXPECT_EQ(offline.Run(load), 1);
    EXPECT_THAT(offline.Calls(), ElementsAre("CreateFileW", "PathFileExistsW"));
}

// A call that fails, what the batch answers then, and whether it ran.
struct BatchFailure {
    const char* name;
    const char* call;
    uint32_t nth;
    uint32_t code;
    bool afterEffect;
    int result;
    bool runs;
};

void PrintTo(const BatchFailure& batchFailure, std::ostream* out) {
    *out << batchFailure.name;
}

const BatchFailure batchFailures[] = {
    {"NotCreated", "CreateFileW", 1, ERROR_ACCESS_DENIED, false, 1, false},
    {"CreatedButNotOpened", "CreateFileW", 1, ERROR_ACCESS_DENIED, true, 1, false},
    {"NotMeasured", "WideCharToMultiByte", 1, ERROR_INVALID_PARAMETER, false, 1, false},
    {"NotConverted", "WideCharToMultiByte", 2, ERROR_INSUFFICIENT_BUFFER, false, 1, false},
    {"NotWritten", "WriteFile", 1, ERROR_DISK_FULL, false, 1, false},
    {"WrittenNotTold", "WriteFile", 1, ERROR_DISK_FULL, true, 1, false},
    {"NotStarted", "ShellExecuteExW", 1, ERROR_CANCELLED, false, 1, false},
    {"WaitFails", "WaitForSingleObject", 1, WAIT_FAILED, false, 1, false},
    {"WaitFailsAtTheEnd", "WaitForSingleObject", 1, WAIT_FAILED, true, 1, true},
    {"WaitTimesOut", "WaitForSingleObject", 1, WAIT_TIMEOUT, false, 1, false},
    {"WaitTellsAnAbandonedMutex", "WaitForSingleObject", 1, WAIT_ABANDONED, false, 1, false},
};

class BrokenBatch : public testing::TestWithParam<BatchFailure> {};

TEST_P(BrokenBatch, LoadRegistry_FailsAndLeavesNoFileBehind) {
    Offline offline;
    const BatchFailure& failure = GetParam();
    offline.Fail(failure.call, failure.nth, failure.code, failure.afterEffect);
    EXPECT_EQ(offline.Run(TEXT("rem")), failure.result);
    EXPECT_EQ(offline.pc.faults.Fired(), 1);
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_EQ(offline.pc.clockMilliseconds, failure.runs ? 50U : 0U);
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Every, BrokenBatch, testing::ValuesIn(batchFailures),
                         [](const auto& failure) { return std::string(failure.param.name); });

TEST(LoadRegistry, NoProcessHandle_Returns2) {
    Offline offline;
    offline.pc.facts.shell.returnsProcess = false;
    EXPECT_EQ(offline.Run(load), 2);
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_EQ(offline.Count("WaitForSingleObject"), 0U);
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
}

TEST(LoadRegistry, BatchOfTenSeconds_IsWaitedForAndNoLonger) {
    Offline inTime;
    inTime.pc.facts.shell.milliseconds = 10'000;
    EXPECT_EQ(inTime.Run(TEXT("rem")), 0);
    EXPECT_EQ(inTime.pc.clockMilliseconds, 10'000U);
}

TEST(LoadRegistry, BatchOfMoreThanTenSeconds_IsLeftRunning) {
    Offline offline;
    offline.pc.facts.shell.milliseconds = 10'001;
    EXPECT_EQ(offline.Run(load), 1);
    EXPECT_EQ(offline.pc.clockMilliseconds, 10'000U);
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
    EXPECT_FALSE(IsHiveMounted(offline.pc));
    Sleep(1);
    EXPECT_TRUE(IsHiveMounted(offline.pc));
}

TEST(LoadRegistry, CleanupThatFails_Succeeds) {
    for (const auto& [call, nth] :
         {std::pair("CloseHandle", 1U), {"CloseHandle", 2U}, {"PathFileExistsW", 1U}, {"DeleteFileW", 1U}}) {
        Offline offline;
        offline.Fail(call, nth, ERROR_ACCESS_DENIED);
        EXPECT_EQ(offline.Run(TEXT("rem")), 0) << call;
        const bool isClose = std::string(call) == "CloseHandle";
        EXPECT_EQ(BatchFile(offline.pc) == nullptr, isClose) << call;
        EXPECT_EQ(offline.pc.ledger.Outstanding().size(), isClose ? 1U : 0U) << call;
    }
}

// --- the hive ---

TEST(LoadWindowsRegistry, InstalledWindows_MountsItsHive) {
    Offline offline;
    EXPECT_EQ(offline.Load(), TRUE);
    EXPECT_TRUE(offline.pc.facts.registry.contains("HKLM\\TEMSYSTEM\\MountedDevices"));
    EXPECT_THAT(offline.pc.journal.Calls("reg")[0].arguments,
                ElementsAre("load", "HKLM\\TEMSYSTEM", "D:\\Windows\\System32\\Config\\SYSTEM"));
    EXPECT_EQ(offline.Count("reg"), 1U);
    EXPECT_EQ(offline.pc.clockMilliseconds, 50U);
}

TEST(LoadWindowsRegistry, NoInstalledWindows_FailsAtOnce) {
    machine::Pc facts = TwoSystems();
    PartitionOf(facts, 2).volume->files = {};
    Offline offline(facts);
    EXPECT_EQ(offline.Load(), FALSE);
    EXPECT_EQ(offline.Count("CreateFileW"), 0U);
    EXPECT_EQ(offline.pc.clockMilliseconds, 0U);
}

TEST(LoadWindowsRegistry, FirstAttemptFails_SucceedsAtTheSecondAfterAPause) {
    Offline offline;
    offline.Fail("ShellExecuteExW", 1, ERROR_CANCELLED);
    EXPECT_EQ(offline.Load(), TRUE);
    EXPECT_TRUE(IsHiveMounted(offline.pc));
    EXPECT_EQ(offline.Count("ShellExecuteExW"), 2U);
    EXPECT_EQ(offline.pc.clockMilliseconds, 300U + 50U);
}

TEST(UnloadWindowsRegistry, MountedHive_UnmountsIt) {
    Offline offline;
    offline.Load();
    EXPECT_EQ(offline.Unload(), TRUE);
    EXPECT_TRUE(offline.pc.facts.registry == TwoSystems().registry);
    EXPECT_THAT(offline.pc.journal.Calls("reg")[1].arguments, ElementsAre("unload", "HKLM\\TEMSYSTEM"));
    EXPECT_EQ(BatchFile(offline.pc), nullptr);
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
}

TEST(UnloadWindowsRegistry, BatchThatEndsWithoutEffect_Succeeds) {
    Offline offline;
    EXPECT_EQ(offline.Unload(), TRUE);
    EXPECT_EQ(offline.pc.journal.Calls("reg")[0].result, "1");
    EXPECT_EQ(offline.Count("reg"), 1U);
}

TEST(UnloadWindowsRegistry, TwoAttemptsFail_SucceedsAtTheThird) {
    Offline offline;
    offline.Load();
    const uint64_t before = offline.pc.clockMilliseconds;
    offline.Fail("WriteFile", 1, ERROR_DISK_FULL);
    offline.Fail("WaitForSingleObject", 1, WAIT_FAILED);
    EXPECT_EQ(offline.Unload(), TRUE);
    EXPECT_FALSE(IsHiveMounted(offline.pc));
    EXPECT_EQ(offline.Count("CreateFileW"), 1U + 3U);
    EXPECT_EQ(offline.pc.clockMilliseconds - before, 300U + 300U + 50U);
}

// Three attempts, and a pause after each.
struct LastingFailure {
    const char* name;
    machine::FaultRule rule;
};

void PrintTo(const LastingFailure& lastingFailure, std::ostream* out) {
    *out << lastingFailure.name;
}

const LastingFailure lastingFailures[] = {
    {"NotCreated", {"CreateFileW", 0, true, false, ERROR_ACCESS_DENIED}},
    {"NotWritten", {"WriteFile", 0, true, false, ERROR_DISK_FULL}},
    {"NotStarted", {"ShellExecuteExW", 0, true, false, ERROR_CANCELLED}},
    {"NotAwaited", {"WaitForSingleObject", 0, true, false, WAIT_FAILED}},
};

class ThreeAttempts : public testing::TestWithParam<LastingFailure> {};

TEST_P(ThreeAttempts, LastingFailure_LoadAndUnloadFailAfterThem) {
    for (const auto operation : {&Offline::Load, &Offline::Unload}) {
        Offline offline;
        offline.pc.faults.Arm(GetParam().rule);
        EXPECT_EQ((offline.*operation)(), FALSE);
        EXPECT_EQ(offline.pc.faults.Fired(), 3);
        EXPECT_EQ(offline.pc.clockMilliseconds, 900U);
        EXPECT_EQ(BatchFile(offline.pc), nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, ThreeAttempts, testing::ValuesIn(lastingFailures),
                         [](const auto& failure) { return std::string(failure.param.name); });

TEST(LoadWindowsRegistry, BatchThatNeverEnds_FailsAfterThreeTimesTenSecondsAndThreePauses) {
    Offline offline;
    offline.pc.facts.shell.milliseconds = 60'000;
    EXPECT_EQ(offline.Load(), FALSE);
    EXPECT_EQ(offline.pc.clockMilliseconds, 3U * 10'300U);
    EXPECT_EQ(offline.Count("WaitForSingleObject"), 3U);
    EXPECT_THAT(offline.pc.ledger.Outstanding(), IsEmpty());
}

TEST(LoadWindowsRegistry, NoProcessHandle_FailsAfterThreeAttempts) {
    Offline offline;
    offline.pc.facts.shell.returnsProcess = false;
    EXPECT_EQ(offline.Load(), FALSE);
    EXPECT_EQ(offline.Count("ShellExecuteExW"), 3U);
    EXPECT_EQ(offline.pc.clockMilliseconds, 900U);
    // The first of them did its work all the same.
    EXPECT_TRUE(IsHiveMounted(offline.pc));
}

}  // namespace
