// A script on many disk images.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;

// Two images of the factory disk and a virtual disk in a folder, and the switch to recovery.
class SurveyOfImages : public ProgramTest {
  protected:
    SurveyOfImages() {
        WriteFile("there.txt", "SetRcvprtActive\n");
        EXPECT_EQ(
            Shell(
                "mkdir lab && cp --sparse=always '" KESTOVA_TEST_IMAGES "/factory-mbr.img' lab/a.img && "
                "cp --sparse=always lab/a.img lab/c.raw && "
                "qemu-img convert -f raw -O qcow2 lab/a.img lab/b.qcow2 && echo no image >lab/readme.txt && "
                "sha256sum lab/* >sums")
                .status,
            0);
    }
};

TEST_F(SurveyOfImages, Switch_AnswersForEach_AndWritesNothing) {
    const Outcome outcome = Kestova("survey lab --script there.txt");
    EXPECT_EQ(outcome.status, 0) << outcome.errors << outcome.output;
    EXPECT_THAT(outcome.errors, HasSubstr("SetRcvprtActive\n  3  0: done\n"));
    EXPECT_EQ(Shell("ls lab && sha256sum --check --quiet sums").output,
              "a.img\nb.qcow2\nc.raw\nreadme.txt\n");
}

// sfdisk sees the flag; the backup takes it back.
TEST_F(SurveyOfImages, SwitchThatMayWrite_ChangesEachImage_AndLeavesABackup) {
    ASSERT_EQ(Kestova("survey lab/a.img lab/c.raw --script there.txt --write").status, 0);
    for (const std::string image : {"lab/a.img", "lab/c.raw"}) {
        EXPECT_THAT(Shell("sfdisk --dump " + image).output, HasSubstr("type=27, bootable\n"));
        EXPECT_EQ(Kestova("undo " + image + ".kestova-backup-1 --no-backup").status, 0);
    }
    EXPECT_EQ(Shell("sha256sum --check --quiet sums").output, "");
}

}  // namespace
