// Every platform call of the translation of letters fails: each place once, from there on for good, and after
// its effect. Whatever fails, the letters returned are right, a failure is returned and logged, the batch
// file and the hive are gone when they can be, and nothing stays on loan but what a failing close keeps.

#include <gtest/gtest.h>

#include <set>

#include "base/utf.h"
#include "tests/support/application/two_systems.h"
#include "tests/support/fault_walk.h"

namespace {

using machine::EmulatedPc;
using machine::FaultRule;

constexpr int capacity = 4;

struct Translation {
    EmulatedPc pc{TwoSystems()};
    Kestova kestova;
    tagDriveInfo_t records[capacity] = {};

    Translation() { pc.journal.Clear(); }
    int Translate() { return kestova.GetWinDriveLetters(records, capacity); }
    std::set<std::string> LogTexts() const {
        std::set<std::string> texts;
        for (const LogEntry& entry : pc.journal.Records())
            texts.insert(ToUtf8(entry.Text()));
        return texts;
    }
};

machine::Journal UndisturbedRun() {
    Translation run;
    EXPECT_EQ(run.Translate(), 1);
    return run.pc.journal;
}

// Every translation that failed writes one of these.
bool HasFailureRecord(const std::set<std::string>& records) {
    for (const char* const text : {"Kestova::GetWinDriveLetters\t\tRead WINPE Registry fail.",
                                   "Kestova::GetWinDriveLetters\t\tLoad Windows Registry failed.",
                                   "Kestova::GetWinDriveLetters Read WINDOWS Registry fail.",
                                   "Kestova::GetWinDriveLetters\t\tUnload Windows Registry failed."}) {
        if (records.contains(text)) return true;
    }
    return false;
}

// Each letter returned belongs to its partition, or to a volume that could not be queried.
void ExpectTrueRecords(const Translation& run) {
    for (const tagDriveInfo_t& record : run.records) {
        if (record.cDriveLetter == 0) continue;
        const int partition = record.cDriveLetter == TEXT('C') ? 2 : 3;
        EXPECT_TRUE(record.iDiskNum == 0 || record.iDiskNum == 255) << record.iDiskNum;
        EXPECT_TRUE(record.iPartNum == partition || record.iPartNum == 0) << record.iPartNum;
    }
}

void ExpectCleanPc(const Translation& run, const FaultRule& rule) {
    EXPECT_TRUE(run.pc.ledger.Violations().empty());
    // `reg` cannot unload below a key that did not close, and does so unnoticed.
    const bool hiveMayStay = rule.onwards || rule.call == "RegCloseKey";
    EXPECT_TRUE(hiveMayStay || !IsHiveMounted(run.pc));
    const bool fileMayStay = rule.call == "DeleteFileW" || rule.call == "PathFileExistsW";
    EXPECT_TRUE(fileMayStay || BatchFile(run.pc) == nullptr);
    std::set<std::string> kept;
    if (IsHiveMounted(run.pc)) kept.insert("mounted hive");
    if (rule.call == "CloseHandle") kept.insert({"file handle", "process handle"});
    if (rule.call == "RegCloseKey") kept.insert("registry key");
    for (const auto& [kind, count] : run.pc.ledger.Outstanding())
        EXPECT_TRUE(kept.contains(kind)) << count << " " << kind;
}

TEST(DriveLetterFaults, EveryCallFails_RecordsAreTrueAndNothingIsLeft) {
    const int visited = WalkFaults(UndisturbedRun(), [](const FaultRule& rule) {
        Translation run;
        run.pc.faults.Arm(rule);
        const int result = run.Translate();
        EXPECT_GT(run.pc.faults.Fired(), 0);
        EXPECT_EQ(result, HasFailureRecord(run.LogTexts()) ? 0 : 1);
        EXPECT_EQ(ToUtf8(run.pc.journal.Records().back().Text()), "Kestova::GetWinDriveLetters\t\tEnd");
        EXPECT_LE(run.pc.clockMilliseconds, 61'800U);
        ExpectTrueRecords(run);
        ExpectCleanPc(run, rule);
    });
    EXPECT_GT(visited, 160);
}

// A failure that the next attempt mends does not show.
TEST(DriveLetterFaults, CallOfABatchFailsOnce_IsTriedAgain) {
    const std::set<std::string> batchCalls = {"WriteFile", "ShellExecuteExW", "WaitForSingleObject",
                                              "WideCharToMultiByte"};
    WalkFaults(UndisturbedRun(), [&](const FaultRule& rule) {
        if (!FailsOnce(rule) || !batchCalls.contains(rule.call)) return;
        Translation run;
        run.pc.faults.Arm(rule);
        EXPECT_EQ(run.Translate(), 1);
        EXPECT_EQ(run.records[0].cDriveLetter, TEXT('C'));
        EXPECT_EQ(run.records[1].cDriveLetter, TEXT('D'));
        EXPECT_EQ(run.pc.clockMilliseconds, 2U * 50U + 300U);
    });
}

}  // namespace
