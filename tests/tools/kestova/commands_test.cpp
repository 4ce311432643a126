// The output and the exit status of each command.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "machine/calls/call_table.h"
#include "tests/support/program/program.h"

namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

using Status = ProgramTest;
using Boot = ProgramTest;
using Call = ProgramTest;
using Letters = ProgramTest;
using Script = ProgramTest;
using Lists = ProgramTest;

const std::string twoActiveAsDescribed =
    "2 partitions are active; a PC starts from a disk with one only; the description's activeFlagIsExclusive is "
    "false, so others keep theirs";

TEST_F(Status, NoPcNamed_Status_ShowsFactoryMbrAndANote) {
    const Outcome outcome = Kestova("status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.errors,
        "kestova: no PC was named: this is factory-mbr, a machine in memory that comes with the tool\n");
    EXPECT_EQ(
        outcome.output,
        "Firmware           BIOS\n"
        "Running system     Windows\n"
        "Windows directory  C:\\Windows\n"
        "Internal disk      0\n"
        "Partition style    MBR\n"
        "Active partition   2\n"
        "Layout             MBR, partition 2 is not labelled System Reserved\n"
        "Installed Windows  C: disk 0, partition 2\n"
        "Encrypted volumes  BitLocker cannot be asked\n"
        "Recovery disc      none\n"
        "Recovery stick     none\n"
        "Cache partition    no\n"
        "Record             none; boot system changes nothing\n"
        "\n"
        "Disk 0: 500.0 GiB, MBR, SATA, Emulated disk; internal: SATA; the first internal disk\n"
        "  #  Start      Size        Type                    Active  Letter  Label     File system  Condition  Hide  Role: reason\n"
        "  1  1.0 MiB    15.0 GiB    hidden recovery (0x27)  -       -       Recovery  NTFS         -          -     recovery: type\n"
        "  2  15.0 GiB   200.0 GiB   NTFS (0x07)             active  C       Windows   NTFS         -          -     installed Windows: contents\n"
        "  3  215.0 GiB  276.0 GiB   NTFS (0x07)             -       D       Data      NTFS         -          -     -\n"
        "  4  491.0 GiB  8.0 GiB     hibernation (0x84)      -       -       -         -            -          -     hibernation: type\n"
        "     499.0 GiB  1023.0 MiB  free\n");
}

TEST_F(Status, FactoryGpt_Status_NamesTypesAndNoActivePartition) {
    const Outcome outcome = Kestova("--pc factory-gpt status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, StartsWith("Firmware           UEFI\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Active partition   none\n"));
    EXPECT_THAT(
        outcome.output,
        EndsWith(
            "Layout             GPT, partition 3 is the EFI system partition\n"
            "Installed Windows  C: disk 0, partition 5\n"
            "Encrypted volumes  BitLocker cannot be asked\n"
            "Recovery disc      none\n"
            "Recovery stick     none\n"
            "Cache partition    no\n"
            "Record             -\n"
            "\n"
            "Disk 0: 500.0 GiB, GPT, SATA, Emulated disk; internal: SATA; the first internal disk\n"
            "  #  Start      Size        Type                Name                          Active  Letter  Label     File system  Condition  Hide  Role: reason\n"
            "  1  1.0 MiB    1.0 GiB     maker's boot        Maker boot                    -       -       Boot      FAT32        -          hide  maker's boot: type\n"
            "  2  1.0 GiB    1.0 GiB     Windows recovery    Windows RE                    -       -       WinRE     NTFS         -          -     Windows RE: type and contents\n"
            "  3  2.0 GiB    1.0 GiB     EFI system          EFI system partition          -       -       SYSTEM    FAT32        -          hide  EFI system: type\n"
            "  4  3.0 GiB    128.0 MiB   Microsoft reserved  Microsoft reserved partition  -       -       -         -            -          hide  -\n"
            "     3.1 GiB    896.0 MiB   free\n"
            "  5  4.0 GiB    470.0 GiB   basic data          Basic data partition          -       C       Windows   NTFS         -          -     installed Windows: contents\n"
            "  6  474.0 GiB  25.0 GiB    Windows recovery    Recovery                      -       -       Recovery  NTFS         -          -     recovery: type and contents\n"
            "     499.0 GiB  1023.0 MiB  free\n"));
}

TEST_F(Status, WinPe_Status_FindsMediaCacheAndEncryptedVolumes) {
    const std::string media = Kestova("--pc winpe-media status").output;
    EXPECT_THAT(media, HasSubstr("Installed Windows  C: disk 0, partition 5\n"
                                 "Encrypted volumes  D\n"
                                 "Recovery disc      R\n"
                                 "Recovery stick     U\n"));
    EXPECT_THAT(media,
                HasSubstr("D       -         -            BitLocker  -     encrypted: BitLocker lists it\n"));
    EXPECT_THAT(Kestova("--pc winpe-two-disks status").output, HasSubstr("Cache partition    yes\n"));
    WriteFile("none.json", R"({"encryptableVolumes": []})");
    EXPECT_THAT(Kestova("--pc none.json status").output, HasSubstr("Encrypted volumes  none\n"));
}

TEST_F(Status, NoInstalledWindows_Status_SaysNotFound) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json status").status, 0);
    EXPECT_EQ(Shell("sed -i 's/Winload/winlaod/' pc.json").status, 0);
    EXPECT_THAT(Kestova("--pc pc.json status").output, HasSubstr("Installed Windows  not found\n"));
}

TEST_F(Status, RecoveryPartitions_Status_LooksIntoThemAndChangesNothing) {
    EXPECT_EQ(Kestova("--pc factory-gpt --save before.json operations").status, 2) << "asks no PC";
    EXPECT_EQ(Kestova("--pc factory-gpt --save before.json call IsDynamic").status, 0);
    const Outcome outcome = Kestova("--pc before.json --save after.json --json status");
    EXPECT_THAT(outcome.output, HasSubstr(R"("roles":[{"role":"recovery","reason":"type and contents"}])"));
    EXPECT_EQ(Shell("cmp before.json after.json").status, 0);
    // Even where the letter could not be taken again.
    const Outcome failing =
        Kestova("--pc before.json --fail IVdsAdvancedDisk::DeleteDriveLetter=5 --save failed.json status");
    EXPECT_EQ(failing.status, 0);
    EXPECT_EQ(ReadFile("failed.json").find("\"letters\": \"D\""), std::string::npos);
}

TEST_F(Status, LetterRefused_Status_NamesThePartitionNotLookedInto) {
    // Partition 6 gets no letter, partition 2 does.
    const Outcome one =
        Kestova("--pc factory-gpt --fail 'IVdsAdvancedDisk::AssignDriveLetter#1=0x80004005' status");
    EXPECT_EQ(one.status, 1);
    EXPECT_THAT(one.output, HasSubstr("-     Windows RE: type and contents\n"));
    EXPECT_THAT(one.output, HasSubstr("-     recovery or Windows RE: type; contents not looked into\n"));
    // Neither does, because the free letters cannot be listed.
    const Outcome none = Kestova("--pc factory-gpt --fail GetLogicalDriveStringsW=5 --json status");
    EXPECT_EQ(none.status, 1);
    const std::string role =
        R"("roles":[{"role":"recovery or Windows RE","reason":"type; contents not looked into"}])";
    EXPECT_NE(none.output.find(role), none.output.rfind(role));
    EXPECT_EQ(none.output.find("type and contents"), std::string::npos);
}

// Partition 6 is looked into and found, and gets no letter afterwards: only unread contents are reported.
TEST_F(Status, FoundPartitionGetsNoLetterToKeep_Status_ReportsNothingOfItsContents) {
    const Outcome outcome =
        Kestova("--pc factory-gpt --fail 'IVdsAdvancedDisk::AssignDriveLetter#2=0x80004005' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        HasSubstr(
            "  6  474.0 GiB  25.0 GiB    Windows recovery    Recovery                      -       -       Recovery  NTFS         -          -     -\n"));
}

TEST_F(Letters, WinPeMedia_Letters_MapsThemToPartitions) {
    const Outcome outcome = Kestova("--pc winpe-media letters");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "Letter  Disk  Partition  Here\n"
              "C       0     5          C\n"
              "E       0     6          D\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(Kestova("--pc winpe-media --json letters").output,
              R"({"letters":[{"letter":"C","disk":0,"partition":5,"here":"C"},)"
              R"({"letter":"E","disk":0,"partition":6,"here":"D"}]})"
              "\n");
}

TEST_F(Letters, NoLetterReadable_Letters_Remarks) {
    const std::string remark =
        "no letter was told: the installed Windows or the running system remembers none, none could be read, "
        "or none stands for a volume of both";
    const Outcome outcome = Kestova("--pc winpe-media --fail RegQueryValueExW=5 letters");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "Letter  Disk  Partition  Here\n");
    EXPECT_EQ(outcome.errors, "kestova: " + remark + "\n");
    EXPECT_EQ(Kestova("--pc winpe-media --fail RegQueryValueExW=5 --json letters").output,
              R"({"letters":[],"remark":")" + remark + R"(","remarks":[{"code":"noLetters","text":")" +
                  remark +
                  R"("}],"faultsMet":[{"fault":"RegQueryValueExW=5","met":52}]})"
                  "\n");
}

TEST_F(Letters, WinPeMedia_Letters_ChangesNothing) {
    EXPECT_EQ(Kestova("--pc winpe-media --dry-run letters").output,
              "Letter  Disk  Partition  Here\n"
              "C       0     5          C\n"
              "E       0     6          D\n"
              "Nothing would change.\n");
}

TEST_F(Letters, VolumeWithoutPlace_Letters_ListsTheLetterAlone) {
    // The first file that is opened is the batch file, then the volume twice, for its disk and its partition.
    const Outcome outcome =
        Kestova("--pc winpe-media --fail 'CreateFileW#2=5' --fail 'CreateFileW#3=5' --json letters");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                StartsWith(R"({"letters":[{"letter":"C","disk":null,"partition":null,"here":null},)"));
    EXPECT_THAT(Kestova("--pc winpe-media --fail 'CreateFileW#2=5' --fail 'CreateFileW#3=5' letters").output,
                HasSubstr("C       -     -          -\n"));
}

TEST_F(Letters, InstalledWindowsRunning_Letters_FailsWithReasons) {
    const Outcome outcome = Kestova("--pc factory-gpt --json letters");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.errors,
        "{\"error\":\"the letters of the installed Windows could not all be told: those of the running system "
        "cannot be read; its registry could not be unloaded, which needs Windows PE\",\"status\":1}\n");
    EXPECT_THAT(outcome.output, StartsWith(R"({"letters":[],"problem":"the letters of )"));
}

TEST_F(Letters, EachStepFailing_Letters_GivesItsReason) {
    const std::string told = "kestova: the letters of the installed Windows could not all be told: ";
    // The first key that is opened is the running system's, the second the installed Windows'.
    EXPECT_EQ(Kestova("--pc winpe-media --fail 'RegOpenKeyExW#1=2' letters").errors,
              told + "those of the running system cannot be read\n");
    EXPECT_EQ(Kestova("--pc winpe-media --fail 'PathFileExistsW=2' letters").errors,
              told + "it was not found, or its registry could not be loaded, which needs Windows PE\n");
    EXPECT_EQ(Kestova("--pc winpe-media --fail 'RegOpenKeyExW#2=2' letters").errors,
              told + "its registry is missing, damaged or without letters\n");
    const Outcome notUnloaded = Kestova("--pc winpe-media --fail 'ShellExecuteExW#2+=5' letters");
    EXPECT_EQ(notUnloaded.status, 1);
    EXPECT_EQ(notUnloaded.errors, told + "its registry could not be unloaded, which needs Windows PE\n");
    EXPECT_THAT(notUnloaded.output, HasSubstr("C       0     5          C\n"));
}

// The second batch file is taken for one that has ended.
TEST_F(Letters, UnloadingNotAwaited_Letters_SaysThatTheRegistryIsLoaded) {
    const Outcome outcome = Kestova("--pc winpe-media --fail 'WaitForSingleObject#2=0' letters");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(
        outcome.errors,
        "kestova: the registry of the installed Windows is still loaded: reg unload HKLM\\TEMSYSTEM unloads it\n");
    EXPECT_THAT(outcome.output, HasSubstr("C       0     5          C\n"));
}

TEST_F(Status, VolumeThatCannotBeRead_Status_ReportsTheErrorAndFails) {
    const Outcome outcome = Kestova("--pc factory-mbr --fail 'GetVolumeInformationW+=21' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("the volume C: cannot be read (error 21)"));
}

TEST_F(Status, WinPeTwoDisks_StatusInJson_IsOneObject) {
    const Outcome outcome = Kestova("--pc winpe-two-disks --json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                StartsWith(R"({"firmware":"BIOS","system":"Windows PE","windowsDirectory":"X:\\Windows",)"
                           R"("internalDisk":0,"style":"MBR","activePartition":1,"partitions":[)"
                           R"({"number":1,"offset":1048576,"size":16106127360,"type":"0x27",)"
                           R"json("typeName":"hidden recovery (0x27)","active":true,"letter":"C",)json"
                           R"("label":"Recovery","fileSystem":"NTFS","hide":false,)"
                           R"("roles":[{"role":"recovery","reason":"type"}]},)"));
    EXPECT_THAT(
        outcome.output,
        HasSubstr(
            R"("active":false,"letter":null,"label":null,"fileSystem":null,"hide":false,)"
            R"("roles":[{"role":"hibernation","reason":"type"}]}],"layout":4,)"
            R"("layoutName":"MBR, partition 2 is not labelled System Reserved","encryptedVolumes":null,)"
            R"("recoveryDisc":null,"recoveryStick":null,"cachePartition":true,)"
            R"("windows":{"disk":0,"partition":2,"letter":"D"},"disks":[)"));
}

TEST_F(Status, UnreadableLayout_Status_ReportsTheErrorAndFails) {
    // The library asks for the extents of C: three times before.
    const Outcome outcome = Kestova("--pc factory-mbr --fail 'DeviceIoControl#4=5' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kestova: the partitions of disk 0 cannot be read (error 5)\n");
    EXPECT_THAT(outcome.output, HasSubstr("Active partition   2\n"));
}

TEST_F(Status, InitializeFailing_Status_ReportsIt) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'IVdsServiceLoader::LoadService=0x80080005' status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                StartsWith("kestova: Initialize: the service could not be loaded in 20 attempts; "));
    EXPECT_THAT(outcome.output, HasSubstr("Internal disk      unknown\n"));
}

TEST_F(Status, UnreadableSystem_Status_ReportsEachPart) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail RegOpenKeyExW=5 --fail GetWindowsDirectoryW=6 --json status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.errors,
        StartsWith("{\"error\":\"the start options of the running system cannot be read (error 5); "
                   "the Windows directory cannot be read (error 6); "
                   "no internal disk was found, or it could not be told; "
                   "GetCurrentDiskType could not be answered: RegOpenKeyExW failed with 0x00000005; "));
    EXPECT_THAT(outcome.output,
                StartsWith(R"({"firmware":"BIOS","system":"unknown","windowsDirectory":null,)"));
    EXPECT_THAT(outcome.output, HasSubstr(R"(,"windows":null,"disks":[{"number":0,)"));
    EXPECT_THAT(outcome.output, HasSubstr(R"(,"record":null,"problem":"the start options of )"));
}

TEST_F(Status, FirmwareErrors_Status_ShowsUefiFor998Only) {
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

TEST_F(Status, TwoActivePartitions_Status_Remarks) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json call SetActive 3").status, 0);
    const Outcome outcome = Kestova("--pc pc.json --json status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "kestova: " + twoActiveAsDescribed + "\n");
    EXPECT_THAT(outcome.output, EndsWith(",\"remark\":\"" + twoActiveAsDescribed +
                                         R"(","remarks":[{"code":"twoActiveFlags","text":")" +
                                         twoActiveAsDescribed + "\"}]}\n"));
}

TEST_F(Boot, FactoryMbr_BootRecovery_SwitchesAndShowsTheChanges) {
    const Outcome outcome = Kestova("--pc factory-mbr boot recovery");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "SetRcvprtActive() = 0: done\n"
              "Changed:\n"
              "  disk 0, partition 1: active now\n"
              "  disk 0, partition 1: given letter E\n"
              "  disk 0, partition 1: file SystemVolume.ini created:\n"
              "    [System]\n"
              "    Active=2\n");
    EXPECT_EQ(outcome.errors, "kestova: " + twoActiveAsDescribed + "\n");
}

TEST_F(Boot, FactoryMbr_BootSystem_HasNothingToDo) {
    const Outcome outcome = Kestova("--pc factory-mbr boot system");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("SetSystemActive() = 0: there was nothing to do\n"));
}

TEST_F(Boot, FlagNotSet_BootRecovery_ExitsWithTheResultCode) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --fail 'IVdsAdvancedDisk::ChangeAttributes#1=0x80004005' boot recovery");
    EXPECT_EQ(outcome.status, 5);
    EXPECT_THAT(outcome.output, StartsWith("SetRcvprtActive() = 5: the flag could not be set; "));
}

TEST_F(Boot, FactoryGpt_BootRecovery_ExitsWithItsCodeAndReport) {
    const Outcome outcome = Kestova("--pc factory-gpt --json boot recovery");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        StartsWith(R"({"operation":"SetRcvprtActive","arguments":{},"result":1,"outputs":{},"log":[)"));
}

TEST_F(Call, FactoryMbr_CallGetDriveLetter_ShowsResultAndWords) {
    const Outcome outcome = Kestova("--pc factory-mbr call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "GetDriveLetter(0, 2) = C: its letter\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST_F(Call, LetterInEachForm_CallIsVistaOS_AcceptsIt) {
    for (const char* const letter : {"C", "c", "C:", "c:"})
        EXPECT_EQ(Kestova("--pc factory-mbr call IsVistaOS " + std::string(letter)).output,
                  "IsVistaOS(C) = 1: yes\n");
}

TEST_F(Call, ArgumentLeftOut_Call_UsesItsDefault) {
    EXPECT_THAT(Kestova("--pc winpe-media --json call GetWinDriveLetters").output,
                HasSubstr(R"("arguments":{"count":26},"result":1,"outputs":{"records":[)"
                          R"({"iDiskNum":0,"iPartNum":5,"cDriveLetter":"C"},)"
                          R"({"iDiskNum":0,"iPartNum":6,"cDriveLetter":"E"}]},)"));
    const Outcome cut = Kestova("--pc winpe-media call GetWinDriveLetters 1");
    EXPECT_EQ(cut.status, 1);
    EXPECT_THAT(cut.output, EndsWith("  records = C: disk 0, partition 5\n"));
    EXPECT_THAT(Kestova("--pc winpe-media call GetWinDriveLetters 0").output, EndsWith("  records = none\n"));
}

TEST_F(Call, SmallBuffer_CallGetAllEncryptVolume_CutsTheLetters) {
    WriteFile("two.json",
              R"({"encryptableVolumes": [{"deviceId": "a", "driveLetter": "E:", "encryptionMethod": 7},
                                         {"deviceId": "b", "driveLetter": "C:", "encryptionMethod": 7}]})");
    const std::pair<const char*, const char*> rows[] = {{"", "buffer = EC\n"},
                                                        {"3", "buffer = EC\n"},
                                                        {"2", "buffer = E\n"},
                                                        {"1", "buffer = : empty\n"},
                                                        {"0", "buffer = : empty\n"}};
    for (const auto& [size, buffer] : rows)
        EXPECT_THAT(Kestova(std::string("--pc two.json call GetAllEncryptVolume ") + size).output,
                    EndsWith(buffer));
}

TEST_F(Call, VolumeWithoutLetter_CallGetEncryptVolume_ReturnsNul) {
    WriteFile("one.json", R"({"encryptableVolumes": [{"deviceId": "a", "encryptionMethod": 7}]})");
    const Outcome outcome = Kestova("--pc one.json call GetEncryptVolume");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "GetEncryptVolume() = NUL: it has no letter\n");
    EXPECT_THAT(Kestova("--pc one.json --json call GetEncryptVolume").output,
                HasSubstr(R"("result":"\u0000",)"));
}

TEST_F(Call, OperationWithoutResult_Call_ShowsNone) {
    const Outcome outcome = Kestova("--pc factory-gpt call RemoveRecoveryPartition");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "RemoveRecoveryPartition()\nNothing changed.\n");
    EXPECT_THAT(Kestova("--pc factory-gpt --json call RemoveRecoveryPartition").output,
                HasSubstr(R"("result":null,"outputs":{},)"));
}

TEST_F(Call, FactoryGpt_CallGetDiskStyle_ShowsTheOutput) {
    const Outcome outcome = Kestova("--pc factory-gpt call GetDiskStyle");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "GetDiskStyle() = 1: asked; the style tells the rest\n  style = 2: GPT\n");
}

TEST_F(Call, FailureResult_Call_ExitsWith1) {
    const Outcome outcome = Kestova("--pc factory-mbr call GetDriveLetter 0 4");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "GetDriveLetter(0, 4) = 0: it has none\n");
}

TEST_F(Call, NegativeNumber_Call_IsAnArgument) {
    const Outcome outcome = Kestova("--pc factory-mbr call SetActive -1");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "SetActive(-1) = 1: failed\nNothing changed.\n");
}

TEST_F(Call, FactoryMbr_CallClearActive_ShowsTheChanges) {
    EXPECT_EQ(Kestova("--pc factory-mbr call ClearActive").output,
              "ClearActive() = 0: done\nChanged:\n  disk 0, partition 2: no longer active\n");
}

TEST_F(Call, FactoryMbr_CallInitialize_InitializesOnce) {
    const Outcome outcome = Kestova("--pc factory-mbr --log log call Initialize true");
    EXPECT_EQ(outcome.output, "Initialize(true) = 1: the service is ready\n");
    EXPECT_EQ(Shell("grep -c Initialize log").output, "2\n");
}

TEST_F(Script, FactoryMbr_Run_CallsEachLineOnOneObject) {
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

TEST_F(Script, FailingLine_Run_ContinuesAndExitsWith1) {
    const Outcome outcome = Kestova("--pc factory-mbr run -", "SetActive 9\nSetActive 1\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, EndsWith("SetActive(9) = 1: failed\nSetActive(1) = 0: done\n"));
}

TEST_F(Script, NoInitialize_Run_OperationsFail) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --no-initialize run -", "GetFirstInternalDriveNumber\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "GetFirstInternalDriveNumber() = -1: there is none, or it could not be told\n");
}

TEST_F(Script, WrongLine_Run_NamesItAndRunsNothing) {
    WriteFile("switch.txt", "SetActive 1\n\nSetActiv 2\n");
    const Outcome outcome = Kestova("--pc factory-mbr run switch.txt");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("kestova: switch.txt:3: there is no operation 'SetActiv'; "
                                           "did you mean SetActive?\n"));
}

TEST_F(Script, ByteOrderMark_Run_IsSkipped) {
    EXPECT_EQ(Kestova("--pc factory-mbr run -", "\xEF\xBB\xBFGetDriveLetter 0 2\n").status, 0);
}

TEST_F(Script, CommandInScript_Run_GivesAHint) {
    EXPECT_THAT(Kestova("--pc factory-mbr run -", "status\n").errors,
                StartsWith("kestova: standard input:1: 'status' is a command; only operations stand in a "
                           "script (kestova operations lists them)\n"));
}

TEST_F(Script, Utf16Script_Run_IsRefused) {
    WriteFile("wide.txt", std::string("SetActive 1\nS\0e\0t\0", 18));
    EXPECT_THAT(Kestova("--pc factory-mbr run wide.txt").errors,
                StartsWith("kestova: wide.txt:2: not text; a script is written in UTF-8\n"));
}

TEST_F(Script, EndlessScript_Run_IsRefused) {
    const Outcome outcome = Kestova("run /dev/zero");

    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, StartsWith("kestova: /dev/zero: larger than 1 MiB, so no script\n"));
    EXPECT_EQ(Shell("head -c 3000000 /dev/zero | tr '\\0' '\\n' | '" KESTOVA_PROGRAM "' run -")
                  .errors.rfind("kestova: standard input: larger than 1 MiB, so no script\n", 0),
              0u);
}

TEST_F(Script, MissingScriptOrFolder_Run_IsRefused) {
    EXPECT_THAT(Kestova("run none.txt").errors, StartsWith("kestova: none.txt: there is no such file\n"));
    EXPECT_THAT(Kestova("run /").errors, StartsWith("kestova: /: cannot be read\n"));
}

TEST_F(Lists, Operations_InJson_NameEveryPublicOperation) {
    const std::string names =
        "sed -n '/^  public:/,/^  private:/p' '" KESTOVA_SOURCE_FOLDER
        "/manager/kestova.h' | sed -nE 's/^    (int|WCHAR|DWORD|void) ([A-Za-z]+)\\(.*/\\2/p' | sort";
    const std::string listed =
        "'" KESTOVA_PROGRAM "' operations --json | sed -E 's/.*\"operation\":\"([^\"]*)\".*/\\1/' | sort";
    const std::string declared = Shell(names).output;
    EXPECT_THAT(declared, HasSubstr("SetRcvprtActive\n"));
    EXPECT_EQ(Shell(listed).output, declared);
}

TEST_F(Lists, Operations_InText_ListArgumentsAndResults) {
    EXPECT_THAT(Kestova("operations").output, HasSubstr("GetDriveLetter DISK PARTITION\n"
                                                        "  The letter of a partition.\n"
                                                        "  disk: number of a disk, from 0\n"
                                                        "  partition: number of a partition, from 1\n"
                                                        "  result:\n"
                                                        "    0     it has none\n"
                                                        "    else  its letter\n"));
}

TEST_F(Lists, Operations_OptionalArgumentOrNoResult_AreMarked) {
    const std::string text = Kestova("operations").output;
    EXPECT_THAT(text,
                HasSubstr("GetAllEncryptVolume [SIZE]\n"
                          "  The letters of all encrypted volumes.\n"
                          "  buffer (output): the letters\n"
                          "      empty\n"
                          "  size: characters that the buffer has room for, with the terminator; 33 when "
                          "left out\n"));
    EXPECT_THAT(text,
                HasSubstr("RemoveRecoveryPartition\n"
                          "  Takes the letter of the partition that AssignRecoveryPartition last found.\n"
                          "  without a result\n"));
    const std::string json = Kestova("operations --json").output;
    for (const char* const kind : {"flag", "number", "letter", "text", "list"})
        EXPECT_THAT(json, HasSubstr("\"kind\":\"" + std::string(kind) + "\""));
    EXPECT_THAT(json, HasSubstr(R"("values":[],"default":26})"));
}

TEST_F(Lists, Pcs_InJson_NameTheMachines) {
    const Outcome outcome = Kestova("pcs --json");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith(R"({"name":"factory-mbr","summary":)"));
    EXPECT_THAT(outcome.output, HasSubstr("{\"name\":\"winpe-two-disks\","));
    EXPECT_THAT(outcome.output, HasSubstr("{\"name\":\"winpe-media\","));
}

TEST_F(Lists, Calls_InJson_NameEveryCallOfTheEmulatedPc) {
    std::string expected;
    for (const machine::CallInfo& call : machine::AllCalls())
        expected += std::string(call.name) + (call.changesPc ? " true\n" : " false\n");
    EXPECT_EQ(
        Shell("'" KESTOVA_PROGRAM
              "' calls --json | sed -E 's/.*\"call\":\"([^\"]*)\",.*\"changesPc\":([a-z]*),.*/\\1 \\2/'")
            .output,
        expected);
}

TEST_F(Lists, Operations_EachFailure_SaysWhatToDo) {
    std::istringstream lines(Kestova("operations --json").output);
    int failures = 0;
    for (std::string line; std::getline(lines, line);) {
        const json operation = json::parse(line);
        for (const json& result : operation["results"]) {
            SCOPED_TRACE(operation["operation"].get<std::string>() + " " + result["name"].get<std::string>());
            const std::string advice = result["advice"];
            EXPECT_EQ(result["failure"], !advice.empty());
            if (advice == "undo" || advice == "go-on") EXPECT_NE(result["remedy"], "");
            failures += result["failure"] ? 1 : 0;
        }
    }
    EXPECT_GT(failures, 40);
    EXPECT_THAT(Kestova("operations --json").output,
                HasSubstr(R"("name":"RECORD_NOT_WRITTEN","advice":"retry","remedy":""},{"value":5,)"));
}

TEST_F(Lists, Calls_EachKindOfFailure_HasItsWords) {
    const Outcome outcome = Kestova("calls --json");
    EXPECT_EQ(outcome.status, 0);
    for (const char* const line :
         {R"({"call":"CoCreateInstance","failsWith":"HRESULT","changesPc":false,)",
          R"({"call":"RegCloseKey","failsWith":"status","changesPc":true,)",
          R"({"call":"DeviceIoControl","failsWith":"FALSE and last error","changesPc":false,)",
          R"({"call":"GetWindowsDirectoryW","failsWith":"0 and last error","changesPc":false,)",
          R"({"call":"GlobalAlloc","failsWith":"null and last error","changesPc":false,)",
          R"({"call":"CreateFileW","failsWith":"INVALID_HANDLE_VALUE and last error","changesPc":true,)",
          R"({"call":"GetDriveTypeW","failsWith":"value","changesPc":false,)"})
        EXPECT_THAT(outcome.output, HasSubstr(line));
    EXPECT_THAT(
        outcome.output,
        HasSubstr(
            R"("codes":[{"name":"E_ACCESSDENIED","code":2147942405},{"name":"0x800706BA","code":2147944122}]})"
            "\n"));
    EXPECT_THAT(Kestova("calls").output,
                StartsWith("Call                                    Fails with                           "
                           "Changes the PC  Documented codes\n"
                           "CloseHandle                             FALSE and last error                 "
                           "yes             ERROR_INVALID_HANDLE\n"));
}

}  // namespace
