// `kestova check` on images: the condition of the recovery volume, and that nothing is written.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

class CheckOfImages : public ProgramTest {
  protected:
    CheckOfImages() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }
    void MakeDirty() { ChangeRecoveryVolume("ntfsfix part"); }
};

TEST_F(CheckOfImages, FactoryMbr_Check_IsYesAndWritesNothing) {
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, EndsWith("boot system (tried)    yes  makes partition 2 active\n"));
    EXPECT_TRUE(AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"));
    EXPECT_EQ(Shell("ls disk.img*").output, "disk.img\n");
}

TEST_F(CheckOfImages, SwitchedImage_Check_FindsTheRecord) {
    ASSERT_EQ(Kestova("--image disk.img call SetActive 3").status, 0);
    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                HasSubstr("Record                 yes  SystemVolume.ini is on partition 1\n"));
    EXPECT_THAT(outcome.output, EndsWith("boot system (tried)    yes  makes partition 3 active\n"));
}

TEST_F(CheckOfImages, DirtyRecoveryVolume_Check_SaysWhatHelps) {
    MakeDirty();
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        HasSubstr("Record                 no   partition 1 is marked dirty: start Windows, let chkdsk check "
                  "it, shut down, and try again\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("boot recovery (tried)  no   disk.img: partition 1 \"Recovery\" is marked "));
    EXPECT_EQ(Kestova("--image disk.img --force-dirty check").status, 0);
    // The way back of a PC that boots its recovery partition writes no file.
    ASSERT_EQ(Kestova("--image disk.img call SetActive 1").status, 0);
    EXPECT_EQ(Kestova("--image disk.img check").status, 0);
}

TEST_F(CheckOfImages, HibernatedRecoveryVolume_Check_SaysSo) {
    ChangeRecoveryVolume(
        "{ printf hibr; head -c 4092 /dev/zero; } >hiberfil.sys && ntfscp --force part hiberfil.sys hiberfil.sys");
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output,
                HasSubstr("Record                 no   partition 1 is hibernated: start Windows, "));
}

TEST_F(CheckOfImages, MissingFolder_CheckAndBoot_NameIt) {
    // Both the folder's own name and the one in the folder above, as UTF-16.
    ChangeRecoveryVolume(
        "LC_ALL=C sed -i 's/\\x03\\x00i\\x00d\\x00f\\x00/\\x03\\x00i\\x00d\\x00g\\x00/g;"
        "s/\\x03\\x01i\\x00d\\x00f\\x00/\\x03\\x01i\\x00d\\x00g\\x00/g;"
        "s/\\x03\\x03i\\x00d\\x00f\\x00/\\x03\\x03i\\x00d\\x00g\\x00/g' part");
    const std::string missing = "sources\\idf is missing on partition 1: ";
    EXPECT_THAT(Kestova("--image disk.img check").output,
                HasSubstr("Recovery files         no   " + missing));
    const Outcome boot = Kestova("--image disk.img --json boot recovery");
    EXPECT_EQ(boot.status, 3);
    EXPECT_THAT(boot.output,
                HasSubstr(R"("reasons":[{"code":"recoveryFiles","text":"sources\\idf is missing )"));
    EXPECT_THAT(boot.errors, HasSubstr("kestova: SetRcvprtActive: " + missing));
    EXPECT_THAT(Kestova("--image disk.img files 1:/sources").output, HasSubstr("\nidg           folder\n"));
}

// The recovery files are on FAT, which is never written.
TEST_F(CheckOfImages, RecoveryPartitionOnFat_Check_SaysThatItIsNotChanged) {
    ChangeRecoveryVolume(
        "mkfs.fat part >/dev/null && mkdir -p sources/Orvo sources/data sources/idf &&"
        " printf x >sources/Qelhdrcv.ini && mcopy -s -i part sources ::");
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        HasSubstr(
            "Record                 no   partition 1 is not NTFS: only files on NTFS volumes are changed "
            "on an image\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("boot recovery (tried)  no   SetRcvprtActive() = 4: the record could "));
}

TEST_F(CheckOfImages, RecoveryPartitionThatCannotBeRead_Check_SaysWhy) {
    ChangeRecoveryVolume("printf '\\340' | dd of=part bs=1 seek=68 conv=notrunc status=none");
    const Outcome outcome = Kestova("--image disk.img check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        HasSubstr("Recovery files         no   partition 1 of disk 0 is damaged: let chkdsk repair it "));
}

}  // namespace
