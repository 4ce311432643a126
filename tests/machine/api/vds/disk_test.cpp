// A disk as a whole: its properties and extents.
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

namespace {

constexpr uint64_t MiB = 1024 * 1024;
constexpr uint64_t GiB = 1024 * MiB;

machine::Partition PartitionAt(uint32_t number, uint64_t offset, uint64_t size) {
    machine::Partition partition;
    partition.number = number;
    partition.offset = offset;
    partition.size = size;
    return partition;
}

// The extent type of the only partition.
int ExtentTypeOf(machine::PartitionStyle style, machine::Partition partition) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].style = style;
    partition.offset = 0;
    partition.size = facts.disks[0].size;
    facts.disks[0].partitions = {std::move(partition)};
    DiskClient client(facts);
    const std::vector<VDS_DISK_EXTENT> extents = ExtentsOf(client.disk.Get());
    EXPECT_EQ(extents.size(), 1u);
    return extents.at(0).type;
}

int MbrExtentType(uint8_t type) {
    machine::Partition partition;
    partition.mbrType = type;
    return ExtentTypeOf(machine::PartitionStyle::Mbr, partition);
}

int GptExtentType(const GUID& type, uint64_t attributes = 0) {
    machine::Partition partition;
    partition.gptType = type;
    partition.attributes = attributes;
    return ExtentTypeOf(machine::PartitionStyle::Gpt, partition);
}

}  // namespace

TEST(DiskProperties, MbrDisk_ReturnsTheFactsOfThePc) {
    DiskClient client(machine::FactoryMbr());
    VDS_DISK_PROP properties{};
    ASSERT_EQ(client.disk->GetProperties(&properties), S_OK);
    EXPECT_EQ(properties.dwDeviceType, 7u);
    EXPECT_EQ(properties.ullSize, 500 * GiB);
    EXPECT_EQ(properties.BusType, VDS_BUS_TYPE_SATA);
    EXPECT_EQ(properties.PartitionStyle, VDS_PST_MBR);
    EXPECT_EQ(properties.dwSignature, 0xB2F6B2F6u);
    EXPECT_EQ(properties.ulFlags, 0u);
    EXPECT_EQ(ToUtf8(properties.pwszName), "\\\\?\\PhysicalDrive0");
    EXPECT_EQ(ToUtf8(properties.pwszDiskAddress), "Port0Path0Target0Lun0");
    EXPECT_EQ(ToUtf8(properties.pwszDevicePath),
              "\\\\?\\IDE#DISKST500LT012_________________________SD13____#5&37E07111&0&0.0.0"
              "#{53f56307-b6bf-11d0-94f2-00a0c91efb8b}");
    FreeStrings(properties);
    EXPECT_EQ(client.disk->GetProperties(nullptr), E_POINTER);
}

TEST(DiskProperties, GptDisk_ReturnsItsGuid) {
    DiskClient client(machine::FactoryGpt());
    VDS_DISK_PROP properties{};
    ASSERT_EQ(client.disk->GetProperties(&properties), S_OK);
    EXPECT_EQ(properties.PartitionStyle, VDS_PST_GPT);
    EXPECT_EQ(GuidText(properties.DiskGuid), "6f1f3a52-1111-4000-8000-000000000000");
    FreeStrings(properties);
}

TEST(DiskProperties, AnyDisk_CallerFreesTheStrings) {
    DiskClient client(machine::FactoryMbr());
    VDS_DISK_PROP properties{};
    ASSERT_EQ(client.disk->GetProperties(&properties), S_OK);
    EXPECT_EQ(client.OnLoan()["VDS_DISK_PROP string"], 5);
    FreeStrings(properties);
    EXPECT_EQ(client.OnLoan().count("VDS_DISK_PROP string"), 0u);
    client.pc.facts.disks[0].vdsName.reset();
    ASSERT_EQ(client.disk->GetProperties(&properties), S_OK);
    EXPECT_EQ(properties.pwszName, nullptr);
    EXPECT_EQ(client.OnLoan()["VDS_DISK_PROP string"], 4);
    FreeStrings(properties);
}

TEST(DiskProperties, SameDiskTwice_ReturnsTheSameId) {
    DiskClient client(machine::WinPeTwoDisks());
    const VDS_OBJECT_ID first = DiskId(client.service.Get(), "\\\\?\\PhysicalDrive0");
    const VDS_OBJECT_ID second = DiskId(client.service.Get(), "\\\\?\\PhysicalDrive1");
    EXPECT_FALSE(first == second);
    EXPECT_TRUE(first == DiskId(client.service.Get(), "\\\\?\\PhysicalDrive0"));
}

TEST(DiskProperties, DynamicDisk_IsReportedAsDynamic) {
    machine::Pc facts = machine::FactoryMbr();
    DiskClient client(facts);
    client.pc.facts.packs = {{"dynamic", 1, true}};
    client.pc.facts.disks[0].pack = "dynamic";
    VDS_DISK_PROP properties{};
    ASSERT_EQ(client.disk->GetProperties(&properties), S_OK);
    EXPECT_EQ(properties.ulFlags, 0x2000u);
    FreeStrings(properties);
}

TEST(QueryExtents, PartitionsAndGaps_AreListedByOffset) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].size = 10 * GiB;
    facts.disks[0].partitions = {PartitionAt(1, 4 * GiB, 2 * GiB), PartitionAt(2, MiB, GiB)};
    DiskClient client(facts);
    VDS_DISK_EXTENT* extents = nullptr;
    LONG count = 0;
    ASSERT_EQ(client.disk->QueryExtents(&extents, &count), S_OK);
    EXPECT_EQ(client.OnLoan()["VDS_DISK_EXTENT array"], 1);
    ASSERT_EQ(count, 5);
    const auto expectExtent = [&](int at, VDS_DISK_EXTENT_TYPE type, uint64_t offset, uint64_t size) {
        EXPECT_EQ(extents[at].type, type) << at;
        EXPECT_EQ(extents[at].ullOffset, offset) << at;
        EXPECT_EQ(extents[at].ullSize, size) << at;
        EXPECT_TRUE(extents[at].diskId == DiskId(client.service.Get(), "\\\\?\\PhysicalDrive0"));
    };
    expectExtent(0, VDS_DET_FREE, 0, MiB);
    expectExtent(1, VDS_DET_UNKNOWN, MiB, GiB);
    expectExtent(2, VDS_DET_FREE, MiB + GiB, 3 * GiB - MiB);
    expectExtent(3, VDS_DET_UNKNOWN, 4 * GiB, 2 * GiB);
    expectExtent(4, VDS_DET_FREE, 6 * GiB, 4 * GiB);
    CoTaskMemFree(extents);
    EXPECT_EQ(client.OnLoan().count("VDS_DISK_EXTENT array"), 0u);
    EXPECT_EQ(client.disk->QueryExtents(nullptr, &count), E_POINTER);
    EXPECT_EQ(client.disk->QueryExtents(&extents, nullptr), E_POINTER);
}

TEST(QueryExtents, NoTable_IsOneUnusableExtent) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks[0].style = machine::PartitionStyle::Unknown;
    client.pc.facts.disks[0].partitions.clear();
    const std::vector<VDS_DISK_EXTENT> extents = ExtentsOf(client.disk.Get());
    ASSERT_EQ(extents.size(), 1u);
    EXPECT_EQ(extents[0].type, VDS_DET_UNUSABLE);
    EXPECT_EQ(extents[0].ullSize, 500 * GiB);
}

TEST(QueryExtents, EveryMbrType_HasItsExtentType) {
    for (const uint8_t type : std::initializer_list<uint8_t>{0x01, 0x04, 0x06, 0x07, 0x0B, 0x0C, 0x0E})
        EXPECT_EQ(MbrExtentType(type), VDS_DET_DATA) << int{type};
    for (const uint8_t type : std::initializer_list<uint8_t>{0x12, 0x27, 0x84, 0xA0, 0xDE, 0xFE})
        EXPECT_EQ(MbrExtentType(type), VDS_DET_OEM) << int{type};
    EXPECT_EQ(MbrExtentType(0x42), VDS_DET_LDM);
    EXPECT_EQ(MbrExtentType(0x49), VDS_DET_UNKNOWN);
    EXPECT_EQ(MbrExtentType(0x05), VDS_DET_UNKNOWN);
}

TEST(QueryExtents, EveryGptType_HasItsExtentType) {
    EXPECT_EQ(GptExtentType(PARTITION_BASIC_DATA_GUID), VDS_DET_DATA);
    EXPECT_EQ(GptExtentType(PARTITION_BASIC_DATA_GUID, 1), VDS_DET_OEM) << "platform required";
    EXPECT_EQ(GptExtentType(PARTITION_SYSTEM_GUID), VDS_DET_ESP);
    EXPECT_EQ(GptExtentType(PARTITION_MSFT_RESERVED_GUID), VDS_DET_MSR);
    EXPECT_EQ(GptExtentType(PARTITION_MSFT_RECOVERY_GUID), VDS_DET_OEM);
    EXPECT_EQ(GptExtentType(*GuidFromText("5808c8aa-7e8f-42e0-85d2-e1e90434cfb3")), VDS_DET_LDM);
    EXPECT_EQ(GptExtentType(*GuidFromText("af9b60a0-1431-4f62-bc68-3311714a69ad")), VDS_DET_LDM);
    EXPECT_EQ(GptExtentType(ORVOBOOT_GUID), VDS_DET_UNKNOWN);
    EXPECT_EQ(ExtentTypeOf(machine::PartitionStyle::Unknown, {}), VDS_DET_UNKNOWN);
}

TEST(QueryExtents, VolumeWithExtentType_OverridesThePartitions) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(2).volume->extentType = VDS_DET_UNUSABLE;
    EXPECT_EQ(ExtentsOf(client.disk.Get())[2].type, VDS_DET_UNUSABLE);
    EXPECT_TRUE(client.VolumeId(2) == GUID_NULL);
}

TEST(QueryExtents, SameVolumeTwice_ReturnsTheSameId) {
    DiskClient client(machine::FactoryGpt());
    const VDS_OBJECT_ID windows = client.VolumeId(5);
    EXPECT_FALSE(windows == GUID_NULL);
    EXPECT_FALSE(windows == client.VolumeId(3)) << "the EFI system partition's";
    EXPECT_FALSE(client.VolumeId(3) == GUID_NULL);
    EXPECT_TRUE(windows == client.VolumeId(5));
    EXPECT_TRUE(client.VolumeId(1) == GUID_NULL) << "an unknown type";
    EXPECT_TRUE(client.VolumeId(2) == GUID_NULL) << "recovery";
    EXPECT_TRUE(client.VolumeId(4) == GUID_NULL) << "reserved, without contents";
}

TEST(AnyDiskMethod, RemovedDisk_FailsWithObjectDeleted) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.disks.clear();
    VDS_DISK_PROP properties{};
    VDS_DISK_EXTENT* extents = nullptr;
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    WCHAR letter = TEXT('?');
    CHANGE_ATTRIBUTES_PARAMETERS attributes{};
    CHANGE_PARTITION_TYPE_PARAMETERS type{};
    EXPECT_EQ(client.disk->GetProperties(&properties), VDS_E_OBJECT_DELETED);
    EXPECT_EQ(client.disk->QueryExtents(&extents, &count), VDS_E_OBJECT_DELETED);
    EXPECT_EQ(client.advanced->QueryPartitions(&partitions, &count), VDS_E_OBJECT_DELETED);
    EXPECT_EQ(client.advanced->GetDriveLetter(MiB, &letter), VDS_E_OBJECT_DELETED);
    EXPECT_EQ(client.advanced->ChangeAttributes(MiB, &attributes), VDS_E_OBJECT_DELETED);
    EXPECT_EQ(client.advanced2->ChangePartitionType(MiB, TRUE, &type), VDS_E_OBJECT_DELETED);
}
