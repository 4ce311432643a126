// The example application in C, on the PCs that come with the library.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

class RecoveryExampleInC : public ProgramTest {
  protected:
    Outcome Run(const std::string& words) { return Shell("KESTOVA_PC= '" KESTOVA_EXAMPLE_C "' " + words); }
};

TEST_F(RecoveryExampleInC, RecoveryPartitionWithALetter_Run_Switches) {
    const Outcome outcome = Run("winpe-two-disks");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "The recovery partition is C:\nThe next start boots the recovery partition.\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(RecoveryExampleInC, FactoryGpt_Run_FindsItAndSaysWhyItCannotSwitch) {
    const Outcome outcome = Run("factory-gpt");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.output,
        "The recovery partition is D:\nThe switch failed with code 1: no active partition could be read.\n");
}

TEST_F(RecoveryExampleInC, NoRecoveryPartition_Run_SaysSo) {
    WriteFile("bare.json", "{}");
    const Outcome outcome = Run("bare.json");
    EXPECT_EQ(outcome.status, 9);
    EXPECT_EQ(outcome.output, "No recovery partition was found.\n");
}

TEST_F(RecoveryExampleInC, UnknownPcOrNone_Run_SaysWhy) {
    const Outcome unknown = Run("factory-mbt");
    EXPECT_EQ(unknown.status, 9);
    EXPECT_EQ(unknown.output,
              "kestova_open_pc: there is no machine or file 'factory-mbt'; did you mean factory-mbr?\n");
    const Outcome none = Run("");
    EXPECT_EQ(none.status, 9);
    EXPECT_EQ(none.output, "no PC is open: call kestova_open_pc, or name one in the variable KESTOVA_PC\n");
}

}  // namespace
