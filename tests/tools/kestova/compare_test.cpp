// Where two described PCs differ, as a user meets it.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using Compare = ProgramTest;

TEST_F(Compare, MachineBeforeAndAfterASwitch_SaysWhatTheSwitchDid) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save after.json boot recovery").status, 0);
    const Outcome outcome = Kestova("compare factory-mbr after.json");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "disk 0, partition 1, bootIndicator: 0 in factory-mbr, 1 in after.json\n"
              "disk 0, partition 1, volume, letters: \"\" in factory-mbr, \"E\" in after.json\n"
              "disk 0, partition 1, volume, files, SystemVolume.ini: only in after.json\n");
}

TEST_F(Compare, SameMachine_HasNoDifferences) {
    const Outcome outcome = Kestova("compare factory-gpt factory-gpt");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "no differences\n");
}

TEST_F(Compare, MissingMachineOrFile_IsRefused) {
    EXPECT_EQ(Kestova("compare factory-mbr factory-mbd").status, 2);
    EXPECT_THAT(Kestova("compare factory-mbr factory-mbd").errors,
                HasSubstr("compare: there is no machine or file 'factory-mbd'; did you mean factory-mbr?"));
    EXPECT_EQ(Kestova("compare none.json factory-mbr").status, 3);
    WriteFile("wrong.json", "{\"nam\": 5}");
    EXPECT_THAT(Kestova("compare factory-mbr wrong.json").errors, HasSubstr("wrong.json: nam: unknown key"));
}

// What is shown begins shortly before the difference.
TEST_F(Compare, LongTextsThatDifferAtTheirEnds_ShowWhatDiffers) {
    const std::string same(400, 'x');
    WriteFile("one.json", "{\"name\": \"" + same + "one\"}");
    WriteFile("two.json", "{\"name\": \"" + same + "two\"}");
    EXPECT_EQ(Kestova("compare one.json two.json").output,
              "name: …xxxxxxxxxxxxxxxxxxxxone\" in one.json, …xxxxxxxxxxxxxxxxxxxxtwo\" in two.json\n");
}

// A label that a terminal would obey, and a long one.
TEST_F(Compare, HostileAndLongTexts_AreShownPrintableAndCut) {
    WriteFile("one.json", "{\"name\": \"\\u001b[2J\"}");
    WriteFile("two.json", "{\"name\": \"" + std::string(500, 'x') + "\"}");
    const std::string output = Kestova("compare one.json two.json").output;
    EXPECT_EQ(output.find('\x1b'), std::string::npos);
    EXPECT_LT(output.size(), 300u);
}

}  // namespace
