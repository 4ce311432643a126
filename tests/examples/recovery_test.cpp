// The example application, as built, on the PCs that readers try first.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;

class RecoveryExample : public ProgramTest {
  protected:
    Outcome Run(const std::string& pc) { return Shell("'" KESTOVA_EXAMPLE "' " + pc); }
};

TEST_F(RecoveryExample, MbrImage_Run_ReadsTheFileAndSwitches) {
    ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    const Outcome outcome = Run("disk.img");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output,
              "The recovery partition is C:\n"
              "Its Qelhdrcv.ini begins:\n"
              "[Recovery]\r\nVersion=1\r\n\n"
              "The next start boots the recovery partition.\n");
    EXPECT_THAT(Shell("sfdisk --dump disk.img").output, HasSubstr("type=27, bootable\n"));
}

TEST_F(RecoveryExample, FactoryGpt_Run_ReadsThroughATemporaryLetter) {
    const Outcome outcome = Run("factory-gpt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "The recovery partition is D:\n"
              "Its Qelhdrcv.ini begins:\n"
              "[Recovery]\r\nVersion=1\r\n\n"
              "The switch failed with code 1; a GPT disk has no active partition to switch.\n");
    EXPECT_EQ(Run("").output, outcome.output);
}

TEST_F(RecoveryExample, NoRecoveryPartition_Run_SaysSo) {
    WriteFile("bare.json", "{}");
    const Outcome outcome = Run("bare.json");
    EXPECT_EQ(outcome.status, 9);
    EXPECT_EQ(outcome.output, "No recovery partition was found.\n");
}

TEST_F(RecoveryExample, UnreadableFile_Run_SaysSo) {
    ASSERT_EQ(Kestova("--pc factory-gpt --save factory.json status").status, 0);
    ASSERT_EQ(
        Shell("sed '1s/{/{\"faults\": [{\"call\": \"ReadFile\", \"code\": 23}],/' factory.json >pc.json")
            .status,
        0);
    const Outcome outcome = Run("pc.json");
    EXPECT_EQ(outcome.status, 9);
    EXPECT_EQ(outcome.output,
              "The recovery partition is D:\n"
              "Its Qelhdrcv.ini cannot be read.\n");
}

TEST_F(RecoveryExample, MissingPc_Run_IsRefused) {
    const Outcome outcome = Run("nothing.img");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, HasSubstr("recovery: nothing.img"));
    EXPECT_EQ(Run("nothing.json").errors, "recovery: nothing.json: cannot be read\n");
}

}  // namespace
