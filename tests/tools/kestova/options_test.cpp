// The options, wrong use, and the JSON that scripts read.

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "tests/support/program/program.h"

namespace {

using testing::Contains;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Json = ProgramTest;
using Trace = ProgramTest;
using Log = ProgramTest;
using Fail = ProgramTest;
using DryRun = ProgramTest;
using Save = ProgramTest;
using Help = ProgramTest;

// A folder in which every user may make files, as /tmp.
class SharedFolder : public ProgramTest {
  protected:
    SharedFolder() { EXPECT_EQ(Shell("mkdir shared && chmod 1777 shared").status, 0); }

    // False for anybody but root.
    bool GiveAway(const std::string& name, uid_t user = 12345) {
        return lchown((Folder() / name).c_str(), user, static_cast<gid_t>(-1)) == 0;
    }
};

struct Mistake {
    const char* name;
    const char* words;
    int status;
    const char* message;
};

void PrintTo(const Mistake& mistake, std::ostream* out) {
    *out << mistake.name;
}

class WrongUse : public ProgramTest, public testing::WithParamInterface<Mistake> {};

TEST_P(WrongUse, CommandLine_Run_FailsWithAMessageOnStandardErrorOnly) {
    const Outcome outcome = Kestova(GetParam().words);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith(std::string("kestova: ") + GetParam().message));
}

const Mistake mistakes[] = {
    {"NoCommand", "", 2, "no command was given\n"},
    {"Command", "stauts", 2, "there is no command 'stauts'; did you mean status?\n"},
    {"OptionWithoutAQuestion", "--yess status", 2, "there is no option '--yess'\n"},
    {"OptionForDirtyVolumes", "--force-dity status", 2, "there is no option '--force-dity'\n"},
    {"OptionWithoutAJournal", "--no-journl status", 2,
     "there is no option '--no-journl'; did you mean --journal?\n"},
    {"CommandThatWritesATable", "repair-tabel", 2, "there is no command 'repair-tabel'\n"},
    {"CommandNearOnesThatWrite", "recover-table", 2, "there is no command 'recover-table'\n"},
    {"Option", "--imgae=x status", 2, "there is no option '--imgae'; did you mean --image?\n"},
    {"Operation", "call GetDriveLeter 0 1", 2,
     "there is no operation 'GetDriveLeter'; did you mean GetDriveLetter?\n"},
    {"OperationMissing", "call", 2, "usage: kestova [PC] call OPERATION [ARG...]\n"},
    {"LettersWithAnArgument", "letters C", 2, "usage: kestova [PC] letters\n"},
    {"Target", "boot recvery", 2, "boot: there is no system to boot 'recvery'; did you mean recovery?\n"},
    {"ArgumentMissing", "call SetActive", 2, "SetActive takes 1 argument, not 0: SetActive PARTITION\n"},
    {"ArgumentTooMany", "call ClearActive 1", 2, "ClearActive takes 0 arguments, not 1: ClearActive\n"},
    {"ArgumentNoNumber", "call SetActive one", 2, "partition: 'one' is not a number\n"},
    {"ArgumentTooLarge", "call SetActive 2147483648", 2, "partition: 2147483648 does not fit into 32 bits\n"},
    {"ArgumentNoLetter", "call IsVistaOS CD", 2, "letter: 'CD' is not a letter from A to Z\n"},
    {"ArgumentNoLetterAtAll", "call IsVistaOS :", 2, "letter: ':' is not a letter from A to Z\n"},
    {"ArgumentNegativeCount", "call GetWinDriveLetters -1", 2, "count: -1 is not from 0 to 65536\n"},
    {"ArgumentTooManyForLeftOut", "call GetWinDriveLetters 1 2", 2,
     "GetWinDriveLetters takes 0 to 1 argument, not 2: GetWinDriveLetters [COUNT]\n"},
    {"ArgumentNoFlag", "call Initialize maybe", 2, "reserved: 'maybe' is neither true nor false\n"},
    {"Machine", "--pc factry-mbr status", 2,
     "--pc: there is no machine or file 'factry-mbr'; did you mean factory-mbr?\n"},
    {"DescriptionMissing", "--pc ./none.json status", 3, "./none.json: there is no such file\n"},
    {"DescriptionFolder", "--pc / status", 3, "/: cannot be read\n"},
    {"FaultCall", "--fail CreateFile=1 status", 2,
     "--fail 'CreateFile=1': there is no call 'CreateFile'; did you mean CreateFileW?\n"},
    {"FaultWithoutCode", "--fail CreateFileW status", 2, "--fail 'CreateFileW': no '=CODE'\n"},
    {"FaultCode", "--fail CreateFileW=0x1ffffffff status", 2,
     "--fail 'CreateFileW=0x1ffffffff': '0x1ffffffff' is not a code of 32 bits\n"},
    {"FaultCodeMisspelt", "--fail CreateFileW=ERROR_ACCES_DENIED status", 2,
     "--fail 'CreateFileW=ERROR_ACCES_DENIED': 'ERROR_ACCES_DENIED' is not a code of 32 bits; did you mean ERROR_ACCESS_DENIED?\n"},
    {"FaultCodeBelowAll", "--fail CreateFileW=-2147483649 status", 2,
     "--fail 'CreateFileW=-2147483649': '-2147483649' is not a code of 32 bits\n"},
    {"FaultNumber", "--fail 'CreateFileW#0=1' status", 2,
     "--fail 'CreateFileW#0=1': after '#' comes the number of the call, from 1\n"},
    {"TwoPcs", "--pc factory-mbr --image x status", 2, "--image and --pc cannot be given together\n"},
    {"TwoSystems", "--windows --pe status", 2, "--windows and --pe cannot be given together\n"},
    {"PcEmpty", "--pc '' status", 2, "--pc: the value is empty\n"},
    {"LogEmpty", "--log '' status", 2, "--log: the value is empty\n"},
    {"SaveEmpty", "--save '' status", 2, "--save: the value is empty\n"},
    {"ImageEmpty", "--image '' status", 2, "--image: the value is empty\n"},
    {"PcTwice", "--pc a --pc b status", 2, "--pc can be given only once\n"},
    {"PcWithNothingBehindEquals", "--pc= factory-mbr status", 2, "--pc= needs a value\n"},
    {"ImageWithNothingBehindEquals", "--image= disk.img status", 2, "--image= needs a value\n"},
    {"SaveWithNothingBehindEquals", "status --save= --quiet", 2, "--save= needs a value\n"},
    {"FormatWithNothingBehindEquals", "report --format=", 2, "--format= needs a value\n"},
    {"PcWithoutValue", "status --pc", 2, "--pc needs a value\n"},
    {"PcsOfAPc", "--pc factory-mbr pcs", 2, "pcs does not use --pc\n"},
    {"CallsOfAPc", "--pc factory-mbr calls", 2, "calls does not use --pc\n"},
    {"OperationsWithLog", "--log x operations", 2, "operations does not use --log\n"},
    {"StatusWithTrace", "--trace status", 2, "status does not use --trace\n"},
    {"SaveFolder", "--pc factory-mbr --save none/pc.json boot recovery", 2,
     "--save: none/pc.json cannot be written: its folder is missing\n"},
    {"NoPcToBoot", "boot recovery", 2,
     "no PC was named; what is to be changed is a disk image (--image), or "},
    {"NoPcToCall", "call SetActive 3", 2, "no PC was named; "},
    {"LogFolder", "--log /nowhere/log status", 2, "--log: /nowhere/log cannot be written\n"},
};

INSTANTIATE_TEST_SUITE_P(Each, WrongUse, testing::ValuesIn(mistakes),
                         [](const auto& tested) { return tested.param.name; });

// A flag has no value that could be missing, and a value can look like an option.
TEST_F(Json, EqualsSignWithNothingBehindIt_OfAFlag_IsTaken) {
    EXPECT_EQ(Kestova("--json= pcs").status, 0);
    EXPECT_EQ(Kestova("--image= status").status, 2);
    EXPECT_EQ(Kestova("--pc factory-mbr --log --image= status").status, 0);
}

TEST_F(Json, Schema_EachNamedMachine_IsValid) {
    WriteFile("schema.json", Kestova("--schema").output);
    std::istringstream machines(Shell("'" KESTOVA_PROGRAM "' pcs | cut -d ' ' -f 1").output);
    int count = 0;
    for (std::string name; machines >> name; ++count) {
        ASSERT_EQ(Kestova("--save pc.json --overwrite status --pc " + name).status, 0) << name;
        EXPECT_EQ(Shell("jsonschema -i pc.json schema.json").output, "") << name;
        EXPECT_EQ(Shell("jsonschema -i pc.json schema.json").status, 0) << name;
    }
    EXPECT_GT(count, 3);
}

TEST_F(Json, Schema_CodesAsNameAndNegative_AreValid) {
    WriteFile("schema.json", Kestova("--schema").output);
    WriteFile("pc.json", R"({"faults": [{"call": "DeleteFileW", "code": "ERROR_ACCESS_DENIED"},
      {"call": "IWbemServices::ExecMethod", "code": -2147467259}]})");
    EXPECT_EQ(Shell("jsonschema -i pc.json schema.json").output, "");
    EXPECT_EQ(Kestova("--pc pc.json --quiet call GetDiskStyle").errors, "");
}

TEST_F(Json, Schema_DescriptionWithAMistake_IsInvalid) {
    WriteFile("schema.json", Kestova("--schema").output);
    for (const std::string mistake :
         {R"({"nmae": "x"})", R"({"disks": [{"busType": "sata"}]})",
          R"({"disks": [{"number": 0, "size": "15GB"}]})", R"({"firmware": {"kind": "uefy"}})",
          R"({"volumes": [{"letters": "c"}]})", R"({"faults": [{"call": "CreateFileW", "code": "e_fail"}]})",
          R"({"disks": [{"number": 0, "image": "x.img", "size": 512}]})"}) {
        WriteFile("pc.json", mistake);
        EXPECT_NE(Shell("jsonschema -i pc.json schema.json").status, 0) << mistake;
    }
}

// What each command writes, with as many of its keys as it can have.
TEST_F(Json, Schema_EachCommand_IsThatOfItsOutput) {
    const std::vector<std::pair<std::string, std::string>> commands = {
        {"status", "--pc factory-gpt --ledger --fail DeleteFileW=5 status"},
        {"status", "--pc two.json status"},
        {"letters", "--pc winpe-media letters"},
        {"letters", "--pc winpe-media --fail RegQueryValueExW=5 letters"},
        {"files", "--pc factory-mbr --hash files 'C:\\Windows'"},
        {"check", "--pc factory-mbr check"},
        {"boot", "--pc factory-gpt boot recovery"},
        {"boot", "--pc factory-mbr --trace --fail GetDriveTypeW#1=3 boot recovery"},
        {"call", "--pc factory-mbr call GetDriveLetter 0 9"},
        {"call", "--pc factory-mbr --fail PathFileExistsW=5 call IsVistaOS C"},
        {"run", "--pc factory-mbr run script"},
        {"operations", "operations"},
        {"pcs", "pcs"},
        {"calls", "calls"},
        {"validate", "validate two.json script none.json"},
        {"survey", "survey two.json none.json --quiet --script script"},
        {"compare", "compare factory-mbr two.json"},
        {"conform", "--pc factory-mbr conform two.json"},
    };
    WriteFile("script", "SetActive 3\nGetWinDriveLetters\n");
    ASSERT_EQ(Kestova("--pc factory-mbr --save two.json call SetActive 3").status, 0);
    for (const auto& [command, words] : commands) {
        WriteFile("schema.json", Kestova(command + " --schema").output);
        std::istringstream lines(Kestova("--json " + words).output);
        std::string instances;
        int number = 0;
        for (std::string line; std::getline(lines, line); ++number) {
            WriteFile("line" + std::to_string(number), line);
            instances += " -i line" + std::to_string(number);
        }
        EXPECT_GT(number, 0) << words;
        const Outcome outcome = Shell("jsonschema" + instances + " schema.json");
        EXPECT_EQ(outcome.status, 0) << words << outcome.errors << outcome.output;
    }
}

TEST_F(Json, Schema_CommandWithoutJson_IsWrongUse) {
    EXPECT_EQ(Kestova("help --schema").errors,
              "kestova: help writes no JSON\n(kestova --help tells what there is)\n");
}

// A script reads each of them as an object of its own line.
TEST_F(Json, EachKindOfError_InJson_IsAnObjectWithItsStatus) {
    const std::vector<std::pair<std::string, Outcome>> errors = {
        {"--json --pc factory-mbr bo", {2, "", "there is no command 'bo'"}},
        {"--json --nowhere status", {2, "", "there is no option '--nowhere'"}},
        {"--json --pc none.json status", {3, "", "none.json: there is no such file"}},
        {"--json --pc factory-mbr files 9",
         {1, "", "there is no partition 9 on disk 0, which has 1, 2, 3, 4"}},
    };
    for (const auto& [words, expected] : errors) {
        const Outcome outcome = Kestova(words);
        EXPECT_EQ(outcome.status, expected.status) << words;
        EXPECT_EQ(outcome.output, "") << words;
        EXPECT_EQ(outcome.errors, "{\"error\":\"" + expected.errors +
                                      "\",\"status\":" + std::to_string(expected.status) + "}\n");
    }
}

TEST_F(Json, WordBehindTheOptions_Error_IsText) {
    EXPECT_THAT(Kestova("-- --json").errors, StartsWith("kestova: "));
}

TEST_F(Json, OutputOrLogThatCannotBeWritten_InJson_IsAnObject) {
    EXPECT_EQ(Shell("'" KESTOVA_PROGRAM "' --pc factory-mbr --json status >/dev/full").errors,
              "{\"error\":\"standard output cannot be written\",\"status\":1}\n");
    EXPECT_EQ(Kestova("--pc factory-mbr --json --log /dev/full status").errors,
              "{\"error\":\"/dev/full: cannot be written\",\"status\":1}\n");
}

TEST_F(Json, FactoryMbr_Call_WritesTheDocumentedObject) {
    const Outcome outcome = Kestova("--pc factory-mbr --json call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.output,
        R"({"operation":"GetDriveLetter","arguments":{"disk":0,"partition":2},"result":"C","outputs":{},)"
        R"("log":[{"level":4,"text":"Kestova::GetDriveLetter\tStart"},)"
        R"({"level":4,"text":"Kestova::GetDriveLetter\tEnd. Driver is C"}]})"
        "\n");
}

TEST_F(Json, FactoryMbr_Run_WritesALineForEachStepOfTheObjectsLife) {
    const Outcome outcome = Kestova("--pc factory-mbr --json run -", "GetDriveLetter 0 3\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.output,
        R"({"operation":"Kestova","arguments":{},"result":null,"outputs":{},"log":[)"
        R"({"level":4,"text":"Kestova::Kestova\tStart"},{"level":4,"text":"Kestova::Kestova\tEnd"}]})"
        "\n"
        R"({"operation":"Initialize","arguments":{"reserved":false},"result":1,"outputs":{},"log":[)"
        R"({"level":4,"text":"Kestova::Initialize\tStart"},)"
        R"({"level":4,"text":"Kestova::Initialize\tEnd. bRet = 1"}]})"
        "\n"
        R"({"operation":"GetDriveLetter","arguments":{"disk":0,"partition":3},"result":"D","outputs":{},)"
        R"("log":[{"level":4,"text":"Kestova::GetDriveLetter\tStart"},)"
        R"({"level":4,"text":"Kestova::GetDriveLetter\tEnd. Driver is D"}]})"
        "\n"
        R"({"operation":"~Kestova","arguments":{},"result":null,"outputs":{},"log":[)"
        R"({"level":4,"text":"Kestova::~Kestova\tStart"},{"level":4,"text":"Kestova::CleanMap\tStart"},)"
        R"({"level":4,"text":"Kestova::CleanMap\tEnd"},{"level":4,"text":"Kestova::~Kestova\tEnd"}]})"
        "\n");
}

TEST_F(Json, FactoryMbr_CallGetDiskStyle_NamesTheOutputAsTheClassDoes) {
    EXPECT_THAT(
        Kestova("--pc factory-mbr --json call GetDiskStyle").output,
        StartsWith(R"({"operation":"GetDiskStyle","arguments":{},"result":1,"outputs":{"style":1},"log":[)"));
}

TEST_F(Trace, FactoryMbr_CallInJson_InterleavesCallsAndRecords) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --json --trace --fail 'GetDriveTypeW=3' call GetDriveLetter 0 9");
    EXPECT_THAT(outcome.output,
                HasSubstr(R"(,"trace":[{"level":4,"text":"Kestova::GetDriveLetter\tStart"},)"
                          R"({"call":"GetDriveTypeW","arguments":["A:"],"result":"3","injected":true},)"
                          R"({"call":"CreateFileW","arguments":["\\\\.\\A:")"));
    EXPECT_THAT(outcome.output, EndsWith(R"({"level":4,"text":"Kestova::GetDriveLetter\tEnd. Driver is 0"}],)"
                                         R"("faultsMet":[{"fault":"GetDriveTypeW=3","met":26}]})"
                                         "\n"));
}

TEST_F(Trace, FactoryMbr_CallInText_PrecedesTheResult) {
    const Outcome outcome = Kestova("--pc factory-mbr --trace call GetDriveLetter 0 2");
    EXPECT_THAT(outcome.output,
                StartsWith("  log 4  Kestova::GetDriveLetter\tStart\n  GetDriveTypeW(A:) = 1\n"));
    EXPECT_THAT(outcome.output, EndsWith("GetDriveLetter(0, 2) = C: its letter\n"));
}

TEST_F(Log, FactoryMbr_Call_LogsEachRecordOfTheObjectsLife) {
    EXPECT_EQ(Kestova("--pc factory-mbr --no-initialize --log log call GetDriveLetter 0 2").status, 0);
    EXPECT_EQ(ReadFile("log"),
              "4\tKestova::Kestova\tStart\n4\tKestova::Kestova\tEnd\n"
              "4\tKestova::GetDriveLetter\tStart\n4\tKestova::GetDriveLetter\tEnd. Driver is C\n"
              "4\tKestova::~Kestova\tStart\n4\tKestova::CleanMap\tStart\n"
              "4\tKestova::CleanMap\tEnd\n4\tKestova::~Kestova\tEnd\n");
}

TEST_F(Log, RecordWithNul_Call_LogsOneLine) {
    WriteFile(
        "pc.json",
        R"({"encryptableVolumes": [{"deviceId": "\\\\?\\Volume{1}\\", "encryptionMethod": "aes-256"}]})");
    EXPECT_EQ(Kestova("--pc pc.json --log log call GetEncryptVolume").status, 0);
    EXPECT_THAT(ReadFile("log"), HasSubstr("\n4\tKestova::GetEncryptVolume\tEnd. cDriveLetter = \\0\n"));
    EXPECT_THAT(Kestova("--pc pc.json --trace call GetEncryptVolume").output,
                HasSubstr("\n  log 4  Kestova::GetEncryptVolume\tEnd. cDriveLetter = \\0\n"));
}

TEST_F(Log, JsonRequested_ShownLog_GoesToStandardError) {
    const Outcome outcome = Kestova("--pc factory-mbr --json --log - call GetDriveLetter 0 2");
    EXPECT_THAT(outcome.output, StartsWith("{\"operation\""));
    EXPECT_THAT(outcome.errors, StartsWith("4\tKestova::Kestova\tStart\n"));
    EXPECT_THAT(Kestova("--pc factory-mbr --log - call GetDriveLetter 0 2").output,
                StartsWith("4\tKestova::Kestova\tStart\n"));
}

TEST_F(Fail, FaultFromFirstCallOn_BootRecovery_MeetsTheRestoringCallToo) {
    const Outcome outcome = Kestova(
        "--pc factory-mbr --trace --fail 'IVdsAdvancedDisk::ChangeAttributes#1+=0x80004005' boot recovery");
    EXPECT_EQ(outcome.status, 5);
    size_t count = 0;
    for (size_t at = 0; (at = outcome.output.find("0x80004005  (injected)", at)) != std::string::npos; ++at)
        ++count;
    EXPECT_EQ(count, 2u);
}

TEST_F(Fail, EveryNameFromOneCallOn_BootRecovery_FailsAllLaterCalls) {
    const Outcome outcome = Kestova("--pc factory-mbr --trace --fail '*#9+=0x80070005' boot recovery");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("  (injected)"));
    EXPECT_EQ(Kestova("--pc factory-mbr --fail '*#100000+=0x80070005' boot recovery").status, 0);
}

TEST_F(Fail, InitializeFailing_Call_ReportsItAndContinues) {
    const Outcome outcome = Kestova(
        "--pc factory-mbr --fail 'IVdsServiceLoader::LoadService=0x80080005' call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "kestova: Initialize: the service could not be loaded in 20 attempts\n");
}

TEST_F(DryRun, FactoryMbr_CallSetActive_ShowsWhatWouldChange) {
    const Outcome outcome = Kestova("--pc factory-mbr --dry-run call SetActive 3");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "SetActive(3) = 0: done\n"
              "Would change:\n"
              "  disk 0, partition 3: active now\n");
    EXPECT_THAT(Kestova("--pc factory-mbr --dry-run status").output, EndsWith("Nothing would change.\n"));
}

TEST_F(DryRun, JsonRequested_CallClearActive_ShowsChangesOnStandardError) {
    const Outcome outcome = Kestova("--pc factory-mbr --dry-run --json call ClearActive");
    EXPECT_EQ(outcome.errors, "Would change:\n  disk 0, partition 2: no longer active\n");
}

TEST_F(Save, SwitchedPc_BootSystem_ContinuesFromTheSavedState) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json boot recovery").status, 0);
    const Outcome outcome = Kestova("--pc pc.json --save pc.json boot system");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("  disk 0, partition 1: file SystemVolume.ini deleted\n"));
    EXPECT_FALSE(std::filesystem::exists(Folder() / "pc.json.new"));
}

TEST_F(Save, UnwritableFile_Status_ExitsWith1) {
    const Outcome outcome = Kestova("--pc factory-mbr --save /proc/pc.json status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(
        outcome.errors,
        StartsWith("kestova: --save: /proc/pc.json cannot be written: its folder takes no new file\n"));
}

// As a log that cannot be written: before anything is done, with the same status.
TEST_F(Save, FolderThatTakesNoFile_BootRecovery_IsRefusedAsALogIs) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json status").status, 0);
    const std::string before = ReadFile("pc.json");
    for (const std::string option : {"--save /proc/new.json", "--log /proc/new.log"}) {
        const Outcome outcome = Kestova("--pc pc.json " + option + " boot recovery");
        EXPECT_EQ(outcome.status, 2) << option;
        EXPECT_EQ(outcome.output, "") << option;
    }
    EXPECT_EQ(ReadFile("pc.json"), before);
}

TEST_F(Save, DryRun_Status_IsWrongUse) {
    const Outcome outcome = Kestova("--pc factory-mbr --dry-run --save pc.json status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_FALSE(std::filesystem::exists(Folder() / "pc.json"));
}

TEST_F(Save, ExistingLinkedFile_Call_KeepsModeLinkAndNeighbours) {
    WriteFile("pc.json", "{}");
    WriteFile("pc.json.new", "mine");
    EXPECT_EQ(Shell("chmod 640 pc.json && ln -s pc.json link.json").status, 0);
    EXPECT_EQ(Kestova("--pc factory-mbr --save link.json call GetDriveLetter 0 2").status, 0);
    EXPECT_EQ(ReadFile("pc.json.new"), "mine");
    EXPECT_EQ(Shell("stat -c %a pc.json; test -L link.json; ls pc.json*").output,
              "640\npc.json\npc.json.new\n");
    EXPECT_NE(ReadFile("pc.json"), "{}");
}

TEST_F(Save, FullLog_Call_SavesAllTheSame) {
    const Outcome outcome =
        Kestova("--pc factory-mbr --log /dev/full --save pc.json call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "kestova: /dev/full: cannot be written\n");
    EXPECT_EQ(Kestova("--pc pc.json call GetDriveLetter 0 2").status, 0);
}

TEST_F(Save, SetUserIdFile_Call_KeepsOnlyItsPermissions) {
    EXPECT_EQ(Shell("touch pc.json && chmod 6755 pc.json").status, 0);
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json call GetDriveLetter 0 2").status, 0);
    EXPECT_EQ(Shell("stat -c %a pc.json").output, "755\n");
}

// Opening a pipe would wait for its other end.
TEST_F(Log, PipeOrFolder_AnyCommand_IsWrongUseAndMakesNothing) {
    EXPECT_EQ(Shell("mkfifo pipe && mkdir folder").status, 0);
    for (const char* const name : {"pipe", "folder", "./folder/"}) {
        const Outcome outcome =
            Kestova(std::string("--pc factory-mbr --save pc.json --log ") + name + " status");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, StartsWith(std::string("kestova: --log: ") + name +
                                               " is neither a regular file nor a terminal nor /dev/null\n"));
    }
    EXPECT_FALSE(std::filesystem::exists(Folder() / "pc.json"));
    EXPECT_EQ(Kestova("--pc factory-mbr --log /dev/null status").status, 0);
}

TEST_F(Log, ExistingLogThroughLinks_Call_IsEmptiedFirst) {
    WriteFile("log", "4\tKestova\t" + std::string(100000, 'x'));
    EXPECT_EQ(Shell("mkdir folder && ln -s ../log folder/link && ln -s folder other").status, 0);
    EXPECT_EQ(Kestova("--pc factory-mbr --no-initialize --log other/link call IsDynamic").status, 0);
    EXPECT_THAT(ReadFile("log"), StartsWith("4\tKestova::Kestova\tStart\n"));
    EXPECT_EQ(ReadFile("log").find('x'), std::string::npos);
}

TEST_F(Log, LinksInARing_AnyCommand_IsWrongUse) {
    EXPECT_EQ(Shell("ln -s b a && ln -s a b").status, 0);
    const Outcome outcome = Kestova("--pc factory-mbr --log a status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, StartsWith("kestova: --log: a cannot be written\n"));
}

// Any user can put a link in the place of a file that another one will write.
TEST_F(SharedFolder, AnotherUsersLink_AnyCommand_IsWrongUse) {
    EXPECT_EQ(Shell("echo secret >file && ln -s ../file shared/file && ln -s . shared/folder").status, 0);
    if (!GiveAway("shared/file") || !GiveAway("shared/folder"))
        GTEST_SKIP() << "only root can give a link away";
    for (const char* const words : {"--log shared/file", "--save shared/file", "--log shared/folder/log",
                                    "--save shared/folder/pc.json"}) {
        const Outcome outcome = Kestova(std::string("--pc factory-mbr ") + words + " status");
        EXPECT_EQ(outcome.status, 2) << words;
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors,
                    HasSubstr("which another user has put into a folder that all users share\n"));
    }
    EXPECT_EQ(ReadFile("file"), "secret\n");
    EXPECT_EQ(Shell("ls shared").output, "file\nfolder\n");
    // The folder's own owner may link there.
    EXPECT_TRUE(GiveAway("shared/file", 0));
    EXPECT_EQ(Kestova("--pc factory-mbr --log shared/file --overwrite status").status, 0);
}

TEST_F(SharedFolder, AnotherUsersFileAsLog_AnyCommand_IsWrongUse) {
    EXPECT_EQ(Shell("echo secret >shared/file && echo secret >mine && ln mine shared/second").status, 0);
    if (!GiveAway("shared/file")) GTEST_SKIP() << "only root can give a file away";
    for (const char* const name : {"shared/file", "shared/second"}) {
        const Outcome outcome = Kestova(std::string("--pc factory-mbr --log ") + name + " status");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("another user's file in a folder that all users share\n"));
        EXPECT_EQ(ReadFile(name), "secret\n");
    }
}

// A backup of an image is such a file.
TEST_F(Save, FileOfAnotherKind_LogAndSave_NeedOverwrite) {
    ASSERT_EQ(Kestova("--pc factory-mbr --save pc.json --log log status").status, 0);
    const std::string long_ = "{" + std::string((size_t{16} << 20) + 1, ' ') + "}";
    for (const std::string& content :
         {std::string("a shopping list\n"), std::string("{\"name\": 1}"), std::string("KESTOVA BACKUP 1\n"),
          std::string("1\t2\n2\t4\n"), std::string("4"), long_}) {
        for (const std::string option : {"--save", "--log"}) {
            WriteFile("file", content);
            const Outcome outcome = Kestova("--pc factory-mbr " + option + " file status");
            EXPECT_EQ(outcome.status, 2) << content.substr(0, 20);
            EXPECT_EQ(outcome.output, "");
            EXPECT_THAT(
                outcome.errors,
                HasSubstr("kestova: " + option +
                          ": file is neither empty nor a description nor a log; --overwrite replaces it\n"));
            EXPECT_EQ(ReadFile("file"), content);

            EXPECT_EQ(Kestova("--pc factory-mbr --overwrite " + option + " file status").status, 0);
            EXPECT_NE(ReadFile("file"), content);
        }
    }
    WriteFile("empty", "");
    for (const std::string name : {"empty", "pc.json", "log"}) {
        EXPECT_EQ(Kestova("--pc factory-mbr --save " + name + " status").status, 0) << name;
        EXPECT_EQ(Kestova("--pc factory-mbr --log " + name + " status").status, 0) << name;
    }
}

// Links and other names of the same file count as the file.
TEST_F(Save, OutputNamesAnInput_AnyCommand_IsWrongUse) {
    EXPECT_EQ(Kestova("--pc factory-mbr --save pc.json call GetDriveLetter 0 2").status, 0);
    WriteFile("script", "GetDriveLetter 0 2\n");
    EXPECT_EQ(Shell("ln -s script soft && ln pc.json hard && ln -s new later").status, 0);
    const std::string description = ReadFile("pc.json");
    const Mistake cases[] = {
        {"", "--pc pc.json --log hard run script", 2, "--log: hard is the description that --pc reads\n"},
        {"", "--pc pc.json --log soft run script", 2, "--log: soft is the script\n"},
        {"", "--pc pc.json --save ./script run soft", 2, "--save: ./script is the script\n"},
        {"", "--pc pc.json --log script run - <script", 2, "--log: script is the script\n"},
        {"", "--pc pc.json --log later --save new run script", 2,
         "--log: later is the file that --save writes\n"},
        {"", "--pc pc.json --save /dev/null run script", 2, "--save: /dev/null is no plain file\n"},
    };
    for (const Mistake& mistake : cases) {
        const Outcome outcome = Shell("'" KESTOVA_PROGRAM "' " + std::string(mistake.words));
        EXPECT_EQ(outcome.status, mistake.status) << mistake.words;
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, StartsWith(std::string("kestova: ") + mistake.message));
    }
    EXPECT_EQ(ReadFile("pc.json"), description);
    EXPECT_EQ(ReadFile("script"), "GetDriveLetter 0 2\n");
    EXPECT_FALSE(std::filesystem::exists(Folder() / "new"));
}

// A pipe without a reader, as head leaves it.
TEST_F(Help, AbandonedPipe_EachKindOfCommand_EndsWithoutAMessage) {
    const std::string program = "env --default-signal=PIPE '" KESTOVA_PROGRAM "' ";
    for (const std::string words :
         {"operations", "--pc factory-mbr status", "--pc factory-mbr --json --ledger status"}) {
        const Outcome outcome =
            Shell("rm -f pipe; mkfifo pipe; (exec 3<>pipe 4>pipe 3<&-; " + program + words + " >&4)");
        EXPECT_EQ(outcome.status, 141) << words;
        EXPECT_THAT(outcome.errors, Not(HasSubstr("cannot be written"))) << words;
    }
}

TEST_F(Help, FullStandardOutput_BootRecovery_ExitsWith1AndSaves) {
    const Outcome outcome = Shell("'" KESTOVA_PROGRAM
                                  "' --pc factory-mbr --save pc.json boot recovery "
                                  ">/dev/full");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, EndsWith("kestova: standard output cannot be written\n"));
    EXPECT_THAT(ReadFile("pc.json"), HasSubstr("Active=2"));
}

TEST_F(Help, ClosedPipe_BootRecovery_CompletesAndSaves) {
    // The reader closes its end before the program starts.
    Shell("mkfifo pipe ended; { read line <ended; '" KESTOVA_PROGRAM
          "' --pc factory-mbr --save pc.json boot "
          "recovery; echo $? >status; } >pipe & { : <pipe; }; echo >ended; wait");
    EXPECT_EQ(ReadFile("status"), "141\n");
    EXPECT_THAT(ReadFile("pc.json"), HasSubstr("Active=2"));
}

TEST_F(Help, LargeOrEmptyDescription_Status_IsRefused) {
    WriteFile("empty.json", "");
    EXPECT_EQ(Shell("truncate -s 17M disk.img").status, 0);
    EXPECT_EQ(Kestova("--pc disk.img status").errors,
              "kestova: disk.img: larger than 16 MiB, so no description; name a disk image with --image\n");
    EXPECT_EQ(Kestova("--pc empty.json status").errors, "kestova: empty.json: the description is empty\n");
    EXPECT_EQ(Shell("truncate -s 1M stick.img").status, 0);
    EXPECT_EQ(Kestova("--pc stick.img status").errors,
              "kestova: stick.img: not UTF-8 text, so no description; name a disk image with --image\n");
}

TEST_F(Help, PipeAsDescription_Status_IsRefusedUnlessItHasNoName) {
    EXPECT_EQ(Shell("mkfifo pipe").status, 0);
    const Outcome outcome = Kestova("--pc ./pipe status");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "kestova: ./pipe: not a regular file\n");
    EXPECT_EQ(Shell("echo '{}' | '" KESTOVA_PROGRAM "' --pc /dev/stdin call IsDynamic").status, 0);
}

TEST_F(Help, UnknownKeyInDescription_Status_NamesFileAndPlace) {
    WriteFile("pc.json", "{\"nmae\": \"x\"}");
    const Outcome outcome = Kestova("--pc pc.json status");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("kestova: pc.json: "));
}

TEST_F(Help, FactoryMbr_StatusUnderWindowsPe_RunsWindowsPe) {
    EXPECT_THAT(Kestova("--pc factory-mbr --pe status").output,
                HasSubstr("Running system     Windows PE\nWindows directory  X:\\Windows\n"));
}

TEST_F(Help, NoPc_Help_ListsCommandsOptionsAndStatuses) {
    const Outcome outcome = Kestova("--help");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("  boot recovery|system        Choose what it boots\n"));
    EXPECT_THAT(outcome.output,
                HasSubstr("  calls                       The platform calls that --fail knows\n"));
    EXPECT_THAT(outcome.output, HasSubstr("  --fail NAME[#N][+]=CODE  "));
    EXPECT_THAT(outcome.output, HasSubstr("    4  the record could not be written\n"));
    EXPECT_EQ(Kestova("help").output, outcome.output);
}

// The words of each line of "Commands:", up to the columns that are wrapped.
std::vector<std::string> CommandsIn(const std::string& help) {
    std::vector<std::string> commands;
    std::istringstream lines(help.substr(help.find("Commands:\n") + 10));
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        if (line[2] != ' ') commands.push_back(line.substr(2, line.find(' ', 2) - 2));
    }
    return commands;
}

size_t LongestLine(const std::string& text) {
    size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        longest = std::max(longest, line.size());
    return longest;
}

TEST_F(Help, NoPc_Version_NamesEachLibraryThatIsLinkedAndNoOther) {
    const std::string version = Kestova("--version").output;
    EXPECT_THAT(version, StartsWith("kestova " KESTOVA_VERSION "\n"));
    // Each library that the build links, and no other, is named with its licence.
    for (const std::string library : {"libntfs-3g", "libseccomp", "libutf8proc"})
        EXPECT_EQ(version.find(library) != std::string::npos,
                  Shell("ldd '" KESTOVA_PROGRAM "'").output.find(library) != std::string::npos)
            << library;
    for (const std::string library : {"libnbd", "libewf", "libhivex", "libnettle"}) {
        EXPECT_THAT(version.substr(version.find("Loaded when they are needed:")), HasSubstr(library));
        EXPECT_THAT(Shell("ldd '" KESTOVA_PROGRAM "'").output, Not(HasSubstr(library)));
    }
    EXPECT_THAT(version, ContainsRegex("libstdc\\+\\+, libgcc +GPL-3.0-or-later WITH GCC-exception-3.1\n"));
    EXPECT_THAT(version, ContainsRegex("libc +LGPL-2.1-or-later\n"));
    EXPECT_THAT(version, HasSubstr("CLI11"));
    EXPECT_THAT(version, HasSubstr("nlohmann-json"));
}

TEST_F(Help, EachCommand_Help_ExplainsItAloneWithinEightyColumns) {
    const std::string whole = Kestova("--help").output;
    EXPECT_LE(LongestLine(whole), 80u);
    const std::vector<std::string> commands = CommandsIn(whole);
    EXPECT_THAT(commands, Contains("boot"));
    for (const std::string& command : commands) {
        SCOPED_TRACE(command);
        const Outcome outcome = Kestova("help " + command);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.output, StartsWith("Usage: kestova "));
        EXPECT_THAT(outcome.output, HasSubstr(command));
        EXPECT_THAT(outcome.output, HasSubstr("\nExamples:\n  kestova "));
        EXPECT_LE(LongestLine(outcome.output), 80u);
        EXPECT_EQ(Kestova(command + " --help").output, outcome.output);
    }
}

TEST_F(Help, Boot_Help_HasItsResultsAndOnlyOptionsWithAnEffect) {
    const std::string boot = Kestova("help boot").output;
    EXPECT_THAT(boot, HasSubstr("    4  the record could not be written\n"));
    EXPECT_THAT(boot, HasSubstr("  --trace "));
    const std::string status = Kestova("help status").output;
    EXPECT_THAT(status, Not(HasSubstr("--trace")));
    EXPECT_THAT(status, HasSubstr("  --image FILE "));
    EXPECT_THAT(Kestova("help pcs").output, Not(HasSubstr("--image")));
}

// Those that only a change obeys are for other commands; check and report try a change.
TEST_F(Help, Questions_Help_HasNoOptionsOfChanges) {
    for (const std::string command : {"status", "letters", "files", "check", "report"}) {
        const std::string help = Kestova("help " + command).output;
        for (const std::string option : {"--backup", "--no-backup", "--no-journal", "--yes"})
            EXPECT_THAT(help, Not(HasSubstr("  " + option + " "))) << command;
        EXPECT_THAT(help, HasSubstr("  --journal FILE "));
        EXPECT_EQ(help.find("  --force-dirty ") != std::string::npos,
                  command == "check" || command == "report");
    }
    EXPECT_THAT(Kestova("help boot").output, HasSubstr("  --no-backup "));
    EXPECT_EQ(Kestova("--pc factory-mbr --yes status").status, 0);
}

TEST_F(Help, UnknownCommand_Help_SuggestsTheNearest) {
    const Outcome outcome = Kestova("help bot");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, StartsWith("kestova: there is no command 'bot'; did you mean boot?\n"));
}

TEST_F(Help, FileInsteadOfACommand_Status_PointsAtImage) {
    WriteFile("disk.img", "x");
    const Outcome outcome = Kestova("disk.img status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors,
                StartsWith("kestova: there is no command 'disk.img'; an image is named with --image\n"));
}

TEST_F(Help, DashesBeforeTheCommand_Pcs_AreSkipped) {
    EXPECT_EQ(Kestova("-- pcs").output, Kestova("pcs").output);
    EXPECT_EQ(Kestova("-- pcs").status, 0);
    EXPECT_EQ(Kestova("-- pcs --json").status, 2) << "no option behind them";
}

}  // namespace
