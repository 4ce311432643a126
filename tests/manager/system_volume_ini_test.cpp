// Finding SystemVolume.ini.

#include <gtest/gtest.h>

#include "base/utf.h"
#include "base/wide_string.h"
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

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
    return {result, ToUtf8(path)};
}

// Answers FALSE and leaves the buffer as it was.
void ExpectRefused(Application& application) {
    const Found found = Search(application);
    EXPECT_EQ(found.result, FALSE);
    EXPECT_EQ(found.path, "");
}

TEST(GetSystemVolumeIni, HiddenRecoveryPartition_AssignsALetter) {
    Application application(FactoryMbr());
    const Found found = Search(application);
    EXPECT_EQ(found.result, TRUE);
    EXPECT_EQ(found.path, "E:\\SystemVolume.ini");
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "E");
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, VisibleRecoveryPartition_HidesItFirst) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = MBR_ID_NTFS;
    PartitionOf(facts, 1).volume->letters = "R";
    Application application(facts);
    const Found found = Search(application);
    EXPECT_EQ(found.result, TRUE);
    EXPECT_EQ(found.path, "E:\\SystemVolume.ini");
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_HIDDEN_RECOVERY);
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, FactoryGpt_Fails) {
    Application application(machine::FactoryGpt());
    ExpectRefused(application);
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, UnknownStyle_Fails) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::QueryPartitions", .nth = 1, .code = 0x8004242B});
    ExpectRefused(application);
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, UnexpectedId_Fails) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = 0xDE;
    Application application(facts);
    ExpectRefused(application);
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, RefusedLetter_Fails) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::AssignDriveLetter", .code = 0x8004255C});
    ExpectRefused(application);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "");
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, NoRecoveryMedia_Fails) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).volume->files = {};
    Application application(facts);
    ExpectRefused(application);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "E");
    ExpectTranscript(application.pc.journal);
}

TEST(GetSystemVolumeIni, MediaOfADisc_Fails) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).volume->files.PutFolder("sources/DVD");
    Application application(facts);
    ExpectRefused(application);
    EXPECT_TRUE(Transcript(application.pc.journal)
                    .ends_with("4 Kestova::IsRCVVolume\\tMediaType error. MediaType = {int 1}\n"
                               "4 Kestova::GetSystemVolumeIni\\tIsRCVVolume\\tError\n"
                               "4 Kestova::GetSystemVolumeIni\\t\\tEnd. bReturn = {int 0}\n"));
}

TEST(GetSystemVolumeIni, NoVolumeLayer_FailsForTheMissingStyle) {
    Application application(FactoryMbr());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Search(application, TEXT("before")).result, FALSE);
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::GetSystemVolumeIni\\t\\tStart. pszFile = before dwFileNumberOfElements{ulong 261}\n"
              "4 Kestova::GetDiskStyle\\t\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n"
              "4 Kestova::GetSystemVolumeIni\\tGetDiskStyle\\tERROR_GET_DISK_STYLE. enumDiskStyle = {int 0}\n"
              "4 Kestova::GetSystemVolumeIni\\t\\tEnd. bReturn = {int 0}\n");
}

}  // namespace
