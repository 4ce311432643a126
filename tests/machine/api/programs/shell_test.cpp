// The shell, its batch files, and the hives that their `reg` lines mount and unmount.

#include "machine/facts/file_stores.h"
#include "machine/journal/clock.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

constexpr const char* batch = "LoadRegistry.bat";
constexpr const char* hiveFile = "Windows/System32/config/SYSTEM";
constexpr const char* load = "reg load HKLM\\TEMSYSTEM D:\\Windows\\System32\\Config\\SYSTEM\r\nexit\r\n";
constexpr const char* unload = "reg unload HKLM\\TEMSYSTEM\r\nexit\r\n";

// Windows PE with a batch file on X:, and an installed Windows on D: whose hive records the letter C:.
machine::Pc PcWithBatch(const std::string& content) {
    machine::Pc pc = machine::WinPeTwoDisks();
    pc.volumes[0].files.PutFile(batch, content);
    pc.offlineSystemHive["MountedDevices"]["\\DosDevices\\C:"] = {REG_BINARY, "data"};
    return pc;
}

SHELLEXECUTEINFOW Info(const WCHAR* file = u"X:\\LoadRegistry.bat") {
    SHELLEXECUTEINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = u"open";
    info.lpFile = file;
    return info;
}

// Runs the batch to its end and returns the exit codes of its `reg` lines.
std::vector<std::string> RunToEnd(EmulatedPc& pc, const std::string& content) {
    pc.facts.volumes[0].files.PutFile(batch, content);
    pc.journal.Clear();
    SHELLEXECUTEINFOW info = Info();
    EXPECT_TRUE(ShellExecuteExW(&info));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, INFINITE), DWORD{WAIT_OBJECT_0});
    EXPECT_TRUE(CloseHandle(info.hProcess));
    std::vector<std::string> exitCodes;
    for (const machine::CallRecord& call : pc.journal.Calls("reg"))
        exitCodes.push_back(call.result);
    return exitCodes;
}

bool IsMounted(const EmulatedPc& pc) {
    return pc.facts.registry.contains("HKLM\\TEMSYSTEM");
}

class HiveText final : public machine::HiveReader {
  public:
    uint32_t Read(machine::HiveFile file, machine::RegistryKeys& keys) override {
        if (file.content != "regf") return ERROR_BADDB;
        notes_ = {file.owner, file.beside(".LOG1"), file.beside(".LOG2")};
        keys[""]["Root"] = {REG_SZ, "root"};
        keys["MountedDevices"]["\\DosDevices\\E:"] = {REG_BINARY, "image"};
        return ERROR_SUCCESS;
    }
    std::vector<std::string> Notes() const override { return notes_; }

  private:
    std::vector<std::string> notes_;
};

}  // namespace

TEST(ShellExecuteEx, BatchThatMountsAHive_TakesEffectWhenItsTimeIsOver) {
    EmulatedPc pc(PcWithBatch(load));
    SetLastError(staleError);
    SHELLEXECUTEINFOW info = Info();
    ASSERT_TRUE(ShellExecuteExW(&info));
    EXPECT_GT(reinterpret_cast<intptr_t>(info.hInstApp), 32);
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("process handle", 1)));
    EXPECT_FALSE(IsMounted(pc));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(pc.clockMilliseconds, 50u);
    EXPECT_TRUE(CloseHandle(info.hProcess));
    EXPECT_EQ(pc.facts.registry["HKLM\\TEMSYSTEM\\MountedDevices"]["\\DosDevices\\C:"].data, "data");
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("mounted hive", 1)));
    EXPECT_EQ(GetLastError(), staleError);
    const auto calls = pc.journal.Calls();
    EXPECT_THAT(calls[0].arguments, ElementsAre("open", "X:\\LoadRegistry.bat", "", "", "0", "0x00000040"));
    EXPECT_EQ(calls[1].call, "reg");
    EXPECT_THAT(calls[1].arguments,
                ElementsAre("load", "HKLM\\TEMSYSTEM", "D:\\Windows\\System32\\Config\\SYSTEM"));
    EXPECT_EQ(calls[1].result, "0");
    EXPECT_THAT(calls[2].arguments, ElementsAre("X:\\LoadRegistry.bat", "10000"));
    EXPECT_THAT(calls[3].arguments, ElementsAre("X:\\LoadRegistry.bat"));
}

TEST(ShellExecuteEx, BatchChangedAfterStart_RunsItsContentAtTheStart) {
    EmulatedPc pc(PcWithBatch(load));
    SHELLEXECUTEINFOW info = Info();
    ASSERT_TRUE(ShellExecuteExW(&info));
    EXPECT_TRUE(DeleteFileW(u"X:\\LoadRegistry.bat"));
    EXPECT_TRUE(CloseHandle(info.hProcess));
    Sleep(49);
    EXPECT_FALSE(IsMounted(pc));
    Sleep(1);
    EXPECT_TRUE(IsMounted(pc));
}

TEST(ShellExecuteEx, ProcessNotRequestedOrWithheld_ReturnsNoProcess) {
    EmulatedPc pc(PcWithBatch(load));
    SHELLEXECUTEINFOW info = Info();
    info.fMask = 0;
    info.hProcess = INVALID_HANDLE_VALUE;
    EXPECT_TRUE(ShellExecuteExW(&info));
    EXPECT_EQ(info.hProcess, nullptr);
    pc.facts.shell.returnsProcess = false;
    info = Info();
    EXPECT_TRUE(ShellExecuteExW(&info));
    EXPECT_EQ(info.hProcess, nullptr);
    ExpectCleanLedger(pc);
    Sleep(50);
    EXPECT_TRUE(IsMounted(pc));
}

TEST(ShellExecuteEx, InvalidFileVerbOrRecord_FailsWithItsError) {
    EmulatedPc pc(PcWithBatch(load));
    const struct {
        const WCHAR* verb;
        const WCHAR* file;
        DWORD error;
    } rows[] = {
        {u"open", u"X:\\None.bat", ERROR_FILE_NOT_FOUND},
        {u"open", u"Q:\\LoadRegistry.bat", ERROR_PATH_NOT_FOUND},
        {u"open", u"D:\\Windows\\System32\\winload.exe", ERROR_NO_ASSOCIATION},
        {u"open", u"X:\\Windows", ERROR_ACCESS_DENIED},
        {u"print", u"X:\\LoadRegistry.bat", ERROR_NO_ASSOCIATION},
    };
    for (const auto& row : rows) {
        SHELLEXECUTEINFOW info = Info(row.file);
        info.lpVerb = row.verb;
        EXPECT_FALSE(ShellExecuteExW(&info)) << ToUtf8(row.file);
        EXPECT_EQ(GetLastError(), row.error) << ToUtf8(row.file);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(info.hInstApp), row.error);
        EXPECT_EQ(info.hProcess, nullptr);
    }
    SHELLEXECUTEINFOW info = Info();
    info.cbSize = 8;
    EXPECT_FALSE(ShellExecuteExW(&info));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_FALSE(ShellExecuteExW(nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    Sleep(1000);
    EXPECT_FALSE(IsMounted(pc));
    ExpectCleanLedger(pc);
}

TEST(ShellExecuteEx, FaultBeforeOrAfterEffect_StartsNothingOrTheBatch) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(PcWithBatch(load));
        FailNext(pc, "ShellExecuteExW", ERROR_CANCELLED, afterEffect);
        SHELLEXECUTEINFOW info = Info();
        EXPECT_FALSE(ShellExecuteExW(&info));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_CANCELLED});
        EXPECT_EQ(info.hProcess, nullptr);
        ExpectCleanLedger(pc);
        Sleep(50);
        EXPECT_EQ(IsMounted(pc), afterEffect);
    }
}

TEST(WaitForSingleObject, RunningBatch_TimesOut) {
    machine::Pc facts = PcWithBatch(load);
    facts.shell.milliseconds = 15000;
    EmulatedPc pc(facts);
    SHELLEXECUTEINFOW info = Info();
    ASSERT_TRUE(ShellExecuteExW(&info));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 0), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), DWORD{WAIT_TIMEOUT});
    EXPECT_EQ(pc.clockMilliseconds, 10000u);
    EXPECT_FALSE(IsMounted(pc));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(pc.clockMilliseconds, 15000u);
    EXPECT_TRUE(IsMounted(pc));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), DWORD{WAIT_OBJECT_0});
    EXPECT_EQ(pc.clockMilliseconds, 15000u);
    CloseHandle(info.hProcess);
}

TEST(WaitForSingleObject, BatchOfExactlyThatTime_Succeeds) {
    machine::Pc facts = PcWithBatch(load);
    facts.shell.milliseconds = 10000;
    EmulatedPc pc(facts);
    SHELLEXECUTEINFOW info = Info();
    ASSERT_TRUE(ShellExecuteExW(&info));
    EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), DWORD{WAIT_OBJECT_0});
    CloseHandle(info.hProcess);
}

TEST(WaitForSingleObject, OtherHandle_FailsWithInvalidHandle) {
    EmulatedPc pc(PcWithBatch(load));
    EXPECT_EQ(WaitForSingleObject(nullptr, 10000), WAIT_FAILED);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    const HANDLE volume = OpenShared(u"\\\\.\\C:");
    EXPECT_EQ(WaitForSingleObject(volume, 10000), WAIT_FAILED);
    CloseHandle(volume);
    EXPECT_EQ(pc.clockMilliseconds, 0u);
}

TEST(WaitForSingleObject, FaultBeforeOrAfterEffect_WaitsOnlyAfterIt) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(PcWithBatch(load));
        SHELLEXECUTEINFOW info = Info();
        ASSERT_TRUE(ShellExecuteExW(&info));
        FailNext(pc, "WaitForSingleObject", WAIT_FAILED, afterEffect);
        EXPECT_EQ(WaitForSingleObject(info.hProcess, 10000), WAIT_FAILED);
        EXPECT_EQ(IsMounted(pc), afterEffect);
        CloseHandle(info.hProcess);
    }
}

TEST(CloseHandle, ProcessClosedTwice_SecondCloseIsAViolation) {
    EmulatedPc pc(PcWithBatch(unload));
    SHELLEXECUTEINFOW info = Info();
    ASSERT_TRUE(ShellExecuteExW(&info));
    EXPECT_TRUE(CloseHandle(info.hProcess));
    EXPECT_THAT(pc.ledger.Outstanding(), IsEmpty());
    EXPECT_FALSE(CloseHandle(info.hProcess));
    EXPECT_THAT(pc.ledger.Violations(), testing::SizeIs(1));
}

TEST(Clock, SeveralScheduledActions_RunInOrderWhenDue) {
    EmulatedPc pc(machine::FactoryMbr());
    std::vector<std::pair<char, uint64_t>> done;
    for (const auto& [name, hour] : {std::pair('b', 20), {'c', 20}, {'a', 10}, {'d', 30}}) {
        machine::Schedule(pc, static_cast<uint64_t>(hour), [&done, name = name](EmulatedPc& then) {
            done.emplace_back(name, then.clockMilliseconds);
        });
    }
    machine::AdvanceClock(pc, 29);
    EXPECT_THAT(done, ElementsAre(Pair('a', 10u), Pair('b', 20u), Pair('c', 20u)));
    EXPECT_EQ(pc.clockMilliseconds, 29u);
}

TEST(Reg, LoadedHive_Unload_RemovesItsKeys) {
    EmulatedPc pc(PcWithBatch(load));
    EXPECT_THAT(RunToEnd(pc, load), ElementsAre("0"));
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("0"));
    EXPECT_TRUE(pc.facts.registry == machine::WinPeTwoDisks().registry);
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("1"));
    ExpectCleanLedger(pc);
}

TEST(Reg, HiveWithoutKeys_Load_CreatesTheMountKey) {
    EmulatedPc pc(PcWithBatch(load));
    pc.facts.offlineSystemHive.clear();
    EXPECT_THAT(RunToEnd(pc, load), ElementsAre("0"));
    EXPECT_TRUE(IsMounted(pc));
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("0"));
    EXPECT_FALSE(IsMounted(pc));
}

TEST(Reg, RegFails_AnyCommand_ChangesNothing) {
    EmulatedPc pc(PcWithBatch(load));
    pc.facts.shell.regFails = true;
    EXPECT_THAT(RunToEnd(pc, load), ElementsAre("1"));
    EXPECT_FALSE(IsMounted(pc));
    pc.facts.shell.regFails = false;
    RunToEnd(pc, load);
    pc.facts.shell.regFails = true;
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("1"));
    EXPECT_TRUE(IsMounted(pc));
}

TEST(Reg, MissingFileOrHiveInUse_Load_Fails) {
    EmulatedPc pc(PcWithBatch(load));
    EXPECT_THAT(RunToEnd(pc, "reg load HKLM\\T D:\\Windows\\System32\\Config\\NONE"), ElementsAre("1"));
    EXPECT_THAT(RunToEnd(pc, "reg load HKLM\\T Q:\\Windows\\System32\\Config\\SYSTEM"), ElementsAre("1"));
    EXPECT_THAT(RunToEnd(pc, "reg load HKLM\\T D:\\Windows\\System32"), ElementsAre("1"));
    pc.facts.volumes[0].files.PutFile(hiveFile, "regf");
    EXPECT_THAT(RunToEnd(pc, "reg load HKLM\\T x:\\windows\\system32\\config\\SYSTEM"), ElementsAre("1"));
    EXPECT_THAT(pc.facts.registry, IsEmpty());
    ExpectCleanLedger(pc);
}

TEST(Reg, ExistingOrMisplacedKey_Load_Fails) {
    EmulatedPc pc(PcWithBatch(load));
    pc.facts.registry["HKLM\\TAKEN\\Below"];
    for (const char* const key :
         {"HKLM\\Taken", "HKLM\\SYSTEM", "HKLM\\software", "HKLM\\T\\U", "HKLM\\", "HKLM", "HKCU\\T"}) {
        std::string command = "reg load ";
        command += key;
        command += " D:\\Windows\\System32\\Config\\SYSTEM";
        EXPECT_THAT(RunToEnd(pc, command), ElementsAre("1")) << key;
    }
    EXPECT_EQ(pc.facts.registry.size(), 1u);
}

TEST(Reg, SystemsOwnHives_Unload_Fails) {
    EmulatedPc pc(PcWithBatch(load));
    pc.facts.registry["HKLM\\SYSTEM\\MountedDevices"];
    EXPECT_THAT(RunToEnd(pc, "reg unload HKLM\\SYSTEM"), ElementsAre("1"));
    EXPECT_EQ(pc.facts.registry.size(), 1u);
}

TEST(Reg, OpenKeyBelow_Unload_Fails) {
    EmulatedPc pc(PcWithBatch(load));
    RunToEnd(pc, load);
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"TEMSYSTEM\\MountedDevices", 0, KEY_READ, &key), 0);
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("1"));
    EXPECT_TRUE(IsMounted(pc));
    EXPECT_EQ(RegCloseKey(key), 0);
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("0"));
    ExpectCleanLedger(pc);
}

TEST(Reg, HiveMountedByTheDescription_Unload_Succeeds) {
    machine::Pc facts = PcWithBatch(load);
    facts.registry["HKLM\\TEMSYSTEM\\MountedDevices"];
    EmulatedPc pc(facts);
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("0"));
    EXPECT_THAT(pc.facts.registry, IsEmpty());
    ExpectCleanLedger(pc);
}

TEST(Reg, HiveOnADiskImage_Load_ReadsTheFile) {
    machine::Pc facts = PcWithBatch(load);
    machine::Volume& windows = *facts.disks[0].partitions[1].volume;
    windows.store = std::make_shared<machine::TreeStore>(windows.files);
    ASSERT_EQ(windows.store->Write("Windows/System32/config/SYSTEM.LOG2", "log"), 0u);
    facts.disks[0].image = "x.img";
    facts.hiveReader = std::make_shared<HiveText>();
    EmulatedPc pc(facts);
    EXPECT_THAT(RunToEnd(pc, load), ElementsAre("0"));
    EXPECT_THAT(facts.hiveReader->Notes(), ElementsAre("x.img: the registry of partition 2", "", "log"));
    EXPECT_EQ(pc.facts.registry["HKLM\\TEMSYSTEM"]["Root"].data, "root");
    EXPECT_EQ(pc.facts.registry["HKLM\\TEMSYSTEM\\MountedDevices"]["\\DosDevices\\E:"].data, "image");
    EXPECT_THAT(RunToEnd(pc, unload), ElementsAre("0"));
    EXPECT_THAT(RunToEnd(pc, "reg load HKLM\\T D:\\Windows\\System32\\Winload.exe"), ElementsAre("1"));
    pc.facts.hiveReader = nullptr;
    EXPECT_THAT(RunToEnd(pc, load), ElementsAre("1"));
    EXPECT_THAT(pc.facts.registry, IsEmpty());
    ExpectCleanLedger(pc);
}

TEST(BatchFile, RegLinesAndExit_RunsThoseBeforeExit) {
    EmulatedPc pc(PcWithBatch(load));
    EXPECT_THAT(RunToEnd(pc, ""), IsEmpty());
    EXPECT_THAT(RunToEnd(pc, "@echo off\r\n\r\nREG load\r\nreg query HKLM\r\nExit\r\nreg load x y\r\n"),
                ElementsAre("1", "1"));
    EXPECT_THAT(pc.journal.Calls("reg")[1].arguments, ElementsAre("query", "HKLM"));
}
