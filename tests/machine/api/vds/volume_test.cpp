// The file-system properties of a volume.
#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

namespace {

ComPtr<IVdsVolumeMF> OpenVolume(DiskClient& client, uint32_t partition) {
    ComPtr<IUnknown> object;
    EXPECT_EQ(client.service->GetObject(client.VolumeId(partition), VDS_OT_VOLUME, object.Put()), S_OK);
    return Ask<IVdsVolumeMF>(object.Get(), IID_IVdsVolumeMF);
}

}  // namespace

TEST(FileSystemProperties, LabelledVolume_ReturnsALabelThatTheCallerFrees) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID id = client.VolumeId(2);
    const ComPtr<IVdsVolumeMF> volume = OpenVolume(client, 2);
    VDS_FILE_SYSTEM_PROP properties{};
    ASSERT_EQ(volume->GetFileSystemProperties(&properties), S_OK);
    EXPECT_EQ(ToUtf8(properties.pwszLabel), "Windows");
    EXPECT_EQ(properties.type, VDS_FST_NTFS);
    EXPECT_TRUE(properties.volumeId == id);
    EXPECT_EQ(properties.ullTotalAllocationUnits * properties.ulAllocationUnitSize, client.Partition(2).size);
    EXPECT_EQ(client.OnLoan()["VDS_FILE_SYSTEM_PROP label"], 1);
    CoTaskMemFree(properties.pwszLabel);
    EXPECT_EQ(client.OnLoan().count("VDS_FILE_SYSTEM_PROP label"), 0u);
    EXPECT_EQ(volume->GetFileSystemProperties(nullptr), E_POINTER);
}

TEST(FileSystemProperties, EachFileSystem_ReturnsItsType) {
    const std::map<std::string, VDS_FILE_SYSTEM_TYPE> expected = {
        {"RAW", VDS_FST_RAW},     {"FAT", VDS_FST_FAT},     {"FAT12", VDS_FST_FAT}, {"FAT16", VDS_FST_FAT},
        {"FAT32", VDS_FST_FAT32}, {"NTFS", VDS_FST_NTFS},   {"CDFS", VDS_FST_CDFS}, {"UDF", VDS_FST_UDF},
        {"exFAT", VDS_FST_EXFAT}, {"ext4", VDS_FST_UNKNOWN}};
    DiskClient client(machine::FactoryMbr());
    const ComPtr<IVdsVolumeMF> volume = OpenVolume(client, 2);
    for (const auto& [name, type] : expected) {
        client.Partition(2).volume->fileSystem = name;
        VDS_FILE_SYSTEM_PROP properties{};
        ASSERT_EQ(volume->GetFileSystemProperties(&properties), S_OK);
        EXPECT_EQ(properties.type, type) << name;
        CoTaskMemFree(properties.pwszLabel);
    }
}

TEST(FileSystemProperties, UnreadableLabel_FailsWithItsError) {
    DiskClient client(machine::FactoryMbr());
    const ComPtr<IVdsVolumeMF> volume = OpenVolume(client, 2);
    VDS_FILE_SYSTEM_PROP properties{};
    client.Partition(2).volume->label = machine::Fact<std::string>::Fails(0x8004244F);
    EXPECT_EQ(volume->GetFileSystemProperties(&properties), VDS_E_VOLUME_NOT_MOUNTED);
    client.Partition(2).volume->label = machine::Fact<std::string>::Fails(ERROR_UNRECOGNIZED_VOLUME);
    EXPECT_EQ(volume->GetFileSystemProperties(&properties), HRESULT_FROM_WIN32(ERROR_UNRECOGNIZED_VOLUME));
    EXPECT_EQ(properties.pwszLabel, nullptr);
}

TEST(FileSystemProperties, VolumeWithoutLabel_ReturnsNull) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(2).volume->label = {};
    VDS_FILE_SYSTEM_PROP properties{};
    properties.pwszLabel = reinterpret_cast<LPWSTR>(1);
    EXPECT_EQ(OpenVolume(client, 2)->GetFileSystemProperties(&properties), S_OK);
    EXPECT_EQ(properties.pwszLabel, nullptr);
}

TEST(FileSystemProperties, UnformattedPartition_IsRaw) {
    DiskClient client(machine::FactoryMbr());
    client.Partition(3).volume.reset();
    VDS_FILE_SYSTEM_PROP properties{};
    ASSERT_EQ(OpenVolume(client, 3)->GetFileSystemProperties(&properties), S_OK);
    EXPECT_EQ(properties.type, VDS_FST_RAW);
    EXPECT_EQ(ToUtf8(properties.pwszLabel), "");
    CoTaskMemFree(properties.pwszLabel);
}

TEST(FileSystemProperties, RemovedVolume_FailsWithObjectDeleted) {
    DiskClient client(machine::FactoryMbr());
    const ComPtr<IVdsVolumeMF> volume = OpenVolume(client, 3);
    CHANGE_PARTITION_TYPE_PARAMETERS hidden{};
    hidden.style = VDS_PST_MBR;
    hidden.MbrPartInfo.partitionType = MBR_ID_HIDDEN_RECOVERY;
    ASSERT_EQ(client.advanced2->ChangePartitionType(client.Partition(3).offset, TRUE, &hidden), S_OK);
    VDS_FILE_SYSTEM_PROP properties{};
    EXPECT_EQ(volume->GetFileSystemProperties(&properties), VDS_E_OBJECT_DELETED);
    const ComPtr<IVdsVolumeMF> windows = OpenVolume(client, 2);
    client.pc.facts.disks.clear();
    EXPECT_EQ(windows->GetFileSystemProperties(&properties), VDS_E_OBJECT_DELETED);
}
