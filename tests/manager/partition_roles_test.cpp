// What a partition is for: hidden, hibernation, cache.

#include "platform/partition_types.h"
#include "tests/manager/without_volume_layer.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

machine::Pc WithLabel(const char* label) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->label = std::string(label);
    return facts;
}

machine::Pc WithGptType(const GUID& type) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 2).gptType = type;
    return facts;
}

machine::Pc OfUnknownStyle() {
    machine::Pc facts = FactoryMbr();
    facts.disks[0].style = machine::PartitionStyle::Unknown;
    return facts;
}

struct Role {
    const char* name;
    machine::Pc facts;
    int disk;
    int partition;
    int result;
};

void PrintTo(const Role& role, std::ostream* out) {
    *out << role.name;
}

// --- to be hidden ---

class IsNeedHidePartition : public testing::TestWithParam<Role> {};

TEST_P(IsNeedHidePartition, Partition_ReturnsWhetherToHideIt) {
    Application application(GetParam().facts);
    EXPECT_EQ(application.kestova.IsNeedHidePartition(GetParam().disk, GetParam().partition),
              GetParam().result);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Role hidden[] = {
    {"Label", WithLabel("System Reserved"), 0, 2, 1},
    {"LabelInAnyCase", WithLabel("SYSTEM RESERVED"), 0, 2, 1},
    {"OtherLabel", FactoryMbr(), 0, 2, 0},
    {"NoVolume", FactoryMbr(), 0, 4, 0},
    {"MakersBoot", WithGptType(ORVOBOOT_GUID), 0, 2, 1},
    {"EfiSystem", WithGptType(PARTITION_SYSTEM_GUID), 0, 2, 1},
    {"Reserved", WithGptType(PARTITION_MSFT_RESERVED_GUID), 0, 2, 1},
    {"BasicData", WithGptType(PARTITION_BASIC_DATA_GUID), 0, 2, 0},
    {"UnknownStyle", OfUnknownStyle(), 0, 2, 1},
    {"NoPartition", FactoryMbr(), 0, 9, 1},
    {"NoDisk", FactoryMbr(), 3, 2, 0},
};

INSTANTIATE_TEST_SUITE_P(Partitions, IsNeedHidePartition, testing::ValuesIn(hidden),
                         [](const auto& tested) { return tested.param.name; });

// The extents cannot be read: the one selected before stays, and lends its volume's label.
TEST(IsNeedHidePartitionLabel, UnreadableExtents_LabelOfThePartitionSelectedBeforeDecides) {
    Application application(WithLabel("System Reserved"));
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 3), 0);
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 2), 1);
    application.pc.faults.Arm({.call = "IVdsDisk::QueryExtents", .code = 0x80042405});
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 3), 1);
}

TEST_F(WithoutVolumeLayer, IsNeedHidePartition_Returns0) {
    EXPECT_EQ(kestova_.IsNeedHidePartition(0, 9), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsNeedHidePartition\\t\\tStart\n4 Kestova::IsNeedHidePartition\\t\\tEnd\n");
}

// --- the BIOS's hibernation ---

class IsBIOSHibernationPartition : public testing::TestWithParam<Role> {};

TEST_P(IsBIOSHibernationPartition, Partition_ReturnsWhetherItIs) {
    Application application(GetParam().facts);
    EXPECT_EQ(application.kestova.IsBIOSHibernationPartition(GetParam().disk, GetParam().partition),
              GetParam().result);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Role hibernation[] = {
    {"ItsId", FactoryMbr(), 0, 4, 1},
    {"OtherId", FactoryMbr(), 0, 2, 0},
    {"GptWithItsFirstByte", WithGptType({MBR_ID_BIOS_HIBERNATION, 0, 0, {}}), 0, 2, 0},
    {"NoPartition", FactoryMbr(), 0, 9, 0},
    {"NoDisk", FactoryMbr(), 3, 4, 0},
};

INSTANTIATE_TEST_SUITE_P(Partitions, IsBIOSHibernationPartition, testing::ValuesIn(hibernation),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(WithoutVolumeLayer, IsBIOSHibernationPartition_Returns0) {
    EXPECT_EQ(kestova_.IsBIOSHibernationPartition(0, 4), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsBIOSHibernationPartition\\t\\tStart\n"
              "4 Kestova::IsBIOSHibernationPartition\\t\\tEnd  bRet = {int 0}\n");
}

TEST(SetBIOSHibernationPartitionID, FactoryMbr_ChangesTheIdAndReturns0) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(3), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 3).mbrType, MBR_ID_BIOS_HIBERNATION);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(SetBIOSHibernationPartitionID, PartitionWithTheId_Returns0WithoutAChange) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(4), 0);
    EXPECT_TRUE(application.pc.journal.Calls("IVdsAdvancedDisk2::ChangePartitionType").empty());
    ExpectTranscript(application.pc.journal);
}

TEST(SetBIOSHibernationPartitionID, OtherDiskSelected_ActsOnTheFirstInternalDisk) {
    Application application(machine::WinPeTwoDisks());
    application.kestova.IsBIOSHibernationPartition(1, 1);
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(1), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_BIOS_HIBERNATION);
    EXPECT_EQ(application.pc.facts.disks[1].partitions[0].mbrType, MBR_ID_CACHE);
}

TEST(SetBIOSHibernationPartitionID, FactoryGpt_Returns1) {
    Application application(FactoryGpt());
    const std::vector<machine::Disk> before = application.pc.facts.disks;
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(2), 1);
    EXPECT_EQ(application.pc.facts.disks, before);
    ExpectTranscript(application.pc.journal);
}

TEST(SetBIOSHibernationPartitionID, RefusedChange_Returns1) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk2::ChangePartitionType", .code = 0x80042400});
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(3), 1);
    EXPECT_EQ(PartitionOf(application.pc.facts, 3).mbrType, MBR_ID_NTFS);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST_F(WithoutVolumeLayer, SetBIOSHibernationPartitionID_Returns1) {
    EXPECT_EQ(kestova_.SetBIOSHibernationPartitionID(3), 1);
    EXPECT_EQ(Records(),
              "4 Kestova::SetBIOSHibernationPartitionID\\t\\tStart\n"
              "4 Kestova::SetBIOSHibernationPartitionID\\t\\tEnd. bReturn{int 0}\n");
}

// --- the cache ---

TEST(IsCachePartitionForExpCacheExist, WinPeTwoDisks_ReturnsFound) {
    Application application(machine::WinPeTwoDisks());
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 1);
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(IsCachePartitionForExpCacheExist, OtherType_ReturnsNone) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks[1].partitions[0].mbrType = MBR_ID_NTFS;
    Application application(facts);
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 0);
    ExpectTranscript(application.pc.journal);
}

TEST(IsCachePartitionForExpCacheExist, InstalledWindows_ReturnsNone) {
    machine::Pc facts = FactoryMbr();
    facts.disks.push_back(machine::WinPeTwoDisks().disks[1]);
    Application application(facts);
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 0);
    ExpectTranscript(application.pc.journal);
}

TEST_F(WithoutVolumeLayer, IsCachePartitionForExpCacheExist_RecordsAnError) {
    EXPECT_EQ(kestova_.IsCachePartitionForExpCacheExist(), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsCachePartitionForExpCacheExist\\t\\tStart\n"
              "1 Kestova::IsCachePartitionForExpCacheExist failed for m_pVDSPartition == NULL\n"
              "4 Kestova::IsCachePartitionForExpCacheExist\\t\\t End\n");
}

}  // namespace
