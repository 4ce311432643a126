// All mistakes of descriptions, as an editor takes them.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using Validate = ProgramTest;

TEST_F(Validate, RightAndWrongFiles_NamesEachMistakeAsCompilersDo) {
    ASSERT_EQ(Kestova("--pc factory-gpt --save right.json status").status, 0);
    WriteFile("wrong.json", "{\"nam\": \"a\",\n \"disks\": [{\"size\": 5}]}");
    const Outcome outcome = Kestova("validate right.json wrong.json none.json");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output,
              "right.json: no mistakes\n"
              "wrong.json:1:2: nam: unknown key \"nam\" (did you mean \"name\"?)\n"
              "wrong.json:2:12: disks[0]: the key \"number\" is missing\n"
              "none.json: there is no such file\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(Kestova("validate right.json").status, 0);
}

// The first is what --pc refuses it for, where that is what stands first.
TEST_F(Validate, WrongFile_StatusOfIt_RefusesTheFirstMistake) {
    WriteFile("wrong.json", "{\"firmware\": {\"kind\": \"efi\"}, \"disks\": 5}");
    EXPECT_THAT(Kestova("validate wrong.json").output, HasSubstr("wrong.json:1:15: firmware.kind: "));
    EXPECT_THAT(Kestova("validate wrong.json").output, HasSubstr("wrong.json:1:31: disks: "));
    EXPECT_THAT(Kestova("--pc wrong.json status").errors, HasSubstr("wrong.json: firmware.kind: "));
}

TEST_F(Validate, LabelsWithControlCharacters_Validate_ShowsNoneOfThem) {
    WriteFile("wrong.json", "{\"\\u001b[2J\": 1}");
    EXPECT_EQ(Kestova("validate wrong.json").output.find('\x1b'), std::string::npos);
}

TEST_F(Validate, WithoutAFile_IsWrongUse) {
    EXPECT_EQ(Kestova("validate").status, 2);
}

}  // namespace
