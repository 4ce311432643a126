// `kestova undo`: what a command changed on an image is taken back by its backup.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class Undo : public ProgramTest {
  protected:
    Undo() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }

    std::string Backup(int number) const {
        return (Folder() / ("disk.img.kestova-backup-" + std::to_string(number))).string();
    }
    bool Exists(const std::string& name) const { return std::filesystem::exists(Folder() / name); }
    bool IsAsMade() { return AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"); }
    // Tries to undo the first change, which must leave the image alone.
    void ExpectRefused(const std::string& message) {
        ASSERT_EQ(Shell("cp --sparse=always disk.img before.img").status, 0);
        const Outcome outcome = Kestova("undo disk.img.kestova-backup-1");
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "kestova: " + message + "\n");
        EXPECT_TRUE(AreSame(Folder() / "before.img", Folder() / "disk.img"));
    }
};

TEST_F(Undo, SwitchedToRecovery_Undo_MakesTheImageAsItWas) {
    const Outcome boot = Kestova("--image disk.img boot recovery");
    EXPECT_THAT(boot.output, EndsWith("Backup, for kestova undo: " + Backup(1) + "\n"));
    EXPECT_FALSE(IsAsMade());

    const Outcome outcome = Kestova("undo disk.img.kestova-backup-1");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.output,
        "disk.img: disk.img.kestova-backup-1 was taken back\nBackup, for kestova undo: " + Backup(2) + "\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(IsAsMade());
    EXPECT_FALSE(Exists("disk.img.kestova-journal"));
}

TEST_F(Undo, UndoneSwitch_UndoOfTheUndo_SwitchesAgain) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Shell("cp --sparse=always disk.img switched.img").status, 0);
    ASSERT_EQ(Kestova("undo disk.img.kestova-backup-1").status, 0);

    EXPECT_EQ(Kestova("undo disk.img.kestova-backup-2").status, 0);

    EXPECT_TRUE(AreSame(Folder() / "switched.img", Folder() / "disk.img"));
}

TEST_F(Undo, SwitchAndUndoAsJson_NameTheirBackups) {
    EXPECT_THAT(Kestova("--image disk.img --json boot recovery").output,
                HasSubstr(",\"backups\":[\"" + Backup(1) + "\"],\"outcome\":\"done\",\"changes\":["));
    EXPECT_EQ(Kestova("--json --dry-run undo disk.img.kestova-backup-1").output,
              R"({"image":"disk.img","file":"disk.img.kestova-backup-1","undone":false})"
              "\n");
    EXPECT_EQ(Kestova("--json undo disk.img.kestova-backup-1").output,
              R"({"image":"disk.img","file":"disk.img.kestova-backup-1","undone":true,"backups":[")" +
                  Backup(2) + "\"]}\n");
}

TEST_F(Undo, DryRun_Undo_SaysSoAndWritesNothing) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Shell("cp --sparse=always disk.img switched.img").status, 0);

    EXPECT_EQ(Kestova("--dry-run undo disk.img.kestova-backup-1").output,
              "disk.img: disk.img.kestova-backup-1 would be taken back\n");

    EXPECT_TRUE(AreSame(Folder() / "switched.img", Folder() / "disk.img"));
    EXPECT_FALSE(Exists("disk.img.kestova-backup-2"));
}

TEST_F(Undo, UndoneAlready_Undo_HasNothingToDo) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Kestova("undo disk.img.kestova-backup-1").status, 0);

    const Outcome again = Kestova("undo disk.img.kestova-backup-1");

    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.output, "disk.img: disk.img.kestova-backup-1 was taken back already\n");
    EXPECT_TRUE(IsAsMade());
}

TEST_F(Undo, ScriptOfSwitches_Undo_TakesBackAllOfThem) {
    WriteFile("script", "SetRcvprtActive\nSetSystemActive\nClearActive\nSetActive 3\n");
    const Outcome run = Kestova("--image disk.img run script");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, EndsWith("Backup, for kestova undo: " + Backup(1) + "\n"));
    EXPECT_FALSE(Exists("disk.img.kestova-backup-2"));

    EXPECT_EQ(Kestova("undo disk.img.kestova-backup-1").status, 0);

    EXPECT_TRUE(IsAsMade());
}

TEST_F(Undo, TableChangedSince_Undo_IsRefused) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Shell("sfdisk --quiet --activate disk.img 3").status, 0);

    ExpectRefused(
        "disk.img: does not fit the backup: something else has changed it since; nothing was changed");
}

TEST_F(Undo, RecoveryVolumeDirtySince_Undo_IsRefusedUnlessForced) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    // Bit 0 of the volume's flags, in its fourth record: what the switch wrote is elsewhere.
    ChangeRecoveryVolume("ntfsfix part");

    ExpectRefused(
        "disk.img: partition 1 \"Recovery\" is marked dirty: start Windows, let chkdsk check it, shut down, and try "
        "again");

    EXPECT_EQ(Kestova("undo --force-dirty disk.img.kestova-backup-1").status, 0);
    EXPECT_THAT(Shell("sfdisk --dump disk.img").output, HasSubstr("type=7, bootable"));
}

TEST_F(Undo, BackupOfAnotherImage_Undo_IsRefused) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Shell("truncate -s +1M disk.img").status, 0);

    ExpectRefused("disk.img.kestova-backup-1: the backup of an image of another size");
}

TEST_F(Undo, DamagedOrMissingBackup_Undo_IsRefused) {
    WriteFile("disk.img.kestova-backup-1", "a shopping list");
    ExpectRefused("disk.img.kestova-backup-1: no backup of a change, or a damaged one");

    const Outcome missing = Kestova("undo disk.img.kestova-backup-7");
    EXPECT_EQ(missing.status, 3);
    EXPECT_EQ(missing.errors, "kestova: disk.img.kestova-backup-7: cannot be read: there is no such file\n");
}

TEST_F(Undo, BackupWithANameOfItsOwn_Undo_WantsTheImage) {
    ASSERT_EQ(Kestova("--image disk.img --backup before boot recovery").status, 0);
    EXPECT_FALSE(Exists("disk.img.kestova-backup-1"));

    const Outcome unnamed = Kestova("undo before");
    EXPECT_EQ(unnamed.status, 2);
    EXPECT_THAT(unnamed.errors,
                StartsWith("kestova: undo: before is not named after an image; name that with --image\n"));
    EXPECT_EQ(Kestova("--image disk.img --no-backup undo before").status, 0);
    EXPECT_TRUE(IsAsMade());
}

TEST_F(Undo, NoBackupWanted_BootRecovery_LeavesNone) {
    EXPECT_EQ(Kestova("--image disk.img --no-backup boot recovery").status, 0);
    EXPECT_FALSE(Exists("disk.img.kestova-backup-1"));
}

TEST_F(Undo, BackupThatExistsOrHasNoFolder_BootRecovery_IsRefused) {
    WriteFile("before", "something of value");
    const Outcome existing = Kestova("--image disk.img --backup before boot recovery");
    EXPECT_EQ(existing.status, 3);
    EXPECT_THAT(existing.errors,
                StartsWith("kestova: before: exists already; name another file with --backup"));
    EXPECT_EQ(ReadFile("before"), "something of value");

    const Outcome nowhere = Kestova("--image disk.img --backup nowhere/before boot recovery");
    EXPECT_EQ(nowhere.status, 3);
    EXPECT_THAT(nowhere.errors,
                HasSubstr("disk.img: a backup of what changes cannot be written: No such file or directory"));
    EXPECT_TRUE(IsAsMade());
}

TEST_F(Undo, PlaceOfTheJournal_BootRecovery_IsNoPlaceForTheBackup) {
    const Outcome same = Kestova("--image disk.img --journal kept --backup kept boot recovery");
    EXPECT_EQ(same.status, 2);
    EXPECT_THAT(same.errors, StartsWith("kestova: --backup: kept is the journal of the image\n"));
    const Outcome usual =
        Kestova("--image disk.img --journal kept --backup disk.img.kestova-journal boot recovery");
    EXPECT_EQ(usual.status, 3);
    EXPECT_THAT(usual.errors, StartsWith("kestova: disk.img.kestova-journal: is the place of the journal; "));
    EXPECT_TRUE(IsAsMade());
}

TEST_F(Undo, BackupInPlaceOfTheJournal_Recover_RefusesIt) {
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    ASSERT_EQ(Shell("mv disk.img.kestova-backup-1 disk.img.kestova-journal").status, 0);

    const Outcome outcome = Kestova("--image disk.img recover");

    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, HasSubstr("disk.img.kestova-journal is no journal, or a damaged one"));
    EXPECT_TRUE(Exists("disk.img.kestova-journal"));
}

TEST_F(Undo, NoJournalWanted_BootRecovery_LeavesNoBackupEither) {
    EXPECT_EQ(Kestova("--image disk.img --no-journal boot recovery").status, 0);
    EXPECT_FALSE(Exists("disk.img.kestova-backup-1"));
}

TEST_F(Undo, DirtyRecoveryVolume_ScriptThatSwitches_KeepsWhatWasDoneBeforeAndItsBackup) {
    ChangeRecoveryVolume("ntfsfix part");
    WriteFile("script", "SetActive 3\nSetRcvprtActive\nClearActive\n");

    const Outcome run = Kestova("--image disk.img run script");

    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("partition 1 \"Recovery\" is marked dirty: start Windows"));
    EXPECT_THAT(run.output, EndsWith("Backup, for kestova undo: " + Backup(1) + "\n"));
    EXPECT_THAT(Shell("sfdisk --dump disk.img | grep bootable").output, HasSubstr("disk.img3 "));
}

TEST_F(Undo, NothingToChange_BootSystem_LeavesNoBackup) {
    EXPECT_EQ(Kestova("--image disk.img boot system").status, 0);
    EXPECT_FALSE(Exists("disk.img.kestova-backup-1"));
}

}  // namespace
