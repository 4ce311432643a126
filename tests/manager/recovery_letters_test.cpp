// Giving the recovery partition and the Windows RE partition a letter, and taking it again.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

// One of the two, as FactoryGpt has it.
struct Lettered {
    const char* name;
    uint32_t number;
    int (Kestova::*assign)(WCHAR&);
    void (Kestova::*remove)();
};

void PrintTo(const Lettered& lettered, std::ostream* out) {
    *out << lettered.name;
}

const Lettered bothLettered[] = {
    {"recovery", 6, &Kestova::AssignRecoveryPartition, &Kestova::RemoveRecoveryPartition},
    {"winre", 2, &Kestova::AssignWinREPartition, &Kestova::RemoveWinREPartition},
};

class RecoveryLetter : public testing::TestWithParam<Lettered> {
  protected:
    static machine::Pc WithLetters(const std::string& letters) {
        machine::Pc facts = FactoryGpt();
        PartitionOf(facts, GetParam().number).volume->letters = letters;
        return facts;
    }

    // Assigns, which always answers 1, and answers the letter.
    static char Assign(Application& application) {
        WCHAR letter = TEXT('q');
        EXPECT_EQ((application.kestova.*GetParam().assign)(letter), 1);
        ExpectOnlyKeptLeftovers(application.pc.ledger);
        return static_cast<char>(letter);
    }
    static void Remove(Application& application) {
        (application.kestova.*GetParam().remove)();
        ExpectOnlyKeptLeftovers(application.pc.ledger);
    }
    static std::string Letters(Application& application) {
        return PartitionOf(application.pc.facts, GetParam().number).volume->letters;
    }
};

INSTANTIATE_TEST_SUITE_P(Both, RecoveryLetter, testing::ValuesIn(bothLettered),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(RecoveryLetter, FactoryGpt_AssignAndRemove_GiveItAndTakeIt) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    EXPECT_EQ(Letters(application), "D");
    ExpectTranscript(application.pc.journal, "assign");
    application.pc.journal.Clear();
    Remove(application);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
    ExpectTranscript(application.pc.journal, "remove");
}

// The one that was there before is taken as well.
TEST_P(RecoveryLetter, LetteredPartition_AssignAndRemove_ReturnItAndTakeIt) {
    Application application(WithLetters("R"));
    EXPECT_EQ(Assign(application), 'R');
    EXPECT_EQ(Letters(application), "R");
    ExpectTranscript(application.pc.journal);
    Remove(application);
    EXPECT_EQ(Letters(application), "");
}

TEST_P(RecoveryLetter, LetteredAgain_SecondRemove_TakesIt) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    Remove(application);
    PartitionOf(application.pc.facts, GetParam().number).volume->letters = "S";
    Remove(application);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
}

TEST_P(RecoveryLetter, NothingAssigned_Remove_LeavesIt) {
    Application application(WithLetters("R"));
    Remove(application);
    EXPECT_EQ(application.pc.facts, WithLetters("R"));
    ExpectTranscript(application.pc.journal);
}

TEST_P(RecoveryLetter, FactoryMbr_AssignAndRemove_ReturnNone) {
    Application application(FactoryMbr());
    EXPECT_EQ(Assign(application), '0');
    EXPECT_EQ(application.pc.facts, FactoryMbr());
    ExpectTranscript(application.pc.journal, "assign");
    application.pc.journal.Clear();
    Remove(application);
    ExpectTranscript(application.pc.journal, "remove");
}

TEST_P(RecoveryLetter, RefusedLetter_Assign_ReturnsNone) {
    for (const bool afterEffect : {false, true}) {
        Application application(FactoryGpt());
        // The first assignment is that of the search.
        application.pc.faults.Arm({.call = "IVdsAdvancedDisk::AssignDriveLetter",
                                   .nth = 2,
                                   .afterEffect = afterEffect,
                                   .code = 0x80004005});
        EXPECT_EQ(Assign(application), '0');
        EXPECT_EQ(application.pc.faults.Fired(), 1);
        EXPECT_EQ(Letters(application), afterEffect ? "D" : "");
        ExpectTranscript(application.pc.journal);
        // The letter was never remembered.
        Remove(application);
        EXPECT_EQ(Letters(application), afterEffect ? "D" : "");
    }
}

// The letter remembered before stays: the removal acts on the partition all the same.
TEST_P(RecoveryLetter, LaterAssignFindsNone_Remove_TakesIt) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    application.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .code = 0x80004005});
    EXPECT_EQ(Assign(application), '0');
    application.pc.faults.Disarm();
    Remove(application);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
}

// So it does after one that found the partition and could not letter it.
TEST_P(RecoveryLetter, LaterLetterRefused_Remove_TakesIt) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    PartitionOf(application.pc.facts, GetParam().number).volume->letters = "";
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::AssignDriveLetter", .nth = 2, .code = 0x80004005});
    EXPECT_EQ(Assign(application), '0');
    EXPECT_EQ(application.pc.faults.Fired(), 1);
    PartitionOf(application.pc.facts, GetParam().number).volume->letters = "S";
    Remove(application);
    EXPECT_EQ(application.pc.facts, FactoryGpt());
}

TEST_P(RecoveryLetter, RefusedDeletion_Remove_LeavesItInSilence) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::DeleteDriveLetter", .code = 0x80004005});
    application.pc.journal.Clear();
    Remove(application);
    EXPECT_EQ(Letters(application), "D");
    ExpectTranscript(application.pc.journal);
}

// No assignment leaves an object like that; a removal does not guess.
TEST(RecoveryLetters, LetterWithoutAPartition_Remove_DeletesNothing) {
    Application application(FactoryGpt());
    application.kestova.*Open(internals::RecoveryLetterTag()) = TEXT('D');
    application.kestova.*Open(internals::WinRELetterTag()) = TEXT('D');
    application.pc.journal.Clear();
    application.kestova.RemoveRecoveryPartition();
    application.kestova.RemoveWinREPartition();
    EXPECT_TRUE(application.pc.journal.Calls().empty());
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::RemoveRecoveryPartition\\tEnter.  \n"
              "4 Kestova::RemoveWinREPartition\\tEnter.  \n");
}

TEST_P(RecoveryLetter, NoVolumeLayer_AssignAndRemove_DoNothing) {
    Application application(FactoryGpt());
    EXPECT_EQ(Assign(application), 'D');
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Assign(application), '0');
    Remove(application);
    EXPECT_EQ(Letters(application), "D");
    ExpectTranscript(application.pc.journal);
}

// Each of the two remembers its own.
TEST(RemoveRecoveryPartition, WindowsReLettered_LeavesItsLetter) {
    Application application(FactoryGpt());
    WCHAR recovery = 0;
    WCHAR winRe = 0;
    application.kestova.AssignRecoveryPartition(recovery);
    application.kestova.AssignWinREPartition(winRe);
    EXPECT_EQ(recovery, TEXT('D'));
    EXPECT_EQ(winRe, TEXT('E'));
    application.kestova.RemoveRecoveryPartition();
    EXPECT_EQ(PartitionOf(application.pc.facts, 2).volume->letters, "E");
    EXPECT_EQ(PartitionOf(application.pc.facts, 6).volume->letters, "");
}

// The recovery files move from partition 6 to 2, which cannot be lettered: the removal acts on 2.
TEST(RemoveRecoveryPartition, TwoPartitionsFound_ActsOnTheLastLetteredOrNot) {
    Application application(FactoryGpt());
    machine::Volume& before = *PartitionOf(application.pc.facts, 6).volume;
    machine::Volume& after = *PartitionOf(application.pc.facts, 2).volume;
    WCHAR letter = 0;
    application.kestova.AssignRecoveryPartition(letter);
    EXPECT_EQ(before.letters, "D");
    std::swap(before.files, after.files);
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::AssignDriveLetter", .nth = 2, .code = 0x80004005});
    application.kestova.AssignRecoveryPartition(letter);
    EXPECT_EQ(letter, TEXT('0'));
    after.letters = "S";
    application.kestova.RemoveRecoveryPartition();
    EXPECT_EQ(before.letters, "D");
    EXPECT_EQ(after.letters, "");
}

TEST(IsExistRcvprt, FactoryGpt_AssignsALetterThatStays) {
    Application application(FactoryGpt());
    EXPECT_EQ(application.kestova.IsExistRcvprt(), 1);
    EXPECT_EQ(PartitionOf(application.pc.facts, 6).volume->letters, "D");
    ExpectTranscript(application.pc.journal);
    application.kestova.RemoveRecoveryPartition();
    EXPECT_EQ(application.pc.facts, FactoryGpt());
}

TEST(IsExistRcvprt, FactoryMbr_Returns0) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.IsExistRcvprt(), 0);
    EXPECT_EQ(application.pc.facts, FactoryMbr());
    ExpectTranscript(application.pc.journal);
}

}  // namespace
