// The letters of the installed Windows, and where their volumes are under Windows PE.

#include <gmock/gmock.h>

#include "base/wide_string.h"
#include "tests/manager/internals.h"
#include "tests/support/application/two_systems.h"
#include "tests/support/transcript.h"

bool operator==(const tagDriveInfo_t& left, const tagDriveInfo_t& right) {
    return left.iDiskNum == right.iDiskNum && left.iPartNum == right.iPartNum &&
           left.cDriveLetter == right.cDriveLetter;
}

namespace {

using machine::EmulatedPc;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Devices = std::map<WCHAR, std::string>;

const tagDriveInfo_t untouched = {-1, -1, TEXT('?')};

struct Translation {
    EmulatedPc pc;
    Kestova kestova;
    std::vector<tagDriveInfo_t> records = std::vector<tagDriveInfo_t>(4, untouched);

    explicit Translation(machine::Pc facts = TwoSystems()) : pc(std::move(facts)) { pc.journal.Clear(); }
    ~Translation() { EXPECT_THAT(pc.ledger.Violations(), IsEmpty()); }

    int GetLetters(int count = 4) { return kestova.GetWinDriveLetters(records.data(), count); }
    int Read(const WCHAR* path) {
        WideString key = path;
        return (kestova.*Open(internals::ReadRegistryTag()))(key.data());
    }
    int Transform(WCHAR installed, WCHAR& running) {
        return (kestova.*Open(internals::TransformDriveLetterTag()))(installed, running);
    }
    // Puts a letter into one of the maps.
    void Add(internals::LetterMap map, WCHAR letter, std::string_view data) {
        auto* const bytes = new BYTE[data.size()];
        std::copy(data.begin(), data.end(), bytes);
        (kestova.*map)[letter] = {bytes, static_cast<DWORD>(data.size())};
    }
    Devices Content(internals::LetterMap map) const {
        Devices devices;
        for (const auto& [letter, data] : kestova.*map)
            devices[letter] = std::string(reinterpret_cast<const char*>(data.pData), data.dwLength);
        return devices;
    }
    Devices Running() const { return Content(Open(internals::PEDriveMapTag())); }
    Devices Installed() const { return Content(Open(internals::WinDriveMapTag())); }
    std::string Log() const { return Transcript(pc.journal); }
};

// --- one key ---

const WCHAR* const runningKey = TEXT("SYSTEM\\MountedDevices");

TEST(ReadRegistry, KeyOfTheRunningSystem_FillsItsMap) {
    Translation translation;
    EXPECT_EQ(translation.Read(TEXT("system\\MOUNTEDdevices")), TRUE);
    EXPECT_THAT(translation.Running(),
                ElementsAre(Pair(TEXT('C'), IdentityOf(translation.pc.facts, 1).data),
                            Pair(TEXT('D'), IdentityOf(translation.pc.facts, 2).data),
                            Pair(TEXT('E'), IdentityOf(translation.pc.facts, 3).data)));
    EXPECT_THAT(translation.Installed(), IsEmpty());
    EXPECT_EQ(translation.Log(),
              "4 Kestova::ReadRegistry Start. sRegisterPath = system\\MOUNTEDdevices\n"
              "4 Kestova::ReadRegistry End. bResult = {int 1}\n");
    EXPECT_THAT(translation.pc.journal.Calls("RegOpenKeyExW")[0].arguments,
                ElementsAre("HKLM", "system\\MOUNTEDdevices", "0x00020019"));
    EXPECT_EQ(translation.pc.journal.Calls("RegQueryValueExW").size(), 26U + 3U);
    EXPECT_THAT(translation.pc.ledger.Outstanding(), IsEmpty());
}

TEST(ReadRegistry, AnyOtherKey_FillsTheMapOfTheInstalledWindows) {
    machine::Pc facts = TwoSystems();
    facts.registry["HKLM\\ELSEWHERE"] = {{"\\DosDevices\\Z:", {REG_BINARY, "last"}},
                                         {"\\DosDevices\\A:", {REG_SZ, "a"}},
                                         {"\\DosDevices\\AA:", {REG_BINARY, "no letter"}},
                                         {"\\??\\Volume{1}", {REG_BINARY, "no letter"}}};
    Translation translation(facts);
    EXPECT_EQ(translation.Read(TEXT("ELSEWHERE")), TRUE);
    EXPECT_THAT(translation.Installed(),
                ElementsAre(Pair(TEXT('A'), std::string("a\0\0\0", 4)), Pair(TEXT('Z'), "last")));
    EXPECT_THAT(translation.Running(), IsEmpty());
}

TEST(ReadRegistry, NoLetter_Succeeds) {
    machine::Pc facts = TwoSystems();
    facts.registry[runningDevices] = {{"\\??\\Volume{1}", {REG_BINARY, "no letter"}}};
    Translation translation(facts);
    EXPECT_EQ(translation.Read(runningKey), TRUE);
    EXPECT_THAT(translation.Running(), IsEmpty());
}

TEST(ReadRegistry, LetterWithoutData_IsKept) {
    machine::Pc facts = TwoSystems();
    facts.registry[runningDevices] = {{"\\DosDevices\\C:", {REG_BINARY, ""}}};
    Translation translation(facts);
    EXPECT_EQ(translation.Read(runningKey), TRUE);
    EXPECT_THAT(translation.Running(), ElementsAre(Pair(TEXT('C'), "")));
}

TEST(ReadRegistry, LetterInTheMapAlready_IsLeft) {
    Translation translation;
    translation.Add(Open(internals::PEDriveMapTag()), TEXT('D'), "older");
    EXPECT_EQ(translation.Read(runningKey), TRUE);
    EXPECT_EQ(translation.Running()[TEXT('D')], "older");
    EXPECT_EQ(translation.Running().size(), 3U);
}

TEST(ReadRegistry, NoSuchKey_Fails) {
    Translation translation;
    EXPECT_EQ(translation.Read(TEXT("NONE")), FALSE);
    EXPECT_EQ(translation.Log(),
              "4 Kestova::ReadRegistry Start. sRegisterPath = NONE\n"
              "4 Kestova::ReadRegistry End. bResult = {int 0}\n");
    translation.pc.journal.Clear();
    EXPECT_EQ((translation.kestova.*Open(internals::ReadRegistryTag()))(nullptr), FALSE);
    EXPECT_EQ(translation.Log(),
              "4 Kestova::ReadRegistry Start. sRegisterPath = \n"
              "4 Kestova::ReadRegistry End. bResult = {int 0}\n");
    EXPECT_THAT(translation.pc.journal.Calls("RegOpenKeyExW"), IsEmpty());
}

TEST(ReadRegistry, LetterWithUnreadableData_IsSkipped) {
    // The third query asks for the size of C:, the fourth for its data.
    for (const uint32_t query : {3U, 4U}) {
        Translation translation;
        translation.pc.faults.Arm({.call = "RegQueryValueExW", .nth = query, .code = ERROR_READ_FAULT});
        EXPECT_EQ(translation.Read(runningKey), TRUE);
        EXPECT_THAT(translation.Running(),
                    ElementsAre(Pair(TEXT('D'), testing::_), Pair(TEXT('E'), testing::_)));
    }
}

TEST(ReadRegistry, SuccessWithoutAKey_ReadsNothing) {
    Translation translation;
    translation.pc.faults.Arm({.call = "RegOpenKeyExW", .nth = 1, .code = ERROR_SUCCESS});
    EXPECT_EQ(translation.Read(runningKey), TRUE);
    EXPECT_THAT(translation.Running(), IsEmpty());
}

TEST(ReadRegistry, KeyThatDoesNotClose_Succeeds) {
    Translation translation;
    translation.pc.faults.Arm({.call = "RegCloseKey", .nth = 1, .code = ERROR_BADKEY});
    EXPECT_EQ(translation.Read(runningKey), TRUE);
    EXPECT_EQ(translation.Running().size(), 3U);
    EXPECT_THAT(translation.pc.ledger.Outstanding(), ElementsAre(Pair("registry key", 1)));
}

// --- one letter ---

struct Maps : Translation {
    Maps() {
        Add(Open(internals::WinDriveMapTag()), TEXT('C'), "windows");
        Add(Open(internals::PEDriveMapTag()), TEXT('C'), "recovery");
        Add(Open(internals::PEDriveMapTag()), TEXT('D'), "Windows");
        Add(Open(internals::PEDriveMapTag()), TEXT('E'), "windows");
        Add(Open(internals::PEDriveMapTag()), TEXT('F'), "windows");
    }
};

TEST(TransformDriveLetter, TwoLettersWithTheSameBytes_ReturnsTheLower) {
    Maps maps;
    WCHAR running = TEXT('?');
    EXPECT_EQ(maps.Transform(TEXT('C'), running), TRUE);
    EXPECT_EQ(running, TEXT('E'));
    EXPECT_EQ(maps.Log(),
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char C}\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter  cWinPEDriveLetter: {char E}\n"
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char C}\n");
}

TEST(TransformDriveLetter, MissingVolume_Returns0) {
    Maps maps;
    maps.Add(Open(internals::WinDriveMapTag()), TEXT('G'), "windows of another disk");
    WCHAR running = TEXT('?');
    EXPECT_EQ(maps.Transform(TEXT('G'), running), TRUE);
    EXPECT_EQ(running, TEXT('0'));
    EXPECT_EQ(maps.Log(),
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char G}\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter\\t\\tcWinPEDriveLetter is 0\n"
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char G}\n");
}

TEST(TransformDriveLetter, NoRunningLetters_LeavesTheOutput) {
    Translation translation;
    translation.Add(Open(internals::WinDriveMapTag()), TEXT('C'), "windows");
    WCHAR running = TEXT('?');
    EXPECT_EQ(translation.Transform(TEXT('C'), running), TRUE);
    EXPECT_EQ(running, TEXT('?'));
    EXPECT_EQ(translation.Log(),
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char C}\n"
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char C}\n");
}

TEST(TransformDriveLetter, UnknownLetter_Fails) {
    Maps maps;
    WCHAR running = TEXT('?');
    EXPECT_EQ(maps.Transform(TEXT('D'), running), FALSE);
    EXPECT_EQ(running, TEXT('?'));
    EXPECT_EQ(maps.Log(),
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char D}\n"
              "4 Kestova::TransformDriveLetter\\t\\tFALSE\n"
              "4 Kestova::TransformDriveLetter  cWindowsDriveLetter: {char D}\n");
}

TEST(TransformDriveLetter, LettersWithoutData_CountAsTheSame) {
    Translation translation;
    translation.Add(Open(internals::WinDriveMapTag()), TEXT('C'), "");
    translation.Add(Open(internals::PEDriveMapTag()), TEXT('D'), "data");
    translation.Add(Open(internals::PEDriveMapTag()), TEXT('E'), "");
    WCHAR running = TEXT('?');
    EXPECT_EQ(translation.Transform(TEXT('C'), running), TRUE);
    EXPECT_EQ(running, TEXT('E'));
}

TEST(CleanMap, FilledMaps_AreFreedAndEmptied) {
    Maps maps;
    (maps.kestova.*Open(internals::CleanMapTag()))();
    EXPECT_THAT(maps.Running(), IsEmpty());
    EXPECT_THAT(maps.Installed(), IsEmpty());
    EXPECT_EQ(maps.Log(), "4 Kestova::CleanMap\\tStart\n4 Kestova::CleanMap\\tEnd\n");
}

// --- all letters ---

TEST(GetWinDriveLetters, TwoSystems_ReturnsDiskAndPartitionOfEachLetter) {
    Translation translation;
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_THAT(translation.records, ElementsAre(tagDriveInfo_t{0, 2, TEXT('C')},
                                                 tagDriveInfo_t{0, 3, TEXT('D')}, untouched, untouched));
    EXPECT_FALSE(IsHiveMounted(translation.pc));
    EXPECT_EQ(BatchFile(translation.pc), nullptr);
    EXPECT_EQ(translation.pc.clockMilliseconds, 2U * 50U);
    EXPECT_THAT(translation.pc.ledger.Outstanding(), IsEmpty());
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, SecondCall_StartsFromTheMapsOfTheFirst) {
    Translation translation;
    translation.GetLetters();
    EXPECT_EQ(translation.Running().size(), 3U);
    EXPECT_EQ(translation.Installed().size(), 3U);
    translation.pc.facts.offlineSystemHive[installedDevices].erase("\\DosDevices\\C:");
    translation.records.assign(4, untouched);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_EQ(translation.Installed().size(), 2U);
    EXPECT_EQ(translation.records[0], (tagDriveInfo_t{0, 3, TEXT('D')}));
}

TEST(GetWinDriveLetters, GptDisk_MatchesItsPartitions) {
    machine::Pc facts = TwoSystems();
    const machine::RegistryValue id = {REG_BINARY, std::string("DMIO:ID:0123456789abcdef")};
    facts.registry[runningDevices]["\\DosDevices\\E:"] = id;
    facts.offlineSystemHive[installedDevices] = {{"\\DosDevices\\C:", id}};
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_THAT(translation.records[0], (tagDriveInfo_t{0, 3, TEXT('C')}));
}

TEST(GetWinDriveLetters, TwoRunningLettersWithTheSameData_TakesTheLower) {
    machine::Pc facts = TwoSystems();
    facts.registry[runningDevices]["\\DosDevices\\C:"] = IdentityOf(facts, 2);
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_EQ(translation.records[0], (tagDriveInfo_t{0, 1, TEXT('C')}));
}

TEST(GetWinDriveLetters, TwoLettersOfOneVolume_ReturnsBoth) {
    machine::Pc facts = TwoSystems();
    facts.offlineSystemHive[installedDevices]["\\DosDevices\\F:"] = IdentityOf(facts, 2);
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_EQ(translation.records[0], (tagDriveInfo_t{0, 2, TEXT('C')}));
    EXPECT_EQ(translation.records[2], (tagDriveInfo_t{0, 2, TEXT('F')}));
}

TEST(GetWinDriveLetters, UnreadableVolume_IsReturnedWithUnknownPlace) {
    machine::Pc facts = TwoSystems();
    PartitionOf(facts, 3).volume->openError = ERROR_ACCESS_DENIED;
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_EQ(translation.records[1], (tagDriveInfo_t{255, 0, TEXT('D')}));
}

TEST(GetWinDriveLetters, MissingVolumes_FillNoRecord) {
    machine::Pc facts = TwoSystems();
    facts.registry[runningDevices] = {{"\\DosDevices\\C:", IdentityOf(facts, 1)}};
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_THAT(translation.records, Each(untouched));
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, NoRunningLetters_FillsNoRecord) {
    machine::Pc facts = TwoSystems();
    facts.registry[runningDevices].clear();
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), TRUE);
    EXPECT_THAT(translation.records, Each(untouched));
}

TEST(GetWinDriveLetters, RoomForEveryLetter_Succeeds) {
    Translation translation;
    EXPECT_EQ(translation.GetLetters(2), TRUE);
    EXPECT_EQ(translation.records[1], (tagDriveInfo_t{0, 3, TEXT('D')}));
}

TEST(GetWinDriveLetters, TooLittleRoom_StopsWhenItIsUsedUp) {
    Translation translation;
    EXPECT_EQ(translation.GetLetters(1), FALSE);
    EXPECT_THAT(translation.records,
                ElementsAre(tagDriveInfo_t{0, 2, TEXT('C')}, untouched, untouched, untouched));
    EXPECT_FALSE(IsHiveMounted(translation.pc));
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, NoRoom_FillsNothing) {
    for (const int count : {0, -1}) {
        Translation translation;
        EXPECT_EQ(translation.GetLetters(count), FALSE);
        EXPECT_THAT(translation.records, Each(untouched));
        EXPECT_FALSE(IsHiveMounted(translation.pc));
    }
}

TEST(GetWinDriveLetters, NoRecords_OnlyUnloads) {
    Translation translation;
    EXPECT_EQ(translation.kestova.GetWinDriveLetters(nullptr, 4), FALSE);
    EXPECT_THAT(translation.Running(), IsEmpty());
    EXPECT_EQ(translation.pc.journal.Calls("reg").size(), 1U);
    EXPECT_EQ(translation.Log(),
              "4 Kestova::GetWinDriveLetters\\t\\tStart\n"
              "4 Kestova::CleanMap\\tStart\n"
              "4 Kestova::CleanMap\\tEnd\n"
              "4 Kestova::GetWinDriveLetters\\t\\tEnd\n");
}

TEST(GetWinDriveLetters, NoKeyOfTheRunningSystem_Fails) {
    machine::Pc facts = TwoSystems();
    facts.registry.clear();
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_THAT(translation.records, Each(untouched));
    EXPECT_EQ(translation.pc.journal.Calls("reg").size(), 1U);
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, NoInstalledWindows_FailsAndUnloadsOnce) {
    machine::Pc facts = TwoSystems();
    PartitionOf(facts, 2).volume->files = {};
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_THAT(translation.records, Each(untouched));
    EXPECT_EQ(translation.pc.journal.Calls("ShellExecuteExW").size(), 1U);
    EXPECT_EQ(translation.pc.clockMilliseconds, 50U);
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, FailingRegCommand_FailsAtTheMissingKey) {
    machine::Pc facts = TwoSystems();
    facts.shell.regFails = true;
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_EQ(translation.pc.clockMilliseconds, 2U * 50U);
    EXPECT_THAT(translation.pc.ledger.Outstanding(), IsEmpty());
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, NoDriveX_FailsAfterThreeAttemptsEach) {
    machine::Pc facts = TwoSystems();
    facts.volumes.clear();
    facts.host.path = "E:\\Recovery.exe";
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_EQ(translation.pc.journal.Calls("CreateFileW").size(), 6U);
    EXPECT_EQ(translation.pc.clockMilliseconds, 6U * 300U);
    ExpectTranscript(translation.pc.journal);
}

TEST(GetWinDriveLetters, SlowShell_FailsAfterAMinute) {
    machine::Pc facts = TwoSystems();
    facts.shell.milliseconds = 60'000;
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_EQ(translation.pc.clockMilliseconds, 6U * 10'300U);
    EXPECT_THAT(translation.pc.ledger.Outstanding(), ElementsAre(Pair("mounted hive", 1)));
    ExpectTranscript(translation.pc.journal);
}

// The first batch mounts the hive in the middle of the second attempt, the others find it mounted.
TEST(GetWinDriveLetters, HiveMountedTooLate_IsOverlooked) {
    machine::Pc facts = TwoSystems();
    facts.shell.milliseconds = 15'000;
    Translation translation(facts);
    EXPECT_EQ(translation.GetLetters(), FALSE);
    std::vector<std::string> exitCodes;
    for (const machine::CallRecord& call : translation.pc.journal.Calls("reg"))
        exitCodes.push_back(call.result);
    EXPECT_THAT(exitCodes, ElementsAre("0", "1", "1", "0", "1"));
    EXPECT_FALSE(IsHiveMounted(translation.pc));
    EXPECT_THAT(translation.pc.ledger.Outstanding(), IsEmpty());
}

TEST(GetWinDriveLetters, HiveThatStaysMounted_Fails) {
    Translation translation;
    // The second and every later batch.
    translation.pc.faults.Arm(
        {.call = "ShellExecuteExW", .nth = 2, .onwards = true, .code = ERROR_ACCESS_DENIED});
    EXPECT_EQ(translation.GetLetters(), FALSE);
    EXPECT_EQ(translation.records[1], (tagDriveInfo_t{0, 3, TEXT('D')}));
    EXPECT_TRUE(IsHiveMounted(translation.pc));
    EXPECT_THAT(translation.pc.ledger.Outstanding(), ElementsAre(Pair("mounted hive", 1)));
    EXPECT_EQ(translation.pc.clockMilliseconds, 50U + 3U * 300U);
    ExpectTranscript(translation.pc.journal);
}

}  // namespace
