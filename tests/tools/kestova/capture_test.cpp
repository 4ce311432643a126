// A PC as a description, as a user meets it.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;
using testing::Not;
using Capture = ProgramTest;

TEST_F(Capture, EachMachine_IsWhatASystemCanShowOfIt) {
    for (const std::string name : {"factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"}) {
        EXPECT_EQ(Kestova("--pc " + name + " capture --overwrite -o captured.json").status, 0) << name;
        EXPECT_EQ(Kestova("validate captured.json").status, 0) << name;
        const Outcome compared = Kestova("compare --seen " + name + " captured.json");
        EXPECT_EQ(compared.output, "no differences\n") << name;
        EXPECT_EQ(compared.status, 0) << name;
    }
}

TEST_F(Capture, OfAnotherPc_DiffersInWhatItsSystemShows) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save switched.json boot recovery").status, 0);
    ASSERT_EQ(Kestova("--pc switched.json capture -o captured.json").status, 0);
    const Outcome compared = Kestova("compare --seen factory-mbr captured.json");
    EXPECT_EQ(compared.status, 1);
    EXPECT_EQ(compared.output,
              "disk 0, partition 1, bootIndicator: 0 in factory-mbr, 1 in captured.json\n"
              "disk 0, partition 1, volume, letters: \"\" in factory-mbr, \"E\" in captured.json\n"
              "disk 0, partition 1, volume, files, SystemVolume.ini: only in captured.json\n");
}

TEST_F(Capture, WithoutAFile_IsWrittenToStandardOutput) {
    const Outcome shown = Kestova("--pc factory-gpt --quiet capture");
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.errors, "");
    WriteFile("shown.json", shown.output);
    EXPECT_EQ(Kestova("compare --seen factory-gpt shown.json").status, 0);
}

// What leaves the house is known before it does.
TEST_F(Capture, WhatTheDescriptionHolds_IsSaid) {
    const Outcome captured = Kestova("--pc winpe-two-disks capture -o captured.json");
    for (const char* const told :
         {"the description holds the paths X:\\Recovery\\Recovery.exe and X:\\Windows\n",
          "the description holds signature or GUIDs of: disk 0, disk 1\n",
          "the description holds labels: Recovery, Windows, Data, Boot\n",
          "the description holds contents of files: IDE.INI beside the program ("})
        EXPECT_THAT(captured.errors, HasSubstr(told));
}

TEST_F(Capture, MadeAnonymous_HoldsStandIns) {
    ASSERT_EQ(Kestova("--pc winpe-media --anonymous capture -o captured.json").status, 0);
    const std::string text = ReadFile("captured.json");
    EXPECT_THAT(text, HasSubstr("\"label\": \"label "));
    EXPECT_THAT(text, HasSubstr("instance-0"));
    EXPECT_THAT(text, Not(HasSubstr("6f1f3a52")));
    const std::string question = " --json call IsExistRcvprt";
    EXPECT_THAT(Kestova("--pc captured.json" + question).output, HasSubstr("IsExistRcvprt"));
    EXPECT_EQ(Kestova("--pc captured.json" + question).output, Kestova("--pc winpe-media" + question).output);
}

// The emulated computer is called "PC", and paths of WMI name it.
TEST_F(Capture, PathsOfWmi_MadeAnonymous_NameNoComputer) {
    ASSERT_EQ(Kestova("--pc factory-mbr --anonymous capture -o captured.json").status, 0);
    EXPECT_THAT(ReadFile("captured.json"), HasSubstr("\"controllers\": "));
    EXPECT_THAT(ReadFile("captured.json"), Not(HasSubstr("\\\\PC\\")));
}

TEST_F(Capture, FileOfAnotherKindOrMissingFolder_IsRefused) {
    WriteFile("letter.txt", "Dear Ada");
    EXPECT_EQ(Kestova("--pc factory-mbr capture -o letter.txt").status, 2);
    EXPECT_THAT(Kestova("--pc factory-mbr capture -o letter.txt").errors,
                HasSubstr("--output: letter.txt is neither empty nor a description nor a log"));
    EXPECT_EQ(ReadFile("letter.txt"), "Dear Ada");
    EXPECT_EQ(Kestova("--pc factory-mbr capture -o none/captured.json").status, 2);
    EXPECT_EQ(Kestova("--pc factory-mbr --json capture").status, 2);
    EXPECT_EQ(Kestova("--pc factory-mbr --anonymous status").status, 2);
}

// The capture of a PC on which a call fails describes that it does.
TEST_F(Capture, CallThatFails_FailsInTheDescription) {
    ASSERT_EQ(Kestova("--pc factory-mbr --fail DeviceIoControl=50 capture -o captured.json").status, 0);
    EXPECT_THAT(ReadFile("captured.json"), HasSubstr("\"scsiAddress\": {\n        \"error\": 50"));
    const Outcome slow = Kestova("--pc factory-mbr --fail IEnumWbemClassObject::Next#1=0x40004 capture");
    EXPECT_EQ(slow.status, 0);
    EXPECT_THAT(slow.errors, HasSubstr("the list of Win32_DiskDrive: no answer in 60 s\n"));
    const Outcome without = Kestova("--pc factory-mbr --fail CoCreateInstance=0x80040154 capture");
    EXPECT_EQ(without.status, 0);
    EXPECT_THAT(without.errors, HasSubstr("the Virtual Disk Service is not there: no disk is described"));
}

}  // namespace
