// The rows of the partition types, each with what it must say.
#include "platform/partition_types.h"

#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <string>

#include "base/guid.h"

namespace {

// A row as the test expects it; GPT types in text.
struct Row {
    std::string name;
    std::string type;
    std::string words = {};  // empty: none
    std::string role = {};   // empty: none
    VDS_DISK_EXTENT_TYPE extent = VDS_DET_UNKNOWN;
    bool letterable = false;
    bool hidden = false;
    bool extended = false;
};

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.name;
}

const Row mbrRows[] = {
    {.name = "Fat12", .type = "1", .extent = VDS_DET_DATA},
    {.name = "SmallFat16", .type = "4", .extent = VDS_DET_DATA},
    {.name = "Extended", .type = "5", .extended = true},
    {.name = "Fat16", .type = "6", .extent = VDS_DET_DATA},
    {.name = "Ntfs", .type = "7", .words = "NTFS", .extent = VDS_DET_DATA},
    {.name = "Fat32", .type = "11", .extent = VDS_DET_DATA},
    {.name = "Fat32Lba", .type = "12", .extent = VDS_DET_DATA},
    {.name = "Fat16Lba", .type = "14", .extent = VDS_DET_DATA},
    {.name = "ExtendedLba", .type = "15", .extended = true},
    {.name = "OemRecovery",
     .type = "18",
     .words = "OEM recovery",
     .role = "recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.name = "HiddenRecovery",
     .type = "39",
     .words = "hidden recovery",
     .role = "recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.name = "Dynamic", .type = "66", .extent = VDS_DET_LDM},
    {.name = "Cache", .type = "73", .words = "cache", .role = "cache"},
    {.name = "BiosHibernation", .type = "132", .words = "hibernation", .extent = VDS_DET_OEM},
    {.name = "OemA0", .type = "160", .extent = VDS_DET_OEM},
    {.name = "OemDe", .type = "222", .extent = VDS_DET_OEM},
    {.name = "OemFe", .type = "254", .extent = VDS_DET_OEM},
};

const Row gptRows[] = {
    {.name = "MakersBoot",
     .type = "5b8e2a91-3c7d-4f06-9e14-72d0c6a4b3e5",
     .words = "maker's boot",
     .role = "maker's boot",
     .letterable = true,
     .hidden = true},
    {.name = "Cache", .type = "b8cb5058-c187-4719-baf0-379ca2d4c97e", .words = "cache", .role = "cache"},
    {.name = "EfiSystem",
     .type = "c12a7328-f81f-11d2-ba4b-00a0c93ec93b",
     .words = "EFI system",
     .role = "EFI system",
     .extent = VDS_DET_ESP,
     .letterable = true,
     .hidden = true},
    {.name = "MicrosoftReserved",
     .type = "e3c9e316-0b5c-4db8-817d-f92df00215ae",
     .words = "Microsoft reserved",
     .extent = VDS_DET_MSR,
     .hidden = true},
    {.name = "BasicData",
     .type = "ebd0a0a2-b9e5-4433-87c0-68b6b72699c7",
     .words = "basic data",
     .extent = VDS_DET_DATA,
     .letterable = true},
    {.name = "WindowsRecovery",
     .type = "de94bba4-06d1-4d40-a16a-bfd50179d6ac",
     .words = "Windows recovery",
     .extent = VDS_DET_OEM,
     .letterable = true},
    {.name = "DynamicMetadata", .type = "5808c8aa-7e8f-42e0-85d2-e1e90434cfb3", .extent = VDS_DET_LDM},
    {.name = "DynamicData", .type = "af9b60a0-1431-4f62-bc68-3311714a69ad", .extent = VDS_DET_LDM},
};

std::string TextOrEmpty(const char* text) {
    return text != nullptr ? text : "";
}

template <typename Type>
void ExpectRow(const PartitionType<Type>& row, const Row& expected) {
    EXPECT_EQ(TextOrEmpty(row.words), expected.words);
    EXPECT_EQ(TextOrEmpty(row.role), expected.role);
    EXPECT_EQ(row.extent, expected.extent);
    EXPECT_EQ(row.letterable, expected.letterable);
    EXPECT_EQ(row.hidden, expected.hidden);
    EXPECT_EQ(row.extended, expected.extended);
}

class MbrPartitionTypes : public testing::TestWithParam<Row> {};
class GptPartitionTypes : public testing::TestWithParam<Row> {};

TEST_P(MbrPartitionTypes, Id_PartitionTypeOf_ReturnsItsRow) {
    ExpectRow(PartitionTypeOf(static_cast<BYTE>(std::stoi(GetParam().type))), GetParam());
}

TEST_P(GptPartitionTypes, Guid_PartitionTypeOf_ReturnsItsRow) {
    ExpectRow(PartitionTypeOf(*GuidFromText(GetParam().type)), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Of, MbrPartitionTypes, testing::ValuesIn(mbrRows),
                         [](const auto& tested) { return tested.param.name; });
INSTANTIATE_TEST_SUITE_P(Of, GptPartitionTypes, testing::ValuesIn(gptRows),
                         [](const auto& tested) { return tested.param.name; });

TEST(PartitionTypes, Tables_CountRows_HaveNoneBeyondTheTestedOnes) {
    EXPECT_EQ(std::size(mbrPartitionTypes), std::size(mbrRows));
    EXPECT_EQ(std::size(gptPartitionTypes), std::size(gptRows));
}

TEST(PartitionTypes, TypeWithoutARow_PartitionTypeOf_ReturnsARowOfNothing) {
    ExpectRow(PartitionTypeOf(BYTE{0xAB}), {});
    ExpectRow(PartitionTypeOf(MBR_ID_NONE), {});
    ExpectRow(PartitionTypeOf(GUID{}), {});
    EXPECT_EQ(PartitionTypeOf(BYTE{0xAB}).type, 0xAB);
}

// The raw test of SetDriveLetter reads the first byte of a type GUID as an MBR ID.
TEST(PartitionTypes, GuidOfARow_FirstByteAsMbrId_IsNotLetterable) {
    for (const PartitionType<GUID>& row : gptPartitionTypes) {
        const auto firstByte = static_cast<BYTE>(row.type.Data1 & 0xFF);
        EXPECT_FALSE(PartitionTypeOf(firstByte).letterable) << GuidText(row.type);
    }
}

}  // namespace
