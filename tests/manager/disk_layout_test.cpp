// The partition style of the internal disk, and its layout.

#include <gmock/gmock.h>

#include "platform/partition_types.h"
#include "tests/manager/without_volume_layer.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;

TEST(GetDiskStyle, FactoryMbr_ReturnsMbr) {
    Application application(FactoryMbr());
    THardDiskType style = HARD_DISK_UNKNOWN;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_MBR);
    ExpectTranscript(application.pc.journal);
}

TEST(GetDiskStyle, FactoryGpt_ReturnsGpt) {
    Application application(FactoryGpt());
    THardDiskType style = HARD_DISK_UNKNOWN;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_GPT);
    ExpectTranscript(application.pc.journal);
}

struct FailingStep {
    const char* name;
    const char* call;
    uint32_t nth;
    uint32_t code;
};

void PrintTo(const FailingStep& failingStep, std::ostream* out) {
    *out << failingStep.name;
}

class GetDiskStyleFailure : public testing::TestWithParam<FailingStep> {};

TEST_P(GetDiskStyleFailure, FailingStep_Returns1WithUnknownStyle) {
    Application application(FactoryMbr());
    application.pc.faults.Arm({.call = GetParam().call, .nth = GetParam().nth, .code = GetParam().code});
    THardDiskType style = HARD_DISK_GPT;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_UNKNOWN);
    EXPECT_EQ(application.pc.faults.Fired(), 1);
    ExpectTranscript(application.pc.journal);
}

INSTANTIATE_TEST_SUITE_P(Step, GetDiskStyleFailure,
                         testing::Values(FailingStep{"no_internal_disk", "GetDriveTypeW", 1, 2},
                                         FailingStep{"selection", "IVdsService::GetObject", 1, 0x80042405},
                                         FailingStep{"partitions", "IVdsAdvancedDisk::QueryPartitions", 1,
                                                     0x8004242B}),
                         [](const auto& tested) { return tested.param.name; });

// S_FALSE is a failure here, but the array that came with it is the caller's.
TEST(GetDiskStyle, PartitionsWithAPositiveCode_ReturnsUnknownAndFreesThem) {
    Application application(FactoryMbr());
    application.pc.faults.Arm(
        {.call = "IVdsAdvancedDisk::QueryPartitions", .nth = 1, .afterEffect = true, .code = S_FALSE});
    THardDiskType style = HARD_DISK_GPT;
    EXPECT_EQ(application.kestova.GetDiskStyle(style), 1);
    EXPECT_EQ(style, HARD_DISK_UNKNOWN);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

TEST_F(WithoutVolumeLayer, GetDiskStyle_Returns0WithUnknownStyle) {
    THardDiskType style = HARD_DISK_MBR;
    EXPECT_EQ(kestova_.GetDiskStyle(style), 0);
    EXPECT_EQ(style, HARD_DISK_UNKNOWN);
    EXPECT_EQ(
        Records(),
        "4 Kestova::GetDiskStyle\\t\\tStart\n4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n");
}

// The object remembers the last style that it returned, the unknown one too; without a volume layer there is
// none.
TEST(GetDiskStyle, AnyDisk_RemembersTheStyleReturned) {
    Application application(FactoryGpt());
    const THardDiskType& remembered = application.kestova.*Open(internals::DiskStyleTag());
    EXPECT_EQ(remembered, HARD_DISK_UNKNOWN);
    THardDiskType style = HARD_DISK_UNKNOWN;
    application.kestova.GetDiskStyle(style);
    EXPECT_EQ(remembered, HARD_DISK_GPT);
    {
        const internals::WithoutVolumeLayer without(application.kestova);
        application.kestova.GetDiskStyle(style);
        EXPECT_EQ(remembered, HARD_DISK_GPT);
    }
    application.pc.faults.Arm({.call = "IVdsAdvancedDisk::QueryPartitions", .code = 0x8004242B});
    application.kestova.GetDiskStyle(style);
    EXPECT_EQ(remembered, HARD_DISK_UNKNOWN);
}

struct Layout {
    const char* name;
    machine::Pc facts;
    std::vector<machine::FaultRule> faults;
    tagDiskTypeEnum type;
};

void PrintTo(const Layout& layout, std::ostream* out) {
    *out << layout.name;
}

machine::Pc WithLabel(machine::Fact<std::string> label) {
    machine::Pc facts = FactoryMbr();
    PartitionOf(facts, 2).volume->label = std::move(label);
    return facts;
}

machine::Pc WithId(uint8_t id) {
    machine::Pc facts = WithLabel(std::string("System Reserved"));
    PartitionOf(facts, 2).mbrType = id;
    return facts;
}

machine::Pc WithoutLetter() {
    machine::Pc facts = WithLabel(std::string("System Reserved"));
    PartitionOf(facts, 2).volume->letters = "";
    facts.system.windowsDirectory = "D:\\Windows";
    return facts;
}

machine::Pc WithGptType(const GUID& type) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 3).gptType = type;
    return facts;
}

// The first of its partitions, with Windows on the last of them.
machine::Pc WithPartitions(machine::Pc facts, size_t count) {
    facts.disks[0].partitions.resize(count);
    facts.disks[0].partitions.back().volume->letters = "C";
    return facts;
}

machine::Pc OfUnknownStyle() {
    machine::Pc facts = FactoryMbr();
    facts.disks[0].style = machine::PartitionStyle::Unknown;
    return facts;
}

class GetCurrentDiskType : public testing::TestWithParam<Layout> {};

TEST_P(GetCurrentDiskType, Layout_ReturnsItsType) {
    const Layout& layout = GetParam();
    Application application(layout.facts);
    for (const machine::FaultRule& fault : layout.faults)
        application.pc.faults.Arm(fault);
    tagDiskTypeEnum type = layout.type == DISK_TYPE_UNKNOWN ? DISK_TYPE_MBR_OTHER : DISK_TYPE_UNKNOWN;
    EXPECT_EQ(application.kestova.GetCurrentDiskType(type), 1);
    EXPECT_EQ(type, layout.type);
    EXPECT_EQ(application.pc.faults.Fired() > 0, !layout.faults.empty());
    ExpectTranscript(application.pc.journal);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
}

const Layout layouts[] = {
    {"gpt_esp", FactoryGpt(), {}, DISK_TYPE_GPT_ESP},
    {"gpt_other", WithGptType(PARTITION_BASIC_DATA_GUID), {}, DISK_TYPE_GPT_OTHER},
    {"gpt_two_partitions", WithPartitions(FactoryGpt(), 2), {}, DISK_TYPE_UNKNOWN},
    {"mbr_system_reserved", WithLabel(std::string("System Reserved")), {}, DISK_TYPE_MBR_SYSTEM_RESERVED},
    {"mbr_system_reserved_upper_case",
     WithLabel(std::string("SYSTEM RESERVED")),
     {},
     DISK_TYPE_MBR_SYSTEM_RESERVED},
    {"mbr_other", FactoryMbr(), {}, DISK_TYPE_MBR_OTHER},
    {"mbr_longer_label", WithLabel(std::string("System Reserved 2")), {}, DISK_TYPE_MBR_OTHER},
    {"mbr_no_label", WithLabel(std::string()), {}, DISK_TYPE_MBR_OTHER},
    {"mbr_unreadable_label",
     WithLabel(machine::Fact<std::string>::Fails(ERROR_NOT_READY)),
     {},
     DISK_TYPE_MBR_OTHER},
    {"mbr_fat", WithId(0x0C), {}, DISK_TYPE_UNKNOWN},
    {"mbr_hidden", WithId(MBR_ID_HIDDEN_RECOVERY), {}, DISK_TYPE_UNKNOWN},
    {"mbr_no_letter", WithoutLetter(), {}, DISK_TYPE_UNKNOWN},
    {"mbr_one_partition", WithPartitions(FactoryMbr(), 1), {}, DISK_TYPE_UNKNOWN},
    {"mbr_no_type",
     FactoryMbr(),
     {{.call = "IVdsAdvancedDisk::QueryPartitions", .nth = 2, .code = 0x8004242B}},
     DISK_TYPE_UNKNOWN},
    {"unknown_style", OfUnknownStyle(), {}, DISK_TYPE_UNKNOWN},
    {"no_style",
     FactoryMbr(),
     {{.call = "IVdsService::GetObject", .nth = 1, .code = 0x80042405}},
     DISK_TYPE_UNKNOWN},
};

INSTANTIATE_TEST_SUITE_P(Layouts, GetCurrentDiskType, testing::ValuesIn(layouts),
                         [](const auto& tested) { return tested.param.name; });

TEST(GetCurrentDiskTypeLabel, LongLabel_IsCutToItsBuffer) {
    Application application(WithLabel(std::string(300, 'L')));
    tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
    EXPECT_EQ(application.kestova.GetCurrentDiskType(type), 1);
    EXPECT_EQ(type, DISK_TYPE_MBR_OTHER);
    EXPECT_THAT(Transcript(application.pc.journal),
                testing::HasSubstr("4 Kestova::GetCurrentDiskType\\t" + std::string(259, 'L') + "\n"));
}

TEST(GetCurrentDiskTypeDisk, OtherDiskSelected_FirstInternalDiskDecides) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.disks[1].style = machine::PartitionStyle::Gpt;
    Application application(facts);
    application.kestova.IsNeedHidePartition(1, 1);
    tagDiskTypeEnum type = DISK_TYPE_UNKNOWN;
    EXPECT_EQ(application.kestova.GetCurrentDiskType(type), 1);
    EXPECT_EQ(type, DISK_TYPE_MBR_OTHER);
}

TEST_F(WithoutVolumeLayer, GetCurrentDiskType_ReturnsUnknown) {
    tagDiskTypeEnum type = DISK_TYPE_MBR_OTHER;
    EXPECT_EQ(kestova_.GetCurrentDiskType(type), 1);
    EXPECT_EQ(type, DISK_TYPE_UNKNOWN);
    EXPECT_EQ(Records(),
              "4 Kestova::GetCurrentDiskType\\t\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tStart\n"
              "4 Kestova::GetDiskStyle\\t\\tEnd. enumDiskStyle = {int 0}\n"
              "4 Kestova::GetCurrentDiskType\\tGetDiskStyle\\tERROR_GET_DISK_STYLE\n"
              "4 {string Kestova::GetCurrentDiskType is 0}\n");
}

}  // namespace
