// Questions that could not be answered: the class returns "no", the program says so.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

using Question = ProgramTest;
using Status = ProgramTest;

struct Unanswered {
    const char* name;
    const char* fault;
    const char* question;
    const char* result;
    const char* problem;
};

void PrintTo(const Unanswered& unanswered, std::ostream* out) {
    *out << unanswered.name;
}

class FailedCall : public ProgramTest, public testing::WithParamInterface<Unanswered> {};

TEST_P(FailedCall, FactoryMbr_Question_KeepsItsResultAndIsAProblem) {
    const std::string words =
        std::string("--pc factory-mbr --fail ") + GetParam().fault + " --json call " + GetParam().question;
    const Outcome outcome = Kestova(words);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(std::string("\"result\":") + GetParam().result + ","));
    EXPECT_THAT(outcome.output, HasSubstr(std::string(",\"problem\":\"") + GetParam().problem + "\","));
    EXPECT_THAT(outcome.errors,
                EndsWith(std::string("{\"error\":\"") + GetParam().problem + "\",\"status\":1}\n"));
}

const Unanswered unanswered[] = {
    {"Files", "PathFileExistsW=5", "IsVistaOS C", "0",
     "IsVistaOS could not be answered: PathFileExistsW failed with 0x00000005"},
    {"Firmware", "GetFirmwareEnvironmentVariableW=1314", "IsEFIBootSystem", "0",
     "IsEFIBootSystem could not be answered: GetFirmwareEnvironmentVariableW failed with 0x00000522"},
    {"Volume", "CreateFileW=5", "GetDriveLetter 0 2", "\"0\"",
     "GetDriveLetter could not be answered: CreateFileW failed with 0x00000005"},
    {"DriveType", "GetDriveTypeW=0", "GetRCVDISC", "\"0\"",
     "GetRCVDISC could not be answered: GetDriveTypeW failed"},
    {"BitLocker", "IWbemLocator::ConnectServer=0x80041003", "IsExistEncryptVolume", "0",
     "IsExistEncryptVolume could not be answered: IWbemLocator::ConnectServer failed with 0x80041003"},
    {"PartitionsInAnOutput", "IVdsAdvancedDisk::QueryPartitions=0x80004005", "GetDiskStyle", "1",
     "GetDiskStyle could not be answered: IVdsAdvancedDisk::QueryPartitions failed with 0x80004005"},
    {"Service", "IVdsService::IsServiceReady=0x8004252c", "GetActivePartitionNumber", "-1",
     "GetActivePartitionNumber could not be answered: IVdsService::IsServiceReady failed with 0x8004252C"},
    {"LetterOnDemand", "IVdsService::IsServiceReady=0x8004252c", "IsExistRcvprt", "0",
     "IsExistRcvprt could not be answered: IVdsService::IsServiceReady failed with 0x8004252C"},
};

INSTANTIATE_TEST_SUITE_P(Each, FailedCall, testing::ValuesIn(unanswered),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(Question, AnsweredAfterAFailedCall_Call_IsDone) {
    // C: cannot be opened, and partition 3 is D:.
    const Outcome letter =
        Kestova("--pc factory-mbr --fail 'CreateFileW#1=5' --json call GetDriveLetter 0 3");
    EXPECT_EQ(letter.status, 0);
    EXPECT_THAT(letter.output, Not(HasSubstr("problem")));
    // Nothing depends on what is given back.
    EXPECT_EQ(Kestova("--pc factory-mbr --fail CloseHandle=5 call GetDriveLetter 0 9").errors, "");
    // A Windows without BitLocker.
    const Outcome none =
        Kestova("--pc factory-mbr --fail IWbemLocator::ConnectServer=0x8004100e call IsExistEncryptVolume");
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.errors, "");
}

TEST_F(Question, OneOfAScript_Run_ExitsWith1AndContinues) {
    const Outcome outcome = Kestova("--pc factory-mbr --fail GetFirmwareEnvironmentVariableW=5 run -",
                                    "IsEFIBootSystem\nIsDynamic\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, EndsWith("IsEFIBootSystem() = 0: BIOS\nIsDynamic() = 0: no\n"));
}

TEST_F(Question, HealthyPcs_EveryQuestion_HasNoProblem) {
    WriteFile(
        "questions",
        "GetFirstInternalDriveNumber\nGetDiskStyle\nGetCurrentDiskType\nIsDynamic\nIsEFIBootSystem\n"
        "GetDriveLetter 0 1\nGetDriveLetter 0 2\nGetDriveLetter 1 1\nGetDriveLetter 0 9\n"
        "IsNeedHidePartition 0 1\nIsNeedHidePartition 0 3\nIsNeedHidePartition 1 1\n"
        "IsBIOSHibernationPartition 0 1\nIsBIOSHibernationPartition 0 4\nGetActivePartitionNumber\n"
        "GetFactoryPrtDriveLetter\nGetRCVDISC\nGetRCVUFD\nIsWindowsRE C\nIsWindowsRE X\nIsVistaOS C\n"
        "IsVistaOS R\nIsVistaOS U\nIsVistaOS X\nIsCachePartitionForExpCacheExist\nAssignRecoveryPartition\n"
        "AssignWinREPartition\nIsExistRcvprt\nIsExistEncryptVolume\nGetEncryptVolume\nGetAllEncryptVolume\n"
        "GetBitLockerSystemInfo\nGetVistaOSInfo\nGetWinDriveLetters\n");
    for (const char* const pc : {"factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media"}) {
        for (const char* const system : {"--pe", "--windows"}) {
            const Outcome outcome =
                Kestova(std::string("--pc ") + pc + " " + system + " --json run questions");
            EXPECT_THAT(outcome.output, Not(HasSubstr("problem"))) << pc << system;
            EXPECT_EQ(outcome.errors, "") << pc << system;
            EXPECT_EQ(Kestova(std::string("--pc ") + pc + " " + system + " status").status, 0)
                << pc << system;
        }
    }
}

TEST_F(Status, LaterQuestionUnanswered_Status_ShowsTheSameAndFails) {
    const Outcome outcome = Kestova("--pc factory-mbr --fail PathFileExistsW=5 --json status");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(R"("windows":null,"disks":[{"number":0,)"));
    EXPECT_THAT(outcome.output,
                HasSubstr("IsVistaOS could not be answered: PathFileExistsW failed with 0x00000005"));
    EXPECT_THAT(outcome.errors, HasSubstr("IsVistaOS could not be answered"));
    const Outcome firmware = Kestova("--pc factory-gpt --fail GetFirmwareEnvironmentVariableW=1314 status");
    EXPECT_EQ(firmware.status, 1);
    EXPECT_EQ(firmware.errors, "kestova: the firmware could not be told (error 1314)\n");
    EXPECT_THAT(firmware.output, HasSubstr("Active partition   none\n"));
}

}  // namespace
