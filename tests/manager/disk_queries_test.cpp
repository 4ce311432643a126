// Which disk is the internal one, whether it is dynamic, and the active flag.

#include "tests/manager/without_volume_layer.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

TEST(GetFirstInternalDriveNumber, IsTheDiskOfTheInstalledWindows) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), 0);
    ExpectTranscript(application.pc.journal, "manager/get_first_internal_drive_number");
}

TEST(GetFirstInternalDriveNumber, IsNoneWhenTheVolumeLayerFindsNone) {
    // Windows on an NVMe disk: the lower layer names the disk, but no internal one matches.
    machine::Pc facts = FactoryMbr();
    facts.disks[0].busType = 17;
    Application application(facts);
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), -1);
    ExpectTranscript(application.pc.journal, "manager/get_first_internal_drive_number_none");
}

TEST_F(WithoutVolumeLayer, GetFirstInternalDriveNumberIsNone) {
    EXPECT_EQ(kestova_.GetFirstInternalDriveNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetFirstInternalDriveNumber\\tStart\n"
              "4 Kestova::GetFirstInternalDriveNumber\\tEnd. DriveNumber = {int -1}\n");
}

TEST(GetActivePartitionNumber, IsThePartitionThatBoots) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
    ExpectTranscript(application.pc.journal, "manager/get_active_partition_number");
}

TEST(GetActivePartitionNumber, IsNoneOnGpt) {
    Application application(FactoryGpt());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), -1);
    ExpectTranscript(application.pc.journal, "manager/get_active_partition_number_gpt");
}

TEST_F(WithoutVolumeLayer, GetActivePartitionNumberIsNone) {
    EXPECT_EQ(kestova_.GetActivePartitionNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetActivePartitionNumber\\tStart\n"
              "4 Kestova::GetActivePartitionNumber\\tEnd. PartitionNumber = {int -1}\n");
}

TEST(SetActive, AnswersZeroAndClearsNoOtherFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(1), 0);
    EXPECT_EQ(ActivePartitions(application.pc), (std::vector<uint32_t>{1, 2}));
    ExpectTranscript(application.pc.journal, "manager/set_active");
}

TEST(SetActive, OfAMissingPartitionAnswersOne) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(9), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal, "manager/set_active_missing");
}

TEST_F(WithoutVolumeLayer, SetActiveAnswersZero) {
    EXPECT_EQ(kestova_.SetActive(1), 0);
    EXPECT_EQ(Records(), "4 Kestova::SetActive\\tStart\n4 Kestova::SetActive\\tEnd. iRet = {int 0}\n");
    EXPECT_EQ(ActivePartitions(application_.pc), std::vector<uint32_t>{2});
}

TEST(ClearActive, AnswersZeroAndLeavesNoFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.ClearActive(), 0);
    EXPECT_TRUE(ActivePartitions(application.pc).empty());
    ExpectTranscript(application.pc.journal, "manager/clear_active");
}

TEST(ClearActive, AnswersOneWhenAFlagCannotBeCleared) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::ChangeAttributes", .code = 0x80042400});
    EXPECT_EQ(application.kestova.ClearActive(), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal, "manager/clear_active_refused");
}

TEST_F(WithoutVolumeLayer, ClearActiveAnswersZero) {
    EXPECT_EQ(kestova_.ClearActive(), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::ClearActive\\t\\tStart\n4 Kestova::ClearActive\\t\\tEnd. iRet = {int 0}\n");
}

class Dynamic : public testing::TestWithParam<bool> {};

TEST_P(Dynamic, IsNoDisk) {
    machine::Pc facts = FactoryMbr();
    facts.packs = {{.name = "pack", .dynamic = GetParam()}};
    facts.disks[0].pack = "pack";
    Application application(facts);
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    ExpectTranscript(application.pc.journal, "manager/is_dynamic");
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

INSTANTIATE_TEST_SUITE_P(Packs, Dynamic, testing::Bool());

TEST(IsDynamic, IsZeroWhenThePartitionsCannotBeListed) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::QueryPartitions", .code = 0x8004242B});
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    EXPECT_EQ(application.pc.faults.Fired(), 1);
    ExpectTranscript(application.pc.journal, "manager/is_dynamic_partitions");
}

TEST(IsDynamic, AsksNothingOfAServiceThatIsNotReady) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .code = 1});
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::IsDynamic\\tStart\n4 Kestova::IsDynamic\\tEnd. bReturn = {int 0}\n");
}

TEST_F(WithoutVolumeLayer, IsDynamicAnswersZero) {
    EXPECT_EQ(kestova_.IsDynamic(), 0);
    EXPECT_EQ(Records(), "4 Kestova::IsDynamic\\tStart\n4 Kestova::IsDynamic\\tEnd. bReturn = {int 0}\n");
    EXPECT_TRUE(application_.pc.journal.Calls().empty());
}

}  // namespace
