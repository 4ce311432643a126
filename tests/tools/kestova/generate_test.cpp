// Random PCs from the command line.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using Generate = ProgramTest;

TEST_F(Generate, OnePc_IsADescriptionThatTheToolReads) {
    const Outcome outcome = Kestova("generate --seed 7");
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("\"name\": \"generated 7/1\",\n"));
    WriteFile("pc.json", outcome.output);
    EXPECT_EQ(Kestova("validate pc.json").output, "pc.json: no mistakes\n");
    EXPECT_EQ(Kestova("--pc pc.json call GetFirstInternalDriveNumber").status, 0);
}

TEST_F(Generate, SeveralPcs_AreOneALine) {
    const Outcome outcome = Kestova("generate --seed 7 --count 3");
    EXPECT_EQ(std::ranges::count(outcome.output, '\n'), 3);
    EXPECT_THAT(outcome.output, testing::StartsWith("{\"name\":\"generated 7/1\","));
    EXPECT_THAT(outcome.output, HasSubstr("\n{\"name\":\"generated 7/3\","));
}

// What a shard makes is what the whole would have made.
TEST_F(Generate, PartOfASeed_IntoAFolder_HasTheSameFilesAsTheWhole) {
    ASSERT_EQ(Kestova("generate --seed 9 --count 20 --output whole").status, 0);
    ASSERT_EQ(Kestova("generate --seed 9 --first 1 --count 10 --output lab/parts").status, 0);
    ASSERT_EQ(Kestova("generate --seed 9 --first 11 --count 10 -o lab/parts").status, 0);
    EXPECT_EQ(Shell("diff -r whole lab/parts && ls whole | wc -l").output, "20\n");
    EXPECT_EQ(Shell("cd whole && '" KESTOVA_PROGRAM "' validate *.json | grep -c 'no mistakes'").output,
              "20\n");
}

TEST_F(Generate, FilesThatExist_AreKept_UnlessOverwritten) {
    Shell("mkdir lab && echo mine >lab/pc-000002.json");
    const Outcome outcome = Kestova("generate --count 3 --output lab");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--output: lab/pc-000002.json exists; --overwrite replaces it"));
    EXPECT_EQ(Shell("ls lab; cat lab/*").output, "pc-000002.json\nmine\n");
    EXPECT_EQ(Kestova("generate --count 3 --output lab --overwrite").status, 0);
    EXPECT_THAT(ReadFile("lab/pc-000002.json"), HasSubstr("generated 1/2"));
}

TEST_F(Generate, WrongNumbersAndFolders_AreRefused) {
    EXPECT_THAT(Kestova("generate --count 0").errors,
                HasSubstr("--count: '0' is no number from 1 to 999999"));
    EXPECT_EQ(Kestova("generate --seed -1").status, 2);
    EXPECT_EQ(Kestova("generate --count 2 --first 999999").status, 2);
    EXPECT_EQ(Kestova("generate --seed 18446744073709551616").status, 2);
    EXPECT_EQ(Kestova("generate --seed 18446744073709551615").status, 0);
    WriteFile("file", "");
    const Outcome outcome = Kestova("generate --output file");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("file: the folder cannot be made"));
}

// The same on every system and with every compiler; a change of the generator changes it.
TEST_F(Generate, HundredPcs_HaveTheSumThatIsKnown) {
    EXPECT_EQ(Shell("'" KESTOVA_PROGRAM "' generate --seed 7 --count 100 | sha256sum").output,
              "9a0c6a266b2a578c3372912b40cb662ebe010d6eabb196a3322cf040ea78d4f1  -\n");
}

}  // namespace
