// Changes of a disk image that a failing medium or a power cut interrupts, as a user meets them.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class Interrupted : public ProgramTest {
  protected:
    Interrupted() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }

    // On a medium of which only the beginning can be written: the journal, not the volume. The journal stays.
    Outcome OnFailingMedium(const std::string& words) {
        return Shell("ulimit -f 200; " KESTOVA_PROGRAM " --image disk.img " + words);
    }
    Outcome Interrupt() { return OnFailingMedium("boot recovery"); }

    bool IsAsItWas() { return AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"); }
    bool HasJournal() { return std::filesystem::exists(Folder() / "disk.img.kestova-journal"); }
    bool IsConsistent() {
        return Shell(
                   "dd if=disk.img of=recovery.ntfs bs=1M skip=1 count=60 status=none && "
                   "ntfsfix --no-action recovery.ntfs")
                   .status == 0;
    }
};

TEST_F(Interrupted, FailingMedium_BootRecovery_AnswersAndSaysThatNothingIsWritten) {
    const Outcome outcome = Interrupt();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.output,
        "SetRcvprtActive() = 0: done, or it was active already; but it could not be written\nBackup, for kestova undo: " +
            (Folder() / "disk.img.kestova-backup-1\n").string());
    EXPECT_EQ(
        outcome.errors,
        "kestova: disk.img: cannot be written: File too large; what had been written could not be taken back either: run `kestova --image disk.img recover` once the medium can be written\n");
    EXPECT_TRUE(HasJournal());
}

TEST_F(Interrupted, FailingMedium_BootRecoveryAsJson_HasTheKeyWrittenLast) {
    const Outcome outcome = OnFailingMedium("--json boot recovery");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(R"("result":0,)"));
    EXPECT_THAT(outcome.output, EndsWith(R"(,"written":false})"
                                         "\n"));
}

TEST_F(Interrupted, NoRoomForTheJournal_BootRecovery_LeavesTheImageAlone) {
    const Outcome outcome = Shell("ulimit -f 8; " KESTOVA_PROGRAM " --image disk.img boot recovery");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                HasSubstr("disk.img.kestova-journal cannot be written: File too large; nothing was written"));
    EXPECT_FALSE(HasJournal());
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Interrupted, FailingMedium_Run_EndsAtTheOperationThatIsNotWritten) {
    WriteFile("script", "SetActive 2\nSetRcvprtActive\nSetActive 1\n");
    const Outcome outcome = OnFailingMedium("run script");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("SetRcvprtActive() = 0"));
    EXPECT_THAT(outcome.output, Not(HasSubstr("SetActive(1)")));
}

TEST_F(Interrupted, PendingJournal_Status_ReadsThroughItAndSaysSo) {
    Interrupt();
    const Outcome status = Kestova("--image disk.img --json status");
    EXPECT_EQ(status.status, 0);
    EXPECT_THAT(status.output, HasSubstr(R"("activePartition":2)"));
    EXPECT_EQ(
        status.errors,
        "kestova: disk.img: a change was interrupted; the image is shown as it will be once `kestova --image disk.img recover` has taken it back\n");
    EXPECT_TRUE(HasJournal());
}

// The command can be typed as it is shown.
TEST_F(Interrupted, ImageOfAWildNameAndItsOwnJournal_Status_AdvisesThatCommand) {
    Interrupt();
    ASSERT_EQ(Shell("mv disk.img \"it's a disk.img\" && mv disk.img.kestova-journal 'the journal'").status,
              0);
    const Outcome status = Kestova("--image \"it's a disk.img\" --journal 'the journal' status");
    const std::string advice = "kestova --image 'it'\\''s a disk.img' --journal 'the journal' recover";
    EXPECT_THAT(status.errors, HasSubstr("shown as it will be once `" + advice + "` has taken it back"));
    EXPECT_EQ(Shell("ln -s '" KESTOVA_PROGRAM "' kestova && PATH=$PWD:$PATH && " + advice).status, 0);
    EXPECT_FALSE(std::filesystem::exists(Folder() / "the journal"));
}

TEST_F(Interrupted, PendingJournal_Recover_TakesTheChangeBack) {
    Interrupt();
    const Outcome recover = Kestova("--image disk.img recover");
    EXPECT_EQ(recover.status, 0);
    EXPECT_EQ(recover.output, "disk.img: a change that had been interrupted was taken back\n");
    EXPECT_FALSE(HasJournal());
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(Kestova("--image disk.img recover").output, "disk.img: nothing to recover\n");
    EXPECT_EQ(Kestova("--image disk.img --json recover").output,
              "{\"image\":\"disk.img\",\"change\":null}\n");
}

TEST_F(Interrupted, PendingJournal_RecoverAsDryRun_SaysWhatWouldBeDone) {
    Interrupt();
    ASSERT_EQ(Shell("cp --sparse=always disk.img interrupted.img").status, 0);
    EXPECT_EQ(Kestova("--image disk.img --dry-run --json recover").output,
              "{\"image\":\"disk.img\",\"change\":\"takenBack\",\"recovered\":false}\n");
    EXPECT_THAT(Kestova("--image disk.img --dry-run recover").output,
                EndsWith("a change that had been interrupted would be taken back\n"));
    EXPECT_TRUE(HasJournal());
    EXPECT_TRUE(AreSame(Folder() / "interrupted.img", Folder() / "disk.img"));
}

TEST_F(Interrupted, PendingJournal_BootRecoveryAndSystem_TakeItBackFirstAndWork) {
    Interrupt();
    const Outcome recovery = Kestova("--image disk.img boot recovery");
    EXPECT_EQ(recovery.status, 0);
    EXPECT_EQ(recovery.errors, "kestova: disk.img: a change that had been interrupted was taken back\n");
    EXPECT_TRUE(IsConsistent());
    EXPECT_EQ(Kestova("--image disk.img boot system").status, 0);
    EXPECT_TRUE(IsConsistent());
    EXPECT_FALSE(HasJournal());
}

TEST_F(Interrupted, PendingJournal_BootRecoveryWithAnotherPlaceOrNone_TakesItBackFirst) {
    for (const char* const place : {"--no-journal", "--journal kept"}) {
        ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
        Interrupt();
        ASSERT_TRUE(HasJournal());
        const Outcome outcome = Kestova(std::string("--image disk.img ") + place + " boot recovery");
        EXPECT_EQ(outcome.status, 0) << place;
        EXPECT_EQ(outcome.errors, "kestova: disk.img: a change that had been interrupted was taken back\n")
            << place;
        EXPECT_FALSE(HasJournal()) << place;
    }
}

TEST_F(Interrupted, WrongJournal_AnyCommand_NamesItAndChangesNothing) {
    WriteFile("disk.img.kestova-journal", "notes");
    for (const char* const command : {"status", "boot recovery", "recover"}) {
        const Outcome outcome = Kestova(std::string("--image disk.img ") + command);
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, HasSubstr("disk.img.kestova-journal is no journal, or a damaged one"));
    }
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Interrupted, PendingJournalAsLogOrDescription_Status_IsWrongUse) {
    Interrupt();
    const std::string journal = ReadFile("disk.img.kestova-journal");
    for (const char* const option : {"--log disk.img.kestova-journal", "--save disk.img.kestova-journal"}) {
        const Outcome outcome = Kestova(std::string("--image disk.img status ") + option);
        EXPECT_EQ(outcome.status, 2) << option;
        EXPECT_THAT(outcome.errors, HasSubstr(" is the journal of an image\n"));
        EXPECT_EQ(ReadFile("disk.img.kestova-journal"), journal) << option;
    }
}

// What the switch would write there is what takes it back.
TEST_F(Interrupted, JournalOrBackupToBeAsLogOrDescription_BootRecovery_IsWrongUse) {
    for (const char* const file : {"disk.img.kestova-journal", "./disk.img.kestova-backup-1", "jj", "./bk"}) {
        for (const std::string option : {"--log", "--save"}) {
            const Outcome outcome =
                Kestova("--image disk.img --journal jj --backup bk boot recovery " + option + " " + file);
            EXPECT_EQ(outcome.status, 2) << option << " " << file;
        }
    }
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Interrupted, NamedJournal_BootRecovery_KeepsItThereAndRecoverFindsIt) {
    Shell("ulimit -f 200; " KESTOVA_PROGRAM " --image disk.img --journal kept boot recovery");
    EXPECT_FALSE(HasJournal());
    EXPECT_TRUE(std::filesystem::exists(Folder() / "kept"));
    EXPECT_EQ(Kestova("--image disk.img --journal kept recover").output,
              "disk.img: a change that had been interrupted was taken back\n");
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Interrupted, JournalForSeveralImagesOrNone_AnyCommand_IsWrongUse) {
    for (const char* const pc : {"--image disk.img --image other.img", "--pc factory-mbr"}) {
        const Outcome outcome = Kestova(std::string(pc) + " --journal kept boot recovery");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("--journal: it is for one --image"));
    }
    const Outcome recover = Kestova("recover");
    EXPECT_EQ(recover.status, 2);
    EXPECT_THAT(recover.errors, HasSubstr("recover: name the disk image with --image"));
}

TEST_F(Interrupted, FolderThatCannotBeWritten_BootRecovery_IsRefusedUnlessWithoutJournal) {
    const std::string journal = " --journal nope/journal";
    EXPECT_EQ(Kestova("--image disk.img boot recovery" + journal).status, 3);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(Kestova("--image disk.img --no-journal boot recovery").status, 0);
    EXPECT_FALSE(IsAsItWas());
}

// --- volumes that were shut down badly ---

// A disk that was switched to its recovery partition, and of which a volume was then not shut down properly.
class ShutDownBadly : public Interrupted {
  protected:
    // Marks the volume dirty.
    void Mark(int startMiB, int sizeMiB) {
        const std::string place =
            " bs=1M count=" + std::to_string(sizeMiB) + " status=none conv=notrunc,sparse";
        const std::string start = std::to_string(startMiB);
        ASSERT_EQ(Shell("dd if=disk.img of=part skip=" + start + place +
                        " && ntfsfix part && dd if=part of=disk.img seek=" + start + place)
                      .status,
                  0);
        ASSERT_EQ(Shell("cp --sparse=always disk.img marked.img").status, 0);
    }
    void MarkRecovery() { Mark(1, 60); }
    void MarkData() { Mark(181, 90); }
    bool IsAsMarked() { return AreSame(Folder() / "marked.img", Folder() / "disk.img"); }
    std::string ActiveLine() { return Shell("sfdisk --dump disk.img | grep bootable").output; }
};

TEST_F(ShutDownBadly, NoRecord_BootSystem_MovesTheFlagAndLeavesTheVolumeAlone) {
    ASSERT_EQ(Kestova("--image disk.img call SetActive 1").status, 0);
    MarkRecovery();

    const Outcome outcome = Kestova("--image disk.img boot system");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(ActiveLine(), HasSubstr("type=7, bootable"));
    EXPECT_EQ(Differences(Folder() / "marked.img", Folder() / "disk.img"), 2u);
}

TEST_F(ShutDownBadly, RecordOnTheVolume_BootSystem_IsRefused) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    MarkRecovery();

    const Outcome outcome = Kestova("--image disk.img boot system");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, HasSubstr("partition 1 \"Recovery\" is marked dirty: start Windows"));
    EXPECT_TRUE(IsAsMarked());
}

TEST_F(ShutDownBadly, RecordOnAnotherVolume_BootSystem_IsDoneWithoutIt) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    MarkData();

    EXPECT_EQ(Kestova("--image disk.img boot system").status, 0);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=7, bootable"));
    EXPECT_TRUE(IsConsistent());
}

TEST_F(ShutDownBadly, DataVolume_BootRecovery_IsDone) {
    MarkData();

    EXPECT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
    EXPECT_TRUE(IsConsistent());
}

TEST_F(ShutDownBadly, RecoveryVolume_BootRecovery_IsRefusedUnlessForced) {
    MarkRecovery();

    const Outcome outcome = Kestova("--image disk.img boot recovery");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr("partition 1 \"Recovery\" is marked dirty: start Windows"));
    EXPECT_TRUE(IsAsMarked());

    EXPECT_EQ(Kestova("--image disk.img boot recovery --force-dirty").status, 0);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
    EXPECT_TRUE(Kestova("--image disk.img boot system --force-dirty").status == 0);
}

TEST_F(ShutDownBadly, DamagedRecoveryVolume_Status_SaysThatItCannotBeRead) {
    // The root folder is the sixth of the 1-KiB records that begin 16 KiB into the volume.
    Shell("dd if=/dev/zero of=disk.img bs=1024 seek=1045 count=1 conv=notrunc status=none");

    const Outcome status = Kestova("--image disk.img status");
    EXPECT_EQ(status.status, 1);
    EXPECT_EQ(status.errors, "kestova: the volume C: cannot be read (error 1392)\n");
    EXPECT_THAT(status.output, HasSubstr("hidden recovery (0x27)"));
}

TEST_F(ShutDownBadly, AnyVolume_SetActiveAndClearActive_AreDone) {
    MarkRecovery();

    EXPECT_EQ(Kestova("--image disk.img call ClearActive").status, 0);
    EXPECT_EQ(ActiveLine(), "");
    EXPECT_EQ(Kestova("--image disk.img call SetActive 1").status, 0);
    EXPECT_THAT(ActiveLine(), HasSubstr("type=27, bootable"));
}

}  // namespace
