// Changes of the active flag, attributes and types of partitions, and their effect on volumes.
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

namespace {

HRESULT SetActive(DiskClient& client, uint32_t partition, BOOLEAN active) {
    CHANGE_ATTRIBUTES_PARAMETERS parameters{};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.bootIndicator = active;
    return client.advanced->ChangeAttributes(client.Partition(partition).offset, &parameters);
}

HRESULT SetAttributes(DiskClient& client, uint32_t partition, uint64_t attributes) {
    CHANGE_ATTRIBUTES_PARAMETERS parameters{};
    parameters.style = VDS_PST_GPT;
    parameters.GptPartInfo.attributes = attributes;
    return client.advanced->ChangeAttributes(client.Partition(partition).offset, &parameters);
}

HRESULT SetType(DiskClient& client, uint32_t partition, BYTE type, BOOL force = TRUE) {
    CHANGE_PARTITION_TYPE_PARAMETERS parameters{};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.partitionType = type;
    return client.advanced2->ChangePartitionType(client.Partition(partition).offset, force, &parameters);
}

HRESULT SetType(DiskClient& client, uint32_t partition, const GUID& type) {
    CHANGE_PARTITION_TYPE_PARAMETERS parameters{};
    parameters.style = VDS_PST_GPT;
    parameters.GptPartInfo.partitionType = type;
    return client.advanced2->ChangePartitionType(client.Partition(partition).offset, TRUE, &parameters);
}

std::vector<int> BootIndicators(DiskClient& client) {
    std::vector<int> indicators;
    for (const machine::Partition& partition : client.pc.facts.disks[0].partitions)
        indicators.push_back(partition.bootIndicator);
    return indicators;
}

constexpr uint64_t MiB = 1024ULL * 1024;

// Records what reaches the medium, and fails on request.
class RecordingTable final : public machine::PartitionTable {
  public:
    uint32_t SetActive(uint64_t offset, bool active, machine::OtherFlags others) override {
        writes.push_back((active ? "active " : "inactive ") + std::to_string(offset / MiB) +
                         (others == machine::OtherFlags::Clear ? " alone" : ""));
        return --failsIn == 0 ? ERROR_WRITE_PROTECT : ERROR_SUCCESS;
    }
    uint32_t SetMbrType(uint64_t offset, uint8_t type) override {
        writes.push_back("type " + std::to_string(offset / MiB) + " " + std::to_string(type));
        return --failsIn == 0 ? ERROR_WRITE_PROTECT : ERROR_SUCCESS;
    }
    std::vector<machine::TableEntry> Entries() override { return entries; }

    std::vector<std::string> writes;
    std::vector<machine::TableEntry> entries;  // the result of Entries() after a failure
    int failsIn = 0;                           // which write fails, from 1
};

std::shared_ptr<RecordingTable> PutOnMedium(DiskClient& client) {
    auto table = std::make_shared<RecordingTable>();
    client.pc.facts.disks[0].table = table;
    return table;
}

}  // namespace

TEST(ChangeAttributes, MbrPartition_SetsAndClearsOneFlag) {
    DiskClient client(machine::FactoryMbr());
    EXPECT_EQ(SetActive(client, 1, 0x80), S_OK) << "any value but 0 sets";
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{1, 1, 0, 0})) << "the others stay";
    EXPECT_EQ(SetActive(client, 2, 0), S_OK);
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{1, 0, 0, 0}));
}

TEST(ChangeAttributes, ExclusiveFlags_SettingOneClearsTheOthers) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.switches.activeFlagIsExclusive = true;
    EXPECT_EQ(SetActive(client, 1, 1), S_OK);
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{1, 0, 0, 0}));
    client.Partition(3).bootIndicator = 1;
    EXPECT_EQ(SetActive(client, 1, 0), S_OK);
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{0, 0, 1, 0})) << "clearing touches one";
}

TEST(ChangeAttributes, UnchangeablePartition_Fails) {
    DiskClient client(machine::FactoryMbr());
    const std::vector<int> before = BootIndicators(client);
    EXPECT_EQ(SetAttributes(client, 1, 0), VDS_E_PARTITION_STYLE_MISMATCH);
    CHANGE_ATTRIBUTES_PARAMETERS parameters{};
    EXPECT_EQ(client.advanced->ChangeAttributes(client.Partition(1).offset, &parameters),
              VDS_E_PARTITION_STYLE_MISMATCH);
    parameters.style = VDS_PST_MBR;
    EXPECT_EQ(client.advanced->ChangeAttributes(7, &parameters), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.advanced->ChangeAttributes(client.Partition(1).offset, nullptr), E_INVALIDARG);
    client.Partition(3).mbrType = 0x0F;
    EXPECT_EQ(SetActive(client, 3, 1), VDS_E_INVALID_OPERATION) << "extended";
    client.pc.facts.packs = {{"dynamic", 1, true}};
    client.pc.facts.disks[0].pack = "dynamic";
    EXPECT_EQ(SetActive(client, 1, 1), VDS_E_NOT_SUPPORTED) << "dynamic";
    EXPECT_EQ(BootIndicators(client), before);
}

TEST(ChangeAttributes, GptPartition_ChangesThreeAttributes) {
    DiskClient client(machine::FactoryGpt());
    client.Partition(5).attributes = 4;
    EXPECT_EQ(SetAttributes(client, 5, 0xD000000000000004), S_OK);
    EXPECT_EQ(client.Partition(5).attributes, 0xD000000000000004u);
    EXPECT_EQ(SetAttributes(client, 5, 0x8000000000000005), E_INVALIDARG) << "platform required";
    EXPECT_EQ(client.Partition(5).attributes, 0xD000000000000004u);
    PutOnMedium(client);
    EXPECT_EQ(SetAttributes(client, 5, 4), VDS_E_NOT_SUPPORTED) << "on an image";
    EXPECT_EQ(client.Partition(5).attributes, 0xD000000000000004u);
}

TEST(ChangeAttributes, DiskOnImage_WritesTheMediumFirst) {
    DiskClient client(machine::FactoryMbr());
    const auto table = PutOnMedium(client);
    client.pc.facts.switches.activeFlagIsExclusive = true;
    EXPECT_EQ(SetActive(client, 1, 1), S_OK);
    EXPECT_EQ(table->writes, (std::vector<std::string>{"active 1 alone"})) << "in one write";
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(SetActive(client, 1, 0), S_OK);
    client.pc.facts.switches.activeFlagIsExclusive = false;
    EXPECT_EQ(SetActive(client, 2, 1), S_OK);
    EXPECT_EQ(table->writes, (std::vector<std::string>{"active 1 alone", "inactive 1", "active 15361"}));
}

TEST(ChangeAttributes, WriteProtectedMedium_ChangesNothing) {
    DiskClient client(machine::FactoryMbr());
    const auto table = PutOnMedium(client);
    table->failsIn = 1;
    EXPECT_EQ(SetActive(client, 1, 1), HRESULT_FROM_WIN32(ERROR_WRITE_PROTECT));
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{0, 1, 0, 0}));
    client.pc.facts.switches.activeFlagIsExclusive = true;
    table->failsIn = 1;
    EXPECT_EQ(SetActive(client, 1, 1), HRESULT_FROM_WIN32(ERROR_WRITE_PROTECT));
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{0, 1, 0, 0}));
}

TEST(ChangeAttributes, FailedWrite_FactsFollowTheMedium) {
    DiskClient client(machine::FactoryMbr());
    const auto table = PutOnMedium(client);
    client.pc.facts.switches.activeFlagIsExclusive = true;
    table->failsIn = 1;
    table->entries = {
        {client.Partition(1).offset, true, 0x27}, {client.Partition(2).offset, false, 0x07}, {7, true, 0x07}};
    EXPECT_EQ(SetActive(client, 1, 1), HRESULT_FROM_WIN32(ERROR_WRITE_PROTECT));
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{1, 0, 0, 0})) << "made all the same";
    EXPECT_EQ(SetActive(client, 2, 1), S_OK);
    EXPECT_EQ(BootIndicators(client), (std::vector<int>{0, 1, 0, 0})) << "put right";
}

TEST(ChangeAttributes, FaultBeforeOrAfterEffect_ChangesNothingOrThePartition) {
    DiskClient client(machine::FactoryMbr());
    client.pc.faults.Arm({"IVdsAdvancedDisk::ChangeAttributes", 1, false, false, 0x80004005});
    client.pc.faults.Arm({"IVdsAdvancedDisk::ChangeAttributes", 2, false, true, 0x80004005});
    EXPECT_EQ(SetActive(client, 1, 1), E_FAIL);
    EXPECT_EQ(client.Partition(1).bootIndicator, 0);
    EXPECT_EQ(SetActive(client, 1, 1), E_FAIL);
    EXPECT_EQ(client.Partition(1).bootIndicator, 1);
}

TEST(ChangePartitionType, TypeWithoutVolume_RemovesVolumeAndLetters) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID data = client.VolumeId(3);
    const machine::FileTree files = client.Partition(3).volume->files;
    EXPECT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY), S_OK);
    EXPECT_EQ(client.Partition(3).mbrType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_EQ(client.Partition(3).volume->letters, "");
    EXPECT_TRUE(client.VolumeId(3) == GUID_NULL);
    IUnknown* none = nullptr;
    EXPECT_EQ(client.service->GetObject(data, VDS_OT_VOLUME, &none), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.advanced->AssignDriveLetter(client.Partition(3).offset, TEXT('R')), S_OK);
    EXPECT_EQ(client.Partition(3).volume->letters, "R");
    EXPECT_EQ(client.Partition(3).volume->files, files) << "reachable again";
}

TEST(ChangePartitionType, TypeWithVolume_CreatesANewVolume) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID before = client.VolumeId(3);
    ASSERT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY), S_OK);
    ASSERT_EQ(SetType(client, 3, MBR_ID_NTFS), S_OK);
    EXPECT_FALSE(client.VolumeId(3) == GUID_NULL);
    EXPECT_FALSE(client.VolumeId(3) == before);
}

TEST(ChangePartitionType, TypeWithoutVolumeAndSwitch_KeepsTheVolume) {
    DiskClient client(machine::FactoryMbr());
    client.pc.facts.switches.hidingRemovesVolume = false;
    const VDS_OBJECT_ID before = client.VolumeId(3);
    EXPECT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY), S_OK);
    EXPECT_EQ(client.Partition(3).volume->letters, "D");
    EXPECT_TRUE(client.VolumeId(3) == before);
    EXPECT_EQ(SetType(client, 3, MBR_ID_NTFS), S_OK);
    EXPECT_TRUE(client.VolumeId(3) == before);
}

TEST(ChangePartitionType, BothTypesWithVolume_KeepsTheVolume) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID before = client.VolumeId(3);
    EXPECT_EQ(SetType(client, 3, 0x0C), S_OK);
    EXPECT_EQ(client.Partition(3).volume->letters, "D");
    EXPECT_TRUE(client.VolumeId(3) == before);
}

TEST(ChangePartitionType, UnchangeablePartition_Fails) {
    DiskClient client(machine::FactoryMbr());
    CHANGE_PARTITION_TYPE_PARAMETERS parameters{};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.partitionType = MBR_ID_NTFS;
    EXPECT_EQ(client.advanced2->ChangePartitionType(7, TRUE, &parameters), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.advanced2->ChangePartitionType(client.Partition(1).offset, TRUE, nullptr), E_INVALIDARG);
    EXPECT_EQ(SetType(client, 1, PARTITION_BASIC_DATA_GUID), VDS_E_PARTITION_STYLE_MISMATCH);
    for (const BYTE type : std::initializer_list<BYTE>{0x00, 0x05, 0x0F})
        EXPECT_EQ(SetType(client, 1, type), VDS_E_INVALID_PARTITION_TYPE) << int{type};
    EXPECT_EQ(client.Partition(1).mbrType, MBR_ID_HIDDEN_RECOVERY);
    client.Partition(4).mbrType = 0x42;
    EXPECT_EQ(SetType(client, 4, MBR_ID_NTFS), VDS_E_PARTITION_LDM);
}

TEST(ChangePartitionType, RunningWindows_NeedsForce) {
    DiskClient client(machine::FactoryMbr());
    EXPECT_EQ(SetType(client, 2, MBR_ID_HIDDEN_RECOVERY, FALSE), VDS_E_DEVICE_IN_USE);
    EXPECT_EQ(client.Partition(2).volume->letters, "C");
    EXPECT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY, FALSE), S_OK) << "a volume that nobody uses";
    EXPECT_EQ(SetType(client, 2, MBR_ID_HIDDEN_RECOVERY, TRUE), S_OK);
    EXPECT_EQ(client.Partition(2).volume->letters, "");
}

TEST(ChangePartitionType, GptPartition_AcceptsOnlyBasicData) {
    DiskClient client(machine::FactoryGpt());
    EXPECT_EQ(SetType(client, 6, PARTITION_BASIC_DATA_GUID), S_OK);
    EXPECT_TRUE(client.Partition(6).gptType == PARTITION_BASIC_DATA_GUID);
    EXPECT_FALSE(client.VolumeId(6) == GUID_NULL);
    EXPECT_EQ(SetType(client, 6, PARTITION_MSFT_RECOVERY_GUID), VDS_E_INVALID_PARTITION_TYPE);
    EXPECT_EQ(SetType(client, 4, PARTITION_BASIC_DATA_GUID), VDS_E_PARTITION_MSR);
    EXPECT_EQ(SetType(client, 6, MBR_ID_NTFS), VDS_E_PARTITION_STYLE_MISMATCH);
    PutOnMedium(client);
    EXPECT_EQ(SetType(client, 2, PARTITION_BASIC_DATA_GUID), VDS_E_NOT_SUPPORTED) << "on an image";
    EXPECT_TRUE(client.Partition(2).gptType == PARTITION_MSFT_RECOVERY_GUID);
}

TEST(ChangePartitionType, DiskOnImage_WritesTheMediumFirst) {
    DiskClient client(machine::FactoryMbr());
    const auto table = PutOnMedium(client);
    EXPECT_EQ(SetType(client, 1, MBR_ID_NTFS), S_OK);
    EXPECT_EQ(table->writes, (std::vector<std::string>{"type 1 7"}));
    EXPECT_EQ(client.Partition(1).mbrType, MBR_ID_NTFS);
    table->failsIn = 1;
    EXPECT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY), HRESULT_FROM_WIN32(ERROR_WRITE_PROTECT));
    EXPECT_EQ(client.Partition(3).mbrType, MBR_ID_NTFS);
    EXPECT_EQ(client.Partition(3).volume->letters, "D");
}

TEST(ChangePartitionType, FailedWrite_FactsFollowTheMedium) {
    DiskClient client(machine::FactoryMbr());
    const auto table = PutOnMedium(client);
    table->failsIn = 1;
    table->entries = {{client.Partition(3).offset, false, MBR_ID_HIDDEN_RECOVERY}};
    EXPECT_EQ(SetType(client, 3, MBR_ID_HIDDEN_RECOVERY), HRESULT_FROM_WIN32(ERROR_WRITE_PROTECT));
    EXPECT_EQ(client.Partition(3).mbrType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_EQ(client.Partition(3).volume->letters, "") << "the volume has gone with its type";
}

TEST(ChangePartitionType, FaultBeforeOrAfterEffect_ChangesNothingOrThePartition) {
    DiskClient client(machine::FactoryMbr());
    client.pc.faults.Arm({"IVdsAdvancedDisk2::ChangePartitionType", 1, false, false, 0x80004005});
    client.pc.faults.Arm({"IVdsAdvancedDisk2::ChangePartitionType", 2, false, true, 0x80004005});
    EXPECT_EQ(SetType(client, 1, MBR_ID_NTFS), E_FAIL);
    EXPECT_EQ(client.Partition(1).mbrType, MBR_ID_HIDDEN_RECOVERY);
    EXPECT_EQ(SetType(client, 1, MBR_ID_NTFS), E_FAIL);
    EXPECT_EQ(client.Partition(1).mbrType, MBR_ID_NTFS);
}
