// Reading, giving and taking drive letters.
#include "tests/vds/vds_session.h"

namespace {

using Letterless = machine::Switches::Letterless;

constexpr uint32_t failure = 0x80004005;
const std::string method = "Kestova CVDSPartition::SetDriveLetter";
const std::string readFailed =
    "4 " + method + " m_pVdsAdvancedDisk->GetDriveLetter error. hResult = {long -2147212283}\n";
const std::string ended = "4 " + method + "\\t\\tEnd\n";

std::string Started(int number, int flag) {
    return "4 " + method + "\\t\\tStart  PartitionNumber = {int " + std::to_string(number) +
           "} SetFlag = {int " + std::to_string(flag) + "}\n";
}

// The letter that the object dealt with last.
char LetterOf(VdsSession& session) {
    return static_cast<char>(session->GetDriveLetter());
}

// Factory PC whose recovery partition has these letters. What a letterless partition answers and whether
// volumes refuse letter calls are the PC's switches.
machine::Pc WithLetters(const std::string& letters, Letterless letterless = Letterless::Fails) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[0].volume->letters = letters;
    pc.switches.letterless = letterless;
    return pc;
}

// The same with drives on all the other letters.
machine::Pc WithDrives(const std::string& letters) {
    machine::Pc pc = WithLetters("");
    for (const char letter : letters) {
        machine::Volume volume;
        volume.letters = std::string(1, letter);
        pc.volumes.push_back(volume);
    }
    return pc;
}

const Letterless allLetterless[] = {Letterless::Fails, Letterless::Nul, Letterless::Zero};

// What reading the letter of a partition without one adds.
std::string ReadRecords(Letterless letterless) {
    return letterless == Letterless::Fails ? readFailed : "";
}

// A log that leaves an error of its own behind each record: how many it has received.
class FailingLog : public ILogSink {
  public:
    FailingLog() { CLoggingFactory::GetInstance().AddSink(*this); }
    ~FailingLog() { CLoggingFactory::GetInstance().RemoveSink(*this); }

  private:
    void Write(const LogEntry&) override { SetLastError(++received_); }
    DWORD received_ = 0;
};

}  // namespace

TEST(SetDriveLetterAssign, FactoryMbr_AssignsTheFirstFreeLetter) {
    for (const Letterless letterless : allLetterless) {
        VdsSession session(WithLetters("", letterless));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(LetterOf(session), 'E');  // C and D are the volumes of Windows and data
        EXPECT_EQ(session.Partition(1).volume->letters, "E");
        EXPECT_EQ(session.Records(),
                  Started(1, 1) + queryPartitionsRecords + ReadRecords(letterless) + ended);
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(SetDriveLetterAssign, LetteredPartition_KeepsItsLetter) {
    VdsSession session(WithLetters("R"));
    EXPECT_TRUE(session->SetDriveLetter(1, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), 'R');
    EXPECT_EQ(session.Partition(1).volume->letters, "R");
    EXPECT_EQ(session.Records(), Started(1, 1) + queryPartitionsRecords + "4 " + method +
                                     " exist driver letter. DriveLetter = {char R}\n");
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::AssignDriveLetter").empty());
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetterAssign, LowerCaseLetter_IsKept) {
    for (const char letter : {'a', 'z'}) {
        VdsSession session(WithLetters(std::string(1, letter)));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(LetterOf(session), letter);
        EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::AssignDriveLetter").empty());
    }
}

TEST(SetDriveLetterAssign, LettersInUse_SeeksFromCToZThenAThenB) {
    struct Case {
        std::string used;  // besides C and D
        char given;
    };
    const Case cases[] = {
        {"", 'E'},
        {"EF", 'G'},
        {"EFGHIJKLMNOPQRSTUVWXY", 'Z'},
        {"EFGHIJKLMNOPQRSTUVWXYZ", 'A'},
        {"AEFGHIJKLMNOPQRSTUVWXYZ", 'B'},
    };
    for (const Case& expected : cases) {
        VdsSession session(WithDrives(expected.used));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(LetterOf(session), expected.given);
        EXPECT_EQ(session.Partition(1).volume->letters, std::string(1, expected.given));
    }
}

TEST(SetDriveLetterAssign, CIsFree_AssignsC) {
    VdsSession session(machine::FactoryGpt());
    session.pc.facts.system.windowsDirectory = "D:\\Windows";
    session.Partition(5).volume->letters = "D";
    EXPECT_TRUE(session->SetDriveLetter(2, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), 'C');
    EXPECT_EQ(session.pc.journal.Calls("GetLogicalDriveStringsW").at(0).arguments,
              (std::vector<std::string>{"1024"}));
}

TEST(SetDriveLetterAssign, NoFreeLetter_IsAnError) {
    VdsSession session(WithDrives("ABEFGHIJKLMNOPQRSTUVWXYZ"));
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), '0');
    EXPECT_EQ(session.Records(), Started(1, 1) + queryPartitionsRecords + readFailed + "1 " + method +
                                     " GetUnusedDriveLetter DriveLetter error. m_cDriveLetter = {char 0}\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetterAssign, DrivesThatCannotBeListed_AreAnError) {
    VdsSession session(WithLetters("", Letterless::Zero));
    session.Fail("GetLogicalDriveStringsW", 5);
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), '0');
    EXPECT_EQ(session.Records(), Started(1, 1) + queryPartitionsRecords + "1 " + method +
                                     " GetUnusedDriveLetter DriveLetter error. m_cDriveLetter = {char 0}\n");
}

TEST(SetDriveLetterAssign, RefusedLetter_IsAnErrorAndStaysWhetherItWasGivenOrNot) {
    for (const bool afterEffect : {false, true}) {
        VdsSession session(WithLetters(""));
        session.Fail("IVdsAdvancedDisk::AssignDriveLetter", failure, 0, afterEffect);
        EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(LetterOf(session), 'E');
        EXPECT_EQ(session.Partition(1).volume->letters, afterEffect ? "E" : "");
        EXPECT_EQ(session.Records(),
                  Started(1, 1) + queryPartitionsRecords + readFailed +
                      Lines({"1 " + method + " AssignDriveLetter DriveLetter = {char E}",
                             "1 " + method + " AssignDriveLetter hResult = {long -2147467259}"}));
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(SetDriveLetterDelete, LetteredPartition_LosesItsLetter) {
    VdsSession session(WithLetters("R"));
    EXPECT_TRUE(session->SetDriveLetter(1, FLAG_DELETE));
    EXPECT_EQ(LetterOf(session), '0');
    EXPECT_EQ(session.Partition(1).volume->letters, "");
    EXPECT_EQ(session.Records(), Started(1, 2) + queryPartitionsRecords + ended);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetterDelete, LowerCaseLetter_IsTaken) {
    for (const char letter : {'a', 'z'}) {
        const std::string upper(1, static_cast<char>(letter - 'a' + 'A'));
        VdsSession session(WithLetters(letter + upper));  // reported in lower case, in use in upper case
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_DELETE));
        EXPECT_EQ(LetterOf(session), '0');
        const auto deletions = session.pc.journal.Calls("IVdsAdvancedDisk::DeleteDriveLetter");
        ASSERT_EQ(deletions.size(), 1u);
        EXPECT_EQ(deletions[0].arguments[2], std::string(1, letter));
    }
}

TEST(SetDriveLetterDelete, NoLetter_IsTrue) {
    for (const Letterless letterless : allLetterless) {
        VdsSession session(WithLetters("", letterless));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_DELETE));
        EXPECT_EQ(LetterOf(session), '0');
        EXPECT_EQ(session.Records(), Started(1, 2) + queryPartitionsRecords + ReadRecords(letterless) + "4 " +
                                         method + " DriveLetter is 0. SetFlag = {int 2}\n");
        EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::DeleteDriveLetter").empty());
    }
}

TEST(SetDriveLetterDelete, RefusedDeletion_IsAnErrorWhetherItWasMadeOrNot) {
    for (const bool afterEffect : {false, true}) {
        VdsSession session(WithLetters("R"));
        session.Fail("IVdsAdvancedDisk::DeleteDriveLetter", failure, 0, afterEffect);
        EXPECT_FALSE(session->SetDriveLetter(1, FLAG_DELETE));
        EXPECT_EQ(LetterOf(session), 'R');
        EXPECT_EQ(session.Partition(1).volume->letters, afterEffect ? "" : "R");
        EXPECT_EQ(session.Records(), Started(1, 2) + queryPartitionsRecords + "1 " + method +
                                         " DeleteDriveLetter error. hResult = {long -2147467259}"
                                         " m_cDriveLetter = {char R} GetLastError = {ulong 2}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(SetDriveLetterQuery, EveryOtherFlag_ReturnsTheLetter) {
    for (const int flag : {FLAG_QUERY, 3, -1}) {
        VdsSession session(WithLetters("R"));
        EXPECT_TRUE(session->SetDriveLetter(1, flag));
        EXPECT_EQ(LetterOf(session), 'R');
        EXPECT_EQ(session.Records(), Started(1, flag) + queryPartitionsRecords + ended);
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(SetDriveLetterQuery, PlatformThatReturnsNoLetter_IsTrue) {
    for (const Letterless letterless : {Letterless::Nul, Letterless::Zero}) {
        VdsSession session(WithLetters("", letterless));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_QUERY));
        EXPECT_EQ(LetterOf(session), '0');
        EXPECT_EQ(session.Records(), Started(1, 0) + queryPartitionsRecords + ended);
    }
}

TEST(SetDriveLetterQuery, FailingQuery_IsAnErrorInTheWordsOfTheDeletion) {
    VdsSession session(WithLetters(""));
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_QUERY));
    EXPECT_EQ(LetterOf(session), '0');
    EXPECT_EQ(session.Records(), Started(1, 0) + queryPartitionsRecords + readFailed + "1 " + method +
                                     " DeleteDriveLetter error. hResult = {long -2147212283}"
                                     " m_cDriveLetter = {char 0} GetLastError = {ulong 2}\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetterQuery, FailingQuery_RecordsTheErrorOfTheCallAndNoLaterOne) {
    VdsSession session(WithLetters(""));
    const FailingLog log;
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_QUERY));
    const std::vector<LogEntry> records = session.pc.journal.Records();
    // The last two are about the call that failed.
    const size_t beforeTheCall = records.size() - 2;
    EXPECT_EQ(session.Records().substr(session.Records().rfind("GetLastError = ")),
              "GetLastError = {ulong " + std::to_string(beforeTheCall) + "}\n");
}

TEST(SetDriveLetter, EachTypeOfTheList_MayBeLettered) {
    for (const uint8_t id : {MBR_ID_HIDDEN_RECOVERY, MBR_ID_OEM_RECOVERY}) {
        machine::Pc pc = WithLetters("");
        pc.disks[0].partitions[0].mbrType = id;
        VdsSession session(pc);
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_ASSIGN));
    }
    for (const GUID& type :
         {PARTITION_MSFT_RECOVERY_GUID, PARTITION_BASIC_DATA_GUID, PARTITION_SYSTEM_GUID, ORVOBOOT_GUID}) {
        machine::Pc pc = machine::FactoryGpt();
        pc.disks[0].partitions[1].gptType = type;
        pc.switches.volumesRefuseLetterCalls = false;
        VdsSession session(pc);
        EXPECT_TRUE(session->SetDriveLetter(2, FLAG_ASSIGN));
        EXPECT_EQ(session.Partition(2).volume->letters, "D");
    }
}

TEST(SetDriveLetter, OtherMbrTypes_AreRefusedForEveryFlag) {
    for (const uint8_t id : {MBR_ID_NTFS, MBR_ID_BIOS_HIBERNATION, MBR_ID_CACHE}) {
        for (const int flag : {FLAG_QUERY, FLAG_ASSIGN, FLAG_DELETE}) {
            machine::Pc pc = WithLetters("R");
            pc.disks[0].partitions[0].mbrType = id;
            VdsSession session(pc);
            EXPECT_FALSE(session->SetDriveLetter(1, flag));
            EXPECT_EQ(LetterOf(session), '0');
            EXPECT_EQ(session.Records(), Started(1, flag) + queryPartitionsRecords + "1 " + method +
                                             " partitionType error. PartitionProp.Mbr.partitionType = {int " +
                                             std::to_string(id) + "}\n");
            EXPECT_EQ(session.Left(1), Holdings());
        }
    }
}

TEST(SetDriveLetter, OtherGptTypes_AreRefusedWithTheirFirstByte) {
    VdsSession session(machine::FactoryGpt());
    EXPECT_FALSE(session->SetDriveLetter(4, FLAG_ASSIGN));
    EXPECT_EQ(session.Records(), Started(4, 1) + queryPartitionsRecords + "1 " + method +
                                     " partitionType error. PartitionProp.Mbr.partitionType = {int 22}\n");
}

TEST(SetDriveLetter, GptTypeThatBeginsLikeAnMbrId_Passes) {
    GUID type = {};
    type.Data1 = MBR_ID_HIDDEN_RECOVERY;
    machine::Pc pc = machine::FactoryGpt();
    pc.disks[0].partitions[1].gptType = type;
    VdsSession session(pc);
    EXPECT_TRUE(session->SetDriveLetter(2, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), 'D');
}

TEST(SetDriveLetter, VolumeThatRefusesLetterCalls_IsAnError) {
    machine::Pc pc = machine::FactoryGpt();
    pc.disks[0].partitions[1].gptType = PARTITION_BASIC_DATA_GUID;
    VdsSession session(pc);
    EXPECT_FALSE(session->SetDriveLetter(2, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), 'D');
    EXPECT_EQ(session.Partition(2).volume->letters, "");
    ExpectTranscript(session.pc.journal);
    EXPECT_FALSE(session->SetDriveLetter(2, FLAG_QUERY));
    EXPECT_TRUE(session->SetDriveLetter(2, FLAG_DELETE));
    EXPECT_EQ(session.Left(3), (Holdings{{"IVdsAdvancedDisk", 2}}));
}

TEST(SetDriveLetter, MissingPartition_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->SetDriveLetter(9, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), '0');
    EXPECT_EQ(session.Records(),
              Started(9, 1) + queryPartitionsRecords + "1 " + method + " does not find the partition.\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetter, PartitionOfUnknownStyle_IsAnError) {
    machine::Disk disk = PlainDisk(0);
    disk.style = machine::PartitionStyle::Unknown;
    VdsSession session(WindowsPe({disk}));
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SetDriveLetter, WhatCannotBegin_IsAnError) {
    {
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        EXPECT_FALSE(partition.SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(Transcript(pc.journal), Started(1, 1) + "1 " + method + " m_pVdsService is NULL\n");
    }
    {
        VdsSession session(machine::FactoryMbr());
        session.Fail("IVdsService::IsServiceReady", 1);
        EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
        EXPECT_EQ(session.Records(),
                  Started(1, 1) + "1 " + method + " IsServiceReady error. hResult = {long 1}\n");
    }
    VdsSession session(WithLetters("R"));
    EXPECT_TRUE(session->SetDriveLetter(1, FLAG_QUERY));
    session.pc.journal.Clear();
    session.Fail("IVdsService::GetObject", 0x80042405);
    EXPECT_FALSE(session->SetDriveLetter(1, FLAG_ASSIGN));
    EXPECT_EQ(LetterOf(session), '0');  // not the letter of the call before
    EXPECT_EQ(session.Records(),
              Started(1, 1) + "4 Kestova CVDSPartition::QueryPartitions Start\n" + firstDiskRecords +
                  Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                         "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != "
                         "hResult.hResult = {long -2147212283} GetLastError = {ulong 2}",
                         "1 Kestova CVDSPartition::QueryPartitions CVDSEx::GetVdsAdvancedDisk S_OK != "
                         "hResult. hResult = {long -2147212283}",
                         "1 " + method + " QueryPartitions error. hResult = {long 0}"}));
    EXPECT_EQ(session.Left(2), (Holdings{{"IVdsAdvancedDisk", 1}}));
}

TEST(SetDriveLetterQuery, CharactersBesideTheLetters_AreNone) {
    for (const char unit : {'@', '[', '`', '{'}) {
        SCOPED_TRACE(unit);
        VdsSession session(WithLetters(std::string(1, unit)));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_QUERY));
        EXPECT_EQ(LetterOf(session), '0');
    }
    for (const char unit : {'A', 'Z', 'a', 'z'}) {
        SCOPED_TRACE(unit);
        VdsSession session(WithLetters(std::string(1, unit)));
        EXPECT_TRUE(session->SetDriveLetter(1, FLAG_QUERY));
        EXPECT_EQ(LetterOf(session), unit);
    }
}
