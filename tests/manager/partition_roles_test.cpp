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
    const char* transcript;
    machine::Pc facts;
    int disk;
    int partition;
    int result;
};

// --- to be hidden ---

class IsNeedHidePartition : public testing::TestWithParam<Role> {};

TEST_P(IsNeedHidePartition, IsToldWithItsTranscript) {
    Application application(GetParam().facts);
    EXPECT_EQ(application.kestova.IsNeedHidePartition(GetParam().disk, GetParam().partition),
              GetParam().result);
    ExpectTranscript(application.pc.journal,
                     std::string("manager/is_need_hide_partition_") + GetParam().transcript);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Role hidden[] = {
    {"Label", "by_label", WithLabel("System Reserved"), 0, 2, 1},
    {"LabelInAnyCase", "by_label", WithLabel("SYSTEM RESERVED"), 0, 2, 1},
    {"OtherLabel", "by_label", FactoryMbr(), 0, 2, 0},
    {"NoVolume", "no_volume", FactoryMbr(), 0, 4, 0},
    {"MakersBoot", "by_type", WithGptType(ORVOBOOT_GUID), 0, 2, 1},
    {"EfiSystem", "by_type", WithGptType(PARTITION_SYSTEM_GUID), 0, 2, 1},
    {"Reserved", "by_type", WithGptType(PARTITION_MSFT_RESERVED_GUID), 0, 2, 1},
    {"BasicData", "by_type", WithGptType(PARTITION_BASIC_DATA_GUID), 0, 2, 0},
    {"UnknownStyle", "by_type", OfUnknownStyle(), 0, 2, 1},
    {"NoPartition", "by_type", FactoryMbr(), 0, 9, 1},
    {"NoDisk", "no_disk", FactoryMbr(), 3, 2, 0},
};

INSTANTIATE_TEST_SUITE_P(Partitions, IsNeedHidePartition, testing::ValuesIn(hidden),
                         [](const auto& tested) { return tested.param.name; });

// The extents cannot be read: the one selected before stays, and lends its volume's label.
TEST(IsNeedHidePartitionLabel, MayBeThatOfThePartitionSelectedBefore) {
    Application application(WithLabel("System Reserved"));
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 3), 0);
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 2), 1);
    application.pc.faults.Arm({.call = "IVdsDisk::QueryExtents", .code = 0x80042405});
    EXPECT_EQ(application.kestova.IsNeedHidePartition(0, 3), 1);
}

TEST_F(WithoutVolumeLayer, IsNeedHidePartitionIsZero) {
    EXPECT_EQ(kestova_.IsNeedHidePartition(0, 9), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsNeedHidePartition\\t\\tStart\n4 Kestova::IsNeedHidePartition\\t\\tEnd\n");
}

// --- the BIOS's hibernation ---

class IsBIOSHibernationPartition : public testing::TestWithParam<Role> {};

TEST_P(IsBIOSHibernationPartition, IsToldWithItsTranscript) {
    Application application(GetParam().facts);
    EXPECT_EQ(application.kestova.IsBIOSHibernationPartition(GetParam().disk, GetParam().partition),
              GetParam().result);
    ExpectTranscript(application.pc.journal,
                     std::string("manager/is_bios_hibernation_partition_") + GetParam().transcript);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Role hibernation[] = {
    {"ItsId", "its_id", FactoryMbr(), 0, 4, 1},
    {"OtherId", "other_id", FactoryMbr(), 0, 2, 0},
    {"GptWithItsFirstByte", "other_id", WithGptType({MBR_ID_BIOS_HIBERNATION, 0, 0, {}}), 0, 2, 0},
    {"NoPartition", "other_id", FactoryMbr(), 0, 9, 0},
    {"NoDisk", "no_disk", FactoryMbr(), 3, 4, 0},
};

INSTANTIATE_TEST_SUITE_P(Partitions, IsBIOSHibernationPartition, testing::ValuesIn(hibernation),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(WithoutVolumeLayer, IsBIOSHibernationPartitionIsZero) {
    EXPECT_EQ(kestova_.IsBIOSHibernationPartition(0, 4), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsBIOSHibernationPartition\\t\\tStart\n"
              "4 Kestova::IsBIOSHibernationPartition\\t\\tEnd  bRet = {int 0}\n");
}

TEST(SetBIOSHibernationPartitionID, AnswersZeroWhenThePartitionHasTheId) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(3), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 3).mbrType, MBR_ID_BIOS_HIBERNATION);
    ExpectTranscript(application.pc.journal, "manager/set_bios_hibernation_partition_id");
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(SetBIOSHibernationPartitionID, AnswersZeroWhenThePartitionHadTheId) {
    Application application(FactoryMbr());
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(4), 0);
    EXPECT_TRUE(application.pc.journal.Calls("IVdsAdvancedDisk2::ChangePartitionType").empty());
    ExpectTranscript(application.pc.journal, "manager/set_bios_hibernation_partition_id_already");
}

TEST(SetBIOSHibernationPartitionID, ActsOnTheFirstInternalDiskWhateverWasSelected) {
    Application application(machine::WinPeTwoDisks());
    application.kestova.IsBIOSHibernationPartition(1, 1);
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(1), 0);
    EXPECT_EQ(PartitionOf(application.pc.facts, 1).mbrType, MBR_ID_BIOS_HIBERNATION);
    EXPECT_EQ(application.pc.facts.disks[1].partitions[0].mbrType, MBR_ID_CACHE);
}

TEST(SetBIOSHibernationPartitionID, AnswersOneOnAGptDisk) {
    Application application(FactoryGpt());
    const std::vector<machine::Disk> before = application.pc.facts.disks;
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(2), 1);
    EXPECT_EQ(application.pc.facts.disks, before);
    ExpectTranscript(application.pc.journal, "manager/set_bios_hibernation_partition_id_gpt");
}

TEST(SetBIOSHibernationPartitionID, AnswersOneWhenTheChangeIsRefused) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk2::ChangePartitionType", .code = 0x80042400});
    EXPECT_EQ(application.kestova.SetBIOSHibernationPartitionID(3), 1);
    EXPECT_EQ(PartitionOf(application.pc.facts, 3).mbrType, MBR_ID_NTFS);
    ExpectTranscript(application.pc.journal, "manager/set_bios_hibernation_partition_id_refused");
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST_F(WithoutVolumeLayer, SetBIOSHibernationPartitionIDAnswersOne) {
    EXPECT_EQ(kestova_.SetBIOSHibernationPartitionID(3), 1);
    EXPECT_EQ(Records(),
              "4 Kestova::SetBIOSHibernationPartitionID\\t\\tStart\n"
              "4 Kestova::SetBIOSHibernationPartitionID\\t\\tEnd. bReturn{int 0}\n");
}

// --- the cache ---

TEST(IsCachePartitionForExpCacheExist, IsFoundOnTheSecondDisk) {
    Application application(machine::WinPeTwoDisks());
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 1);
    ExpectTranscript(application.pc.journal, "manager/is_cache_partition_exist");
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST(IsCachePartitionForExpCacheExist, IsNotAPartitionOfAnotherType) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks[1].partitions[0].mbrType = MBR_ID_NTFS;
    Application application(facts);
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 0);
    ExpectTranscript(application.pc.journal, "manager/is_cache_partition_exist_other_type");
}

TEST(IsCachePartitionForExpCacheExist, IsNeverFoundInTheInstalledWindows) {
    machine::Pc facts = FactoryMbr();
    facts.disks.push_back(machine::WinPeTwoDisks().disks[1]);
    Application application(facts);
    EXPECT_EQ(application.kestova.IsCachePartitionForExpCacheExist(), 0);
    ExpectTranscript(application.pc.journal, "manager/is_cache_partition_exist_windows");
}

TEST_F(WithoutVolumeLayer, IsCachePartitionForExpCacheExistIsAnError) {
    EXPECT_EQ(kestova_.IsCachePartitionForExpCacheExist(), 0);
    EXPECT_EQ(Records(),
              "4 Kestova::IsCachePartitionForExpCacheExist\\t\\tStart\n"
              "1 Kestova::IsCachePartitionForExpCacheExist failed for m_pVDSPartition == NULL\n"
              "4 Kestova::IsCachePartitionForExpCacheExist\\t\\t End\n");
}

}  // namespace
