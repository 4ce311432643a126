// `kestova check` and the reasons of a refused `boot`, on described PCs.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Check : public ProgramTest {
  protected:
    // factory-mbr, changed by a script of sed.
    void WritePc(const std::string& change) {
        ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json operations --json").status, 2);
        ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json call IsDynamic").status, 0);
        ASSERT_EQ(Shell("cp pc.json before.json && sed -i '" + change + "' pc.json").status, 0);
        ASSERT_NE(ReadFile("pc.json"), ReadFile("before.json")) << change;
    }
    // check says no with this line, and boot recovery ends with that result and the same reason.
    void ExpectRefused(const std::string& line, int result, const std::string& reason) {
        const Outcome check = Kestova("--pc pc.json check");
        EXPECT_EQ(check.status, 1);
        EXPECT_EQ(check.errors, "");
        EXPECT_THAT(check.output, HasSubstr(line));
        const Outcome boot = Kestova("--pc pc.json boot recovery");
        EXPECT_EQ(boot.status, result);
        EXPECT_THAT(boot.errors, HasSubstr("kestova: SetRcvprtActive: " + reason + "\n"));
        EXPECT_THAT(boot.output, Not(HasSubstr(reason)));
    }
};

TEST_F(Check, PcThatBootsRecovery_Check_LooksAtTheWayBack) {
    const Outcome outcome = Kestova("--pc winpe-two-disks check");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, HasSubstr("Its letter             yes  C\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Record                 yes  there is none, and none is needed\n"));
    EXPECT_THAT(outcome.output, EndsWith("boot system (tried)    yes  makes partition 2 active\n"));
}

TEST_F(Check, SystemOnPartition3_Check_ComesBackThere) {
    WritePc("s/\"number\": 3,/\"number\": 3, \"bootIndicator\": 1,/");
    ASSERT_EQ(Shell("sed -i '0,/\"bootIndicator\": 1,\\?$/{/\"bootIndicator\": 1,\\?$/d}' pc.json").status,
              0);
    const Outcome outcome = Kestova("--pc pc.json check");
    EXPECT_THAT(outcome.output, HasSubstr("One active partition   yes  partition 3\n")) << outcome.errors;
    EXPECT_THAT(outcome.output, EndsWith("boot system (tried)    yes  makes partition 3 active\n"));
}

TEST_F(Check, GptDisk_Check_SaysThatTheSwitchIsForMbrDisks) {
    const Outcome outcome = Kestova("--pc factory-gpt check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output,
                StartsWith("Internal disk          yes  disk 0\n"
                           "Partition style        no   GPT: this switch is for MBR disks; on a GPT disk the "
                           "firmware chooses what starts\n"
                           "One active partition   -\n"));
    const std::string reason =
        "GPT: this switch is for MBR disks; on a GPT disk the firmware chooses what starts";
    EXPECT_EQ(Kestova("--pc factory-gpt boot recovery").errors, "kestova: SetRcvprtActive: " + reason + "\n");
    EXPECT_EQ(Kestova("--pc factory-gpt boot system").errors, "kestova: SetSystemActive: " + reason + "\n");
    EXPECT_THAT(Kestova("--pc factory-gpt --json boot recovery").output,
                EndsWith(R"(],"reasons":[{"code":"mbr","text":")" + reason +
                         R"("}],"changes":[]})"
                         "\n"));
}

TEST_F(Check, EachRecoveryFileMissing_Check_NamesIt) {
    for (const char* const name : {"Qelhdrcv.ini", "Orvo", "data", "idf"}) {
        SCOPED_TRACE(name);
        WritePc("s/sources\\/" + std::string(name) + "/sources\\/other/");
        const std::string found =
            "sources\\" + std::string(name) + " is missing on partition 1: copy the files ";
        ExpectRefused(
            "Recovery files         no   " + found, 3,
            found +
                "of the factory's recovery partition to it; `kestova --pc pc.json files 1:/sources` lists what is "
                "there");
        EXPECT_THAT(
            Kestova("--pc pc.json check").output,
            HasSubstr("boot recovery (tried)  no   SetRcvprtActive() = 3: the recovery partition cannot "));
    }
}

TEST_F(Check, FlagOfADisc_Check_NamesIt) {
    WritePc("s/sources\\/boot.wim/sources\\/DVD/");
    EXPECT_THAT(Kestova("--pc pc.json check").output,
                HasSubstr("Recovery files         no   sources\\DVD is on partition 1, and marks a disc: "));
}

TEST_F(Check, TypeOfARecoveryPartition_Check_IsAsTheSwitchNeedsIt) {
    WritePc("s/\"mbrType\": \"0x27\"/\"mbrType\": \"0x83\"/");
    ExpectRefused(
        "Recovery partition     no   partition 1: unknown (0x83): ", 3,
        "partition 1: unknown (0x83): it is the first one of the table, of type 0x27, 0x12 or 0x07");
    WritePc("s/\"mbrType\": \"0x27\"/\"mbrType\": \"0x07\"/");
    ExpectRefused("Its letter             no   none, which a visible partition needs: ", 3,
                  "none, which a visible partition needs: give it one, or the type 0x27");
    WritePc("s/\"mbrType\": \"0x27\"/\"mbrType\": \"0x12\"/");
    EXPECT_EQ(Kestova("--pc pc.json check").status, 0);
}

TEST_F(Check, NoActivePartition_Check_SaysSo) {
    WritePc("s/\"bootIndicator\": 1/\"bootIndicator\": 0/");
    ExpectRefused(
        "One active partition   no   none: make the partition ", 1,
        "none: make the partition of the system the only active one: call ClearActive, call SetActive");
}

TEST_F(Check, TwoActivePartitions_Check_NamesThem) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json call SetActive 3").status, 0);
    const Outcome outcome = Kestova("--pc pc.json check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("One active partition   no   partitions 2, 3: "));
}

TEST_F(Check, NoInternalDisk_Check_SaysSoAndAsksNoMore) {
    WriteFile("empty.json", "{}");
    const Outcome outcome = Kestova("--pc empty.json check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, StartsWith("Internal disk          no  none was found: connect it"));
    EXPECT_THAT(outcome.output, HasSubstr("\nPartition style        -\n"));
}

TEST_F(Check, WayBackThatFails_Check_SaysSo) {
    // The flag of the recovery partition is set by the first call, that of the system by the second.
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'IVdsAdvancedDisk::ChangeAttributes#2=0x80004005' check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("boot recovery (tried)  yes  "));
    EXPECT_THAT(outcome.output,
                EndsWith("boot system (tried)    no   SetSystemActive() = 4: the flag could not be set\n"));
}

TEST_F(Check, UnreadableLayout_Check_ReportsTheProblem) {
    const Outcome outcome = Kestova("--pc factory-mbr --fail DeviceIoControl#2=5 check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("kestova: the partitions of disk 0 cannot be read"));
}

TEST_F(Check, DescribedPc_Check_ChangesNothing) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save before.json call IsDynamic").status, 0);
    EXPECT_EQ(Kestova("--pc before.json --save after.json check").status, 0);
    EXPECT_EQ(Shell("cmp before.json after.json").status, 0);
    EXPECT_EQ(Kestova("--pc factory-mbr --dry-run check").status, 2);
}

TEST_F(Check, FactoryMbr_CheckInJson_HasEachConditionByItsCode) {
    const std::string json = Kestova("--pc factory-mbr --json check").output;
    EXPECT_THAT(
        json,
        StartsWith(R"({"possible":true,"conditions":[{"code":"internalDisk","question":"Internal disk",)"
                   R"("met":true,"found":"disk 0","advice":null},{"code":"mbr",)"));
    for (const char* const code : {"activePartition", "recoveryPartition", "recoveryLetter", "recoveryFiles",
                                   "record", "bootRecovery", "bootSystem"})
        EXPECT_THAT(json, HasSubstr("{\"code\":\"" + std::string(code) + "\","));
    const std::string no = Kestova("--pc factory-gpt --json check").output;
    EXPECT_THAT(no, StartsWith(R"({"possible":false,)"));
    EXPECT_THAT(no, HasSubstr(R"("met":false,"found":"GPT","advice":"this switch is for MBR disks; )"));
    EXPECT_THAT(no, HasSubstr(R"("met":null,"found":"","advice":null})"));
}

// The switch was refused for a reason that no condition names: nothing is guessed.
TEST_F(Check, FlagNotSet_BootRecovery_GivesNoReasons) {
    const Outcome outcome = Kestova(
        "--pc factory-mbr --json --fail 'IVdsAdvancedDisk::ChangeAttributes#1=0x80004005' boot recovery");
    EXPECT_EQ(outcome.status, 5);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, Not(HasSubstr("reasons")));
}

}  // namespace
