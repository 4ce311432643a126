// The check, and repair, of the recovery partition's MBR ID.

#include "manager/recovery_status.h"

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryMbr;

int Check(Application& application) {
    return (application.kestova.*Open(internals::CheckMBRRcvprtStatusTag()))(1);
}

// The recovery partition shown as an ordinary one, with the letter R.
machine::Pc VisibleRecovery() {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = MBR_ID_NTFS;
    PartitionOf(facts, 1).volume->letters = "R";
    return facts;
}

class ReadyType : public testing::TestWithParam<int> {};

TEST_P(ReadyType, CheckMBRRcvprtStatus_ReturnsReadyWithoutReadingLetterOrContents) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = static_cast<uint8_t>(GetParam());
    PartitionOf(facts, 1).volume->files = {};
    Application application(facts);
    EXPECT_EQ(Check(application), RCVPRT_READY);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, GetParam());
    ExpectTranscript(application.pc.journal);
}

INSTANTIATE_TEST_SUITE_P(Ids, ReadyType, testing::Values(MBR_ID_OEM_RECOVERY, MBR_ID_HIDDEN_RECOVERY),
                         [](const auto& id) {
                             return id.param == MBR_ID_OEM_RECOVERY ? "OemRecovery" : "HiddenRecovery";
                         });

TEST(CheckMBRRcvprtStatus, VisibleRecoveryPartition_HidesIt) {
    Application application(VisibleRecovery());
    EXPECT_EQ(Check(application), RCVPRT_READY);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_NE(PartitionOf(application.pc.facts, 1).volume->files.Find("sources/Qelhdrcv.ini"), nullptr);
    ExpectTranscript(application.pc.journal);
}

TEST(CheckMBRRcvprtStatus, VisiblePartitionWithoutLetter_LeavesIt) {
    machine::Pc facts = VisibleRecovery();
    PartitionOf(facts, 1).volume->letters = "";
    Application application(facts);
    EXPECT_EQ(Check(application), GETLETTER_FAILED);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_NTFS);
    ExpectTranscript(application.pc.journal);
}

TEST(CheckMBRRcvprtStatus, VisiblePartitionWithoutMedia_LeavesIt) {
    machine::Pc facts = VisibleRecovery();
    PartitionOf(facts, 1).volume->files.RemoveFile("sources/Qelhdrcv.ini");
    Application application(facts);
    EXPECT_EQ(Check(application), NO_RCVPRT);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_NTFS);
    ExpectTranscript(application.pc.journal);
}

// Media of every kind bear the markers; this is a copy of a disc.
TEST(CheckMBRRcvprtStatus, VisiblePartitionWithMediaOfADisc_LeavesIt) {
    machine::Pc facts = VisibleRecovery();
    PartitionOf(facts, 1).volume->files.PutFolder("sources/DVD");
    Application application(facts);
    EXPECT_EQ(Check(application), NO_RCVPRT);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_NTFS);
    EXPECT_TRUE(Transcript(application.pc.journal)
                    .ends_with("4 Kestova::IsRCVVolume\\tMediaType error. MediaType = {int 1}\n"
                               "1 Kestova::CheckMBRRcvprtStatus\\tNO_RCVPRT\n"
                               "4 Kestova::CheckMBRRcvprtStatus\\t\\tEnd. iRet = {int 4}\n"));
}

TEST(CheckMBRRcvprtStatus, RefusedTypeChange_ReturnsNotHidden) {
    Application application(VisibleRecovery());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk2::ChangePartitionType", .code = 0x80042413});
    EXPECT_EQ(Check(application), CHANGEID_FAILED);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_NTFS);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).volume->letters, "R");
    ExpectTranscript(application.pc.journal);
}

TEST(CheckMBRRcvprtStatus, AnyOtherId_ReturnsUnexpectedId) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 1).mbrType = 0xDE;
    Application application(facts);
    EXPECT_EQ(Check(application), UNEXPECT_ID);
    ExpectTranscript(application.pc.journal);
}

TEST(CheckMBRRcvprtStatus, UnreadableId_ReturnsNoId) {
    Application application(machine::FactoryGpt());
    EXPECT_EQ(Check(application), GETTYPE_FAILED);
    ExpectTranscript(application.pc.journal);
}

TEST(CheckMBRRcvprtStatus, NoVolumeLayer_ReturnsNoId) {
    Application application(FactoryMbr());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Check(application), GETTYPE_FAILED);
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::CheckMBRRcvprtStatus\\t\\tStart. iPartitionNumber = {int 1}\n"
              "1 Kestova::CheckMBRRcvprtStatus\\tGetPartitionType return FALSE\n"
              "4 Kestova::CheckMBRRcvprtStatus\\t\\tEnd. iRet = {int 16}\n");
}

}  // namespace
