// Finding, writing and reading SystemVolume.ini.

#include "manager/system_volume_ini.h"

#include <gtest/gtest.h>

#include "machine/core/utf.h"
#include "machine/model/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"
#include "text/wide_string.h"

namespace {

using machine::FactoryMbr;

struct Found {
    int result;
    std::string path;
};

Found Search(Application& application, const WCHAR* before = TEXT("")) {
    WCHAR path[261] = {};
    CopyBounded(path, std::size(path), before);
    const int result = (application.kestova.*Open(internals::GetSystemVolumeIniTag()))(path, 261);
    return {result, machine::ToUtf8(path)};
}

TEST(GetSystemVolumeIni, LettersTheHiddenRecoveryPartition) {
    Application application(FactoryMbr());
    const Found found = Search(application);
    EXPECT_EQ(found.result, TRUE);
    EXPECT_EQ(found.path, "E:\\SystemVolume.ini");
    EXPECT_EQ(PartitionOf(application.pc.pc, 1).volume->letters, "E");
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini");
}

TEST(GetSystemVolumeIni, HidesAVisibleRecoveryPartitionFirst) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = MBR_ID_NTFS;
    PartitionOf(facts, 1).volume->letters = "R";
    Application application(facts);
    const Found found = Search(application);
    EXPECT_EQ(found.result, TRUE);
    EXPECT_EQ(found.path, "E:\\SystemVolume.ini");
    EXPECT_EQ(PartitionOf(application.pc.pc, 1).mbrType, MBR_ID_HIDDEN_RECOVERY);
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_hides");
}

TEST(GetSystemVolumeIni, RefusesGpt) {
    Application application(machine::FactoryGpt());
    EXPECT_EQ(Search(application).result, FALSE);
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_gpt");
}

TEST(GetSystemVolumeIni, RefusesAnUnknownStyle) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::QueryPartitions", .nth = 1, .code = 0x8004242B});
    EXPECT_EQ(Search(application).result, FALSE);
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_unknown_style");
}

TEST(GetSystemVolumeIni, RefusesARecoveryPartitionInAnUnexpectedState) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = 0xDE;
    Application application(facts);
    EXPECT_EQ(Search(application).result, FALSE);
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_unexpected_id");
}

TEST(GetSystemVolumeIni, FailsWhenNoLetterCanBeGiven) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::AssignDriveLetter", .code = 0x8004255C});
    EXPECT_EQ(Search(application).result, FALSE);
    EXPECT_EQ(PartitionOf(application.pc.pc, 1).volume->letters, "");
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_no_letter");
}

TEST(GetSystemVolumeIni, FailsWhenTheRecoveryMediaAreGone) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).volume->files = {};
    Application application(facts);
    EXPECT_EQ(Search(application).result, FALSE);
    EXPECT_EQ(PartitionOf(application.pc.pc, 1).volume->letters, "E");
    ExpectTranscript(application.pc.journal, "manager/get_system_volume_ini_no_media");
}

TEST(GetSystemVolumeIni, WithoutAVolumeLayerTellsThatTheStyleIsMissing) {
    Application application(FactoryMbr());
    internals::DropVolumeLayer(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Search(application, TEXT("before")).result, FALSE);
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::GetSystemVolumeIni\\t\\tStart. pszFile = before dwFileNumberOfElements{ulong 261}\n"
              "4 Kestova::GetDiskStyle\\t\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n"
              "4 Kestova::GetSystemVolumeIni\\tGetDiskStyle\\tERROR_GET_DISK_STYLE. enumDiskStyle = {int 0}\n"
              "4 Kestova::GetSystemVolumeIni\\t\\tEnd. bReturn = {int 0}\n");
}

TEST(RecordedPartition, IsReadBackAsWritten) {
    machine::EmulatedPc pc(machine::WinPeTwoDisks());
    ASSERT_TRUE(RecordActivePartition(TEXT("C:\\SystemVolume.ini"), 3));
    EXPECT_EQ(SystemVolumeIni(pc), "[System]\r\nActive=3\r\n");
    int partition = 0;
    EXPECT_TRUE(ReadRecordedPartition(TEXT("C:\\SystemVolume.ini"), partition));
    EXPECT_EQ(partition, 3);
}

TEST(RecordedPartition, CannotBeWrittenToADriveThatDoesNotExist) {
    machine::EmulatedPc pc(FactoryMbr());
    EXPECT_FALSE(RecordActivePartition(TEXT("Q:\\SystemVolume.ini"), 2));
    EXPECT_FALSE(RecordActivePartition(TEXT(""), 2));
}

struct Content {
    const char* name;
    const char* content;
    bool readable;
    int partition;
};

class RecordContent : public testing::TestWithParam<Content> {};

TEST_P(RecordContent, IsReadAsTheProfileCallsReadIt) {
    machine::Pc facts = machine::WinPeTwoDisks();
    PartitionOf(facts, 1).volume->files.PutFile("SystemVolume.ini", GetParam().content);
    machine::EmulatedPc pc(facts);
    int partition = 77;
    EXPECT_EQ(ReadRecordedPartition(TEXT("C:\\systemvolume.INI"), partition), GetParam().readable);
    EXPECT_EQ(partition, GetParam().partition);
}

const Content contents[] = {
    {"Number", "[System]\r\nActive=4\r\n", true, 4},
    {"OtherSpelling", "[SYSTEM]\n active = 4 \n", true, 4},
    {"NumberAndMore", "[System]\r\nActive=7abc\r\n", true, 7},
    {"Negative", "[System]\r\nActive=-1\r\n", true, -1},
    {"TooLarge", "[System]\r\nActive=4294967298\r\n", true, 2},
    {"Word", "[System]\r\nActive=abc\r\n", false, 77},
    {"Empty", "[System]\r\nActive=\r\n", false, 77},
    {"NoKey", "[System]\r\nOther=2\r\n", false, 77},
    {"NoSection", "[Other]\r\nActive=2\r\n", false, 77},
    {"EmptyFile", "", false, 77},
    {"TheDefaultItself", "[System]\r\nActive=_no_value_\r\n", false, 77},
    {"Binary", "\x01\x02\xff\xfe[System", false, 77},
};

INSTANTIATE_TEST_SUITE_P(Of, RecordContent, testing::ValuesIn(contents),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
