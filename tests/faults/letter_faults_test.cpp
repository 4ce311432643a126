// Every platform call about a partition or its letter fails in every way while an operation gives or takes a
// letter on demand: the letter returned is that of the partition, no other letter and no partition changes,
// and only the kept leftovers stay on loan.

#include <gtest/gtest.h>

#include <set>

#include "machine/facts/machines.h"
#include "manager/result_codes.h"
#include "tests/support/application/application.h"
#include "tests/support/fault_walk.h"

namespace {

using machine::FactoryGpt;
using machine::FaultRule;

constexpr int noLetter = '0';
constexpr int secondLetter = 'E';  // beside one that could not be read

// The result of an operation: its code, or the letter for those that always return 1.
struct Change {
    const char* name;
    uint32_t partition;  // that gets or loses its letter
    bool gives;
    int (*make)(Kestova&);
    int done;
    std::set<int> failures;
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.name;
}

int ActiveCode(Kestova& kestova, int (Kestova::*active)(WCHAR&)) {
    WCHAR letter = TEXT('q');
    const int code = (kestova.*active)(letter);
    EXPECT_EQ(letter, code == 0 ? TEXT('D') : TEXT('q'));
    return code;
}

int AssignedLetter(Kestova& kestova, int (Kestova::*assign)(WCHAR&)) {
    WCHAR letter = TEXT('q');
    EXPECT_EQ((kestova.*assign)(letter), 1);
    return letter;
}

const Change changes[] = {
    {"ActiveOrvoBootPartition",
     1,
     true,
     [](Kestova& kestova) { return ActiveCode(kestova, &Kestova::ActiveOrvoBootPartition); },
     0,
     {ERROR_GET_PARTITION_TYPE, ERROR_SET_DRIVE_LETTER}},
    {"ActiveGPTSystemPartition",
     3,
     true,
     [](Kestova& kestova) { return ActiveCode(kestova, &Kestova::ActiveGPTSystemPartition); },
     0,
     {ERROR_GET_PARTITION_TYPE, ERROR_SET_DRIVE_LETTER}},
    {"DisableOrvoBootPartition",
     1,
     false,
     [](Kestova& kestova) { return kestova.DisableOrvoBootPartition(); },
     0,
     {ERROR_SET_DRIVE_LETTER}},
    {"DisableGPTSystemPartition",
     3,
     false,
     [](Kestova& kestova) { return kestova.DisableGPTSystemPartition(); },
     0,
     {ERROR_SET_DRIVE_LETTER}},
    {"AssignRecoveryPartition",
     6,
     true,
     [](Kestova& kestova) { return AssignedLetter(kestova, &Kestova::AssignRecoveryPartition); },
     'D',
     {noLetter, secondLetter}},
    {"AssignWinREPartition",
     2,
     true,
     [](Kestova& kestova) { return AssignedLetter(kestova, &Kestova::AssignWinREPartition); },
     'D',
     {noLetter, secondLetter}},
    {"IsExistRcvprt", 6, true, [](Kestova& kestova) { return kestova.IsExistRcvprt(); }, 1, {0}},
};

machine::Pc Before(const Change& change) {
    machine::Pc facts = FactoryGpt();
    if (!change.gives) PartitionOf(facts, change.partition).volume->letters = "D";
    return facts;
}

// A PC but for the letters of that partition.
machine::Pc WithoutItsLetters(machine::Pc facts, uint32_t partition) {
    PartitionOf(facts, partition).volume->letters = "";
    return facts;
}

machine::Journal UndisturbedRun(const Change& change) {
    Application application(Before(change));
    EXPECT_EQ(change.make(application.kestova), change.done);
    EXPECT_EQ(PartitionOf(application.pc.facts, change.partition).volume->letters, change.gives ? "D" : "");
    return application.pc.journal;
}

class LetterFaults : public testing::TestWithParam<Change> {};

TEST_P(LetterFaults, EveryCallFails_ReturnsTheLetterThatIsThereAndChangesNothingElse) {
    const Change& change = GetParam();
    const machine::Pc before = Before(change);
    std::set<int> answers;
    WalkFaults(UndisturbedRun(change), [&](const FaultRule& rule) {
        if (!rule.call.starts_with("IVdsAdvancedDisk::")) return;  // the sweep fails the others as well
        Application application(before);
        application.pc.faults.Arm(rule);
        const int answer = change.make(application.kestova);
        EXPECT_GT(application.pc.faults.Fired(), 0);
        answers.insert(answer);
        EXPECT_TRUE(answer == change.done || change.failures.contains(answer)) << answer;
        ExpectOnlyKeptLeftovers(application.pc.ledger, rule.call);
        EXPECT_EQ(WithoutItsLetters(application.pc.facts, change.partition),
                  WithoutItsLetters(before, change.partition));
        // A letter that cannot be read counts as none.
        if (answer == change.done && IsHonest(rule) && rule.call != "IVdsAdvancedDisk::GetDriveLetter") {
            EXPECT_EQ(PartitionOf(application.pc.facts, change.partition).volume->letters,
                      change.gives ? "D" : "");
        }
    });
    for (const int failure : change.failures)
        EXPECT_TRUE(answers.contains(failure)) << failure;
}

INSTANTIATE_TEST_SUITE_P(Every, LetterFaults, testing::ValuesIn(changes),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
