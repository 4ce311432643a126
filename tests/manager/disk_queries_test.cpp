// Which disk is the internal one, whether it is dynamic, and the active flag.

#include "tests/manager/without_volume_layer.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

TEST(GetFirstInternalDriveNumber, FactoryMbr_ReturnsTheDiskOfTheInstalledWindows) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), 0);
    ExpectTranscript(application.pc.journal);
}

TEST(GetFirstInternalDriveNumber, NoInternalDisk_ReturnsNone) {
    // Windows on an NVMe disk: the lower layer names the disk, but no internal one matches.
    machine::Pc facts = FactoryMbr();
    facts.disks[0].busType = 17;
    Application application(facts);
    EXPECT_EQ(application.kestova.GetFirstInternalDriveNumber(), -1);
    ExpectTranscript(application.pc.journal);
}

TEST_F(WithoutVolumeLayer, GetFirstInternalDriveNumber_ReturnsNone) {
    EXPECT_EQ(kestova_.GetFirstInternalDriveNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetFirstInternalDriveNumber\\tStart\n"
              "4 Kestova::GetFirstInternalDriveNumber\\tEnd. DriveNumber = {int -1}\n");
}

TEST(GetActivePartitionNumber, FactoryMbr_ReturnsThePartitionThatBoots) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), 2);
    ExpectTranscript(application.pc.journal);
}

TEST(GetActivePartitionNumber, FactoryGpt_ReturnsNone) {
    Application application(FactoryGpt());
    EXPECT_EQ(application.kestova.GetActivePartitionNumber(), -1);
    ExpectTranscript(application.pc.journal);
}

TEST_F(WithoutVolumeLayer, GetActivePartitionNumber_ReturnsNone) {
    EXPECT_EQ(kestova_.GetActivePartitionNumber(), -1);
    EXPECT_EQ(Records(),
              "4 Kestova::GetActivePartitionNumber\\tStart\n"
              "4 Kestova::GetActivePartitionNumber\\tEnd. PartitionNumber = {int -1}\n");
}

TEST(SetActive, FactoryMbr_Returns0AndClearsNoOtherFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(1), 0);
    EXPECT_EQ(ActivePartitions(application.pc), (std::vector<uint32_t>{1, 2}));
    ExpectTranscript(application.pc.journal);
}

TEST(SetActive, MissingPartition_Returns1) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetActive(9), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal);
}

TEST_F(WithoutVolumeLayer, SetActive_Returns0) {
    EXPECT_EQ(kestova_.SetActive(1), 0);
    EXPECT_EQ(Records(), "4 Kestova::SetActive\\tStart\n4 Kestova::SetActive\\tEnd. iRet = {int 0}\n");
    EXPECT_EQ(ActivePartitions(application_.pc), std::vector<uint32_t>{2});
}

TEST(ClearActive, FactoryMbr_Returns0AndLeavesNoFlag) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.ClearActive(), 0);
    EXPECT_TRUE(ActivePartitions(application.pc).empty());
    ExpectTranscript(application.pc.journal);
}

TEST(ClearActive, RefusedChange_Returns1) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::ChangeAttributes", .code = 0x80042400});
    EXPECT_EQ(application.kestova.ClearActive(), 1);
    EXPECT_EQ(ActivePartitions(application.pc), std::vector<uint32_t>{2});
    ExpectTranscript(application.pc.journal);
}

TEST_F(WithoutVolumeLayer, ClearActive_Returns0) {
    EXPECT_EQ(kestova_.ClearActive(), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::ClearActive\\t\\tStart\n4 Kestova::ClearActive\\t\\tEnd. iRet = {int 0}\n");
}

class Dynamic : public testing::TestWithParam<bool> {};

TEST_P(Dynamic, EitherPack_IsDynamicReturns0) {
    machine::Pc facts = FactoryMbr();
    facts.packs = {{.name = "pack", .dynamic = GetParam()}};
    facts.disks[0].pack = "pack";
    Application application(facts);
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

INSTANTIATE_TEST_SUITE_P(Packs, Dynamic, testing::Bool(),
                         [](const auto& pack) { return pack.param ? "DynamicPack" : "BasicPack"; });

TEST(IsDynamic, UnlistedPartitions_Returns0) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::QueryPartitions", .code = 0x8004242B});
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    EXPECT_EQ(application.pc.faults.Fired(), 1);
    ExpectTranscript(application.pc.journal);
}

TEST(IsDynamic, ServiceNotReady_ReturnsWithoutACall) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsService::IsServiceReady", .code = 1});
    EXPECT_EQ(application.kestova.IsDynamic(), 0);
    EXPECT_EQ(Transcript(application.pc.journal),
              "4 Kestova::IsDynamic\\tStart\n4 Kestova::IsDynamic\\tEnd. bReturn = {int 0}\n");
}

TEST_F(WithoutVolumeLayer, IsDynamic_Returns0) {
    EXPECT_EQ(kestova_.IsDynamic(), 0);
    EXPECT_EQ(Records(), "4 Kestova::IsDynamic\\tStart\n4 Kestova::IsDynamic\\tEnd. bReturn = {int 0}\n");
    EXPECT_TRUE(application_.pc.journal.Calls().empty());
}

}  // namespace
