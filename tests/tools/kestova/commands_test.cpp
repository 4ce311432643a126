// What each command answers, and with which exit status.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Status = ProgramTest;
using Boot = ProgramTest;
using Call = ProgramTest;
using Script = ProgramTest;
using Lists = ProgramTest;

TEST_F(Status, WithoutPcShowsTheFactoryMachineAndSaysSo) {
    const Outcome outcome = Kestova("status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.errors,
        "kestova: no PC was named: this is factory-mbr, a machine in memory that comes with the tool\n");
    EXPECT_EQ(outcome.output,
              "Firmware           BIOS\n"
              "Running system     Windows\n"
              "Windows directory  C:\\Windows\n"
              "Internal disk      0\n"
              "Partition style    MBR\n"
              "Active partition   2\n"
              "\n"
              "  #  Size       Type                    Active  Letter  Label    File system\n"
              "  1  15.0 GiB   hidden recovery (0x27)  -       -       -        -\n"
              "  2  200.0 GiB  NTFS (0x07)             active  C       Windows  NTFS\n"
              "  3  276.0 GiB  NTFS (0x07)             -       D       Data     NTFS\n"
              "  4  8.0 GiB    hibernation (0x84)      -       -       -        -\n");
}

TEST_F(Status, OfGptMachineNamesTypesAndHasNoActivePartition) {
    const Outcome outcome = Kestova("--pc factory-gpt status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith("Firmware           UEFI\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Active partition   none\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("  1  1.0 GiB    maker's boot        -       -       -        -\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("  5  470.0 GiB  basic data          -       C       Windows  NTFS\n"));
}

TEST_F(Status, InJsonIsOneObject) {
    const Outcome outcome = Kestova("--pc winpe-two-disks --json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                StartsWith(R"({"firmware":"BIOS","system":"Windows PE","windowsDirectory":"X:\\Windows",)"
                           R"("internalDisk":0,"style":"MBR","activePartition":1,"partitions":[)"
                           R"({"number":1,"offset":1048576,"size":16106127360,"type":"0x27",)"
                           R"json("typeName":"hidden recovery (0x27)","active":true,"letter":"C",)json"
                           R"("label":"Recovery","fileSystem":"NTFS"},)"));
    EXPECT_THAT(outcome.output, EndsWith(R"("active":false,"letter":null,"label":null,"fileSystem":null}]})"
                                         "\n"));
}

TEST_F(Status, OfUnreadableLayoutTellsTheErrorAndFails) {
    // The library asks for the extents of C: three times before.
    const Outcome outcome = Kestova("--pc factory-mbr --fail 'DeviceIoControl#4=5' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kestova: the partitions of disk 0 cannot be read (error 5)\n");
    EXPECT_THAT(outcome.output, HasSubstr("Active partition   2\n"));
}

TEST_F(Status, TellsThatInitializeFailed) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'IVdsServiceLoader::LoadService=0x80080005' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                StartsWith("kestova: Initialize: the service could not be loaded in 20 attempts; "));
    EXPECT_THAT(outcome.output, HasSubstr("Internal disk      unknown\n"));
}

TEST_F(Status, TellsWhatOfTheSystemCannotBeRead) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail RegOpenKeyExW=5 --fail GetWindowsDirectoryW=6 --json status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "kestova: the start options of the running system cannot be read (error 5); "
              "the Windows directory cannot be read (error 6); "
              "no internal disk was found, or it could not be told\n");
    EXPECT_THAT(outcome.output,
                StartsWith(R"({"firmware":"BIOS","system":"unknown","windowsDirectory":null,)"));
    EXPECT_THAT(outcome.output, HasSubstr(R"(],"problem":"the start options of )"));
}

TEST_F(Status, OnlyUefiFirmwareRefusesToReadAVariable) {
    for (const char* const code : {"1", "5", "87", "1314"}) {
        EXPECT_THAT(Kestova("--pc factory-gpt --fail GetFirmwareEnvironmentVariableW=" + std::string(code) +
                            " status")
                        .output,
                    StartsWith("Firmware           BIOS\n"))
            << code;
    }
    EXPECT_THAT(Kestova("--pc factory-mbr --fail GetFirmwareEnvironmentVariableW=998 status").output,
                StartsWith("Firmware           UEFI\n"));
    WriteFile("reads.json", R"({"firmware": {"kind": "uefi", "error": 0}})");
    EXPECT_THAT(Kestova("--pc reads.json status").output, StartsWith("Firmware           BIOS\n"));
}

TEST_F(Status, RemarksThatTwoPartitionsAreActive) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json call SetActive 3").status, 0);
    const Outcome outcome = Kestova("--pc pc.json --json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "kestova: 2 partitions are active; a PC starts from a disk with one only\n");
    EXPECT_THAT(outcome.output,
                EndsWith(R"(],"remark":"2 partitions are active; a PC starts from a disk with one only"})"
                         "\n"));
}

TEST_F(Boot, RecoverySwitchesAndShowsWhatChanged) {
    const Outcome outcome = Kestova("--pc factory-mbr boot recovery");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "SetRcvprtActive() = 0: done, or it was active already\n"
              "Changed:\n"
              "  disk 0, partition 1: active now\n"
              "  disk 0, partition 1: given letter E\n"
              "  disk 0, partition 1: file SystemVolume.ini created:\n"
              "    [System]\n"
              "    Active=2\n");
    EXPECT_EQ(outcome.errors, "kestova: 2 partitions are active; a PC starts from a disk with one only\n");
}

TEST_F(Boot, SystemOfInstalledSystemChangesNothing) {
    const Outcome outcome = Kestova("--pc factory-mbr boot system");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("SetSystemActive() = 0: done, or there was nothing to do\n"));
}

TEST_F(Boot, FailureIsTheExitStatusInWords) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'IVdsAdvancedDisk::ChangeAttributes#1=0x80004005' boot recovery");
    EXPECT_EQ(outcome.status, 5);
    EXPECT_THAT(outcome.output, StartsWith("SetRcvprtActive() = 5: the flag could not be set; "));
}

TEST_F(Boot, OfGptFailsWithItsOwnCodeAndReport) {
    const Outcome outcome = Kestova("--pc factory-gpt --json boot recovery");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        StartsWith(R"({"operation":"SetRcvprtActive","arguments":{},"result":1,"outputs":{},"log":[)"));
}

TEST_F(Call, AnswersResultAndWords) {
    const Outcome outcome = Kestova("--pc factory-mbr call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "GetDriveLetter(0, 2) = C: its letter\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(Call, ShowsOutputs) {
    const Outcome outcome = Kestova("--pc factory-gpt call GetDiskStyle");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "GetDiskStyle() = 1: asked; the style tells the rest\n  style = 2: GPT\n");
}

TEST_F(Call, ResultThatTellsFailureIsStatusOne) {
    const Outcome outcome = Kestova("--pc factory-mbr call GetDriveLetter 0 4");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "GetDriveLetter(0, 4) = 0: it has none\n");
}

TEST_F(Call, TakesNegativeNumbers) {
    const Outcome outcome = Kestova("--pc factory-mbr call SetActive -1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "SetActive(-1) = 1: failed\nNothing changed.\n");
}

TEST_F(Call, ThatChangesShowsTheChanges) {
    EXPECT_EQ(Kestova("--pc factory-mbr call ClearActive").output,
              "ClearActive() = 0: done\nChanged:\n  disk 0, partition 2: no longer active\n");
}

TEST_F(Call, OfInitializeIsTheOnlyInitialize) {
    const Outcome outcome = Kestova("--pc factory-mbr --log log call Initialize true");
    EXPECT_EQ(outcome.output, "Initialize(true) = 1: the service is ready\n");
    EXPECT_EQ(Shell("grep -c Initialize log").output, "2\n");
}

TEST_F(Script, EachLineIsAnOperationOnOneObject) {
    const Outcome outcome = Kestova("--pc factory-mbr run -",
                                    "# which one, then another\n"
                                    "GetActivePartitionNumber\n"
                                    "\n"
                                    "ClearActive   # all flags\n"
                                    "SetActive 3\r\n"
                                    "GetActivePartitionNumber\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "Initialize(false) = 1: the service is ready\n"
              "GetActivePartitionNumber() = 2: the number of the partition\n"
              "ClearActive() = 0: done\n"
              "SetActive(3) = 0: done\n"
              "GetActivePartitionNumber() = 3: the number of the partition\n");
}

TEST_F(Script, GoesOnAfterAFailureAndReportsIt) {
    const Outcome outcome = Kestova("--pc factory-mbr run -", "SetActive 9\nSetActive 1\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, EndsWith("SetActive(9) = 1: failed\nSetActive(1) = 0: done\n"));
}

TEST_F(Script, WithoutInitializeOperationsFail) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --no-initialize run -", "GetFirstInternalDriveNumber\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "GetFirstInternalDriveNumber() = -1: there is none, or it could not be told\n");
}

TEST_F(Script, WrongLineIsNamedAndNothingRuns) {
    WriteFile("switch.txt", "SetActive 1\n\nSetActiv 2\n");
    const Outcome outcome = Kestova("--pc factory-mbr run switch.txt");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("kestova: switch.txt:3: there is no operation 'SetActiv'; "
                                           "did you mean SetActive?\n"));
}

TEST_F(Script, MayBeginWithAByteOrderMark) {
    EXPECT_EQ(Kestova("--pc factory-mbr run -", "\xEF\xBB\xBFGetDriveLetter 0 2\n").status, 0);
}

TEST_F(Script, CommandInItIsAnsweredWithAHint) {
    EXPECT_THAT(Kestova("--pc factory-mbr run -", "status\n").errors,
                StartsWith("kestova: standard input:1: 'status' is a command; only operations stand in a "
                           "script (kestova operations lists them)\n"));
}

TEST_F(Script, MissingScriptAndFolderAreRefused) {
    EXPECT_THAT(Kestova("run none.txt").errors, StartsWith("kestova: none.txt: there is no such file\n"));
    EXPECT_THAT(Kestova("run /").errors, StartsWith("kestova: /: cannot be read\n"));
}

TEST_F(Lists, EveryPublicOperationOfTheClassIsThere) {
    const std::string names =
        "sed -n '/^  public:/,/^  private:/p' '" KESTOVA_SOURCE_FOLDER
        "/manager/kestova.h' | sed -nE 's/^    (int|WCHAR|unsigned long|void) ([A-Za-z]+)\\(.*/\\2/p' | sort";
    const std::string listed =
        "'" KESTOVA_PROGRAM "' operations --json | sed -E 's/.*\"operation\":\"([^\"]*)\".*/\\1/' | sort";
    const std::string declared = Shell(names).output;
    EXPECT_THAT(declared, HasSubstr("SetRcvprtActive\n"));
    EXPECT_EQ(Shell(listed).output, declared);
}

TEST_F(Lists, OperationTellsArgumentsAndResults) {
    EXPECT_THAT(Kestova("operations").output, HasSubstr("GetDriveLetter DISK PARTITION\n"
                                                        "  The letter of a partition.\n"
                                                        "  disk: number of a disk, from 0\n"
                                                        "  partition: number of a partition, from 1\n"
                                                        "  result:\n"
                                                        "    0     it has none\n"
                                                        "    else  its letter\n"));
}

TEST_F(Lists, PcsNamesTheMachines) {
    const Outcome outcome = Kestova("pcs --json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith(R"({"name":"factory-mbr","summary":)"));
    EXPECT_THAT(outcome.output, HasSubstr("{\"name\":\"winpe-two-disks\","));
}

}  // namespace
