#include <cstring>

#include "platform/partition_types.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

namespace {

// The result of one control on a device.
struct Reply {
    BOOL result = FALSE;
    DWORD error = 0;
    DWORD returned = 0;
    std::vector<char> output;

    template <typename T>
    T As() const {
        T record;
        std::memcpy(&record, output.data(), sizeof record);
        return record;
    }
};

Reply Control(const WCHAR* device, DWORD code, size_t outputSize, const void* input = nullptr,
              DWORD inputSize = 0) {
    Reply reply;
    reply.output.assign(outputSize, '\x55');
    const HANDLE handle = OpenShared(device);
    EXPECT_NE(handle, INVALID_HANDLE_VALUE);
    SetLastError(staleError);
    reply.result = DeviceIoControl(handle, code, const_cast<void*>(input), inputSize, reply.output.data(),
                                   static_cast<DWORD>(outputSize), &reply.returned, nullptr);
    reply.error = GetLastError();
    CloseHandle(handle);
    ExpectCleanLedger(EmulatedPc::Current());
    return reply;
}

Reply StorageProperty(size_t outputSize, STORAGE_PROPERTY_ID property = StorageDeviceProperty,
                      STORAGE_QUERY_TYPE type = PropertyStandardQuery) {
    STORAGE_PROPERTY_QUERY query{};
    query.PropertyId = property;
    query.QueryType = type;
    return Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_STORAGE_QUERY_PROPERTY, outputSize, &query,
                   sizeof query);
}

Reply Extents(const WCHAR* device, size_t outputSize = sizeof(VOLUME_DISK_EXTENTS)) {
    return Control(device, IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, outputSize);
}

void ExpectSuccess(const Reply& reply, DWORD returned) {
    EXPECT_TRUE(reply.result);
    EXPECT_EQ(reply.error, staleError);
    EXPECT_EQ(reply.returned, returned);
}

void ExpectFailure(const Reply& reply, DWORD error) {
    EXPECT_FALSE(reply.result);
    EXPECT_EQ(reply.error, error);
    EXPECT_EQ(reply.returned, 0u);
}

}  // namespace

TEST(ScsiGetAddress, VolumeOfDisk_ReturnsTheAddress) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].scsiAddress = machine::ScsiAddress{1, 2, 3, 4};
    for (const WCHAR* const device : {TEXT("\\\\.\\PHYSICALDRIVE0"), TEXT("\\\\.\\C:")}) {
        const Reply reply = Control(device, IOCTL_SCSI_GET_ADDRESS, sizeof(SCSI_ADDRESS));
        ExpectSuccess(reply, 8);
        const SCSI_ADDRESS address = reply.As<SCSI_ADDRESS>();
        EXPECT_EQ(address.Length, 8u);
        EXPECT_EQ(address.PortNumber, 1);
        EXPECT_EQ(address.PathId, 2);
        EXPECT_EQ(address.TargetId, 3);
        EXPECT_EQ(address.Lun, 4);
    }
}

TEST(ScsiGetAddress, ErrorInFactsOrShortBuffer_Fails) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    ExpectFailure(Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_SCSI_GET_ADDRESS, 7),
                  ERROR_INSUFFICIENT_BUFFER);
    ExpectFailure(Control(TEXT("\\\\.\\X:"), IOCTL_SCSI_GET_ADDRESS, 8), ERROR_INVALID_FUNCTION);
    pc.facts.disks[0].scsiAddress = machine::Fact<machine::ScsiAddress>::Fails(ERROR_NOT_SUPPORTED);
    ExpectFailure(Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_SCSI_GET_ADDRESS, 8), ERROR_NOT_SUPPORTED);
}

TEST(StorageQueryProperty, TwoCalls_ReturnSizeThenDescriptor) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].storageBusType = uint32_t{17};
    const Reply header = StorageProperty(sizeof(STORAGE_DESCRIPTOR_HEADER));
    ExpectSuccess(header, 8);
    const DWORD size = header.As<STORAGE_DESCRIPTOR_HEADER>().Size;
    EXPECT_GT(size, sizeof(STORAGE_DEVICE_DESCRIPTOR));

    const Reply fixedPart = StorageProperty(sizeof(STORAGE_DEVICE_DESCRIPTOR));
    ExpectSuccess(fixedPart, 40);
    EXPECT_EQ(fixedPart.As<STORAGE_DEVICE_DESCRIPTOR>().Size, size);

    const Reply whole = StorageProperty(size + 10);
    ExpectSuccess(whole, size);
    DWORD busType = 0;
    std::memcpy(&busType, whole.output.data() + 28, sizeof busType);
    EXPECT_EQ(busType, 17u);
    EXPECT_STREQ(whole.output.data() + whole.As<STORAGE_DEVICE_DESCRIPTOR>().ProductIdOffset,
                 "Emulated disk");
}

// Fewer bytes than the fixed part leave out its end, more add zeros.
TEST(StorageQueryProperty, DescriptorOfAnySize_IsAnsweredWhole) {
    EmulatedPc pc(machine::FactoryMbr());
    for (const DWORD size : {8u, 20u, 39u, 40u, 41u, 1000u}) {
        pc.facts.disks[0].storageDescriptorSize = size;
        const Reply whole = StorageProperty(2000);
        ExpectSuccess(whole, size);
        EXPECT_EQ(whole.As<STORAGE_DESCRIPTOR_HEADER>().Size, size);
    }
    const Reply longest = StorageProperty(1000);
    EXPECT_STREQ(longest.output.data() + 40, "Emulated disk");
    EXPECT_EQ(longest.output[999], 0);
}

TEST(StorageQueryProperty, BufferThatIsTooShort_IsAnsweredAsTheSwitchSays) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.switches.shortDescriptor = machine::Switches::ShortDescriptor::MoreData;
    const Reply part = StorageProperty(40);
    EXPECT_FALSE(part.result);
    EXPECT_EQ(part.error, DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(part.returned, 40u);
    EXPECT_EQ(part.As<STORAGE_DEVICE_DESCRIPTOR>().Size, 54u);
    ExpectSuccess(StorageProperty(54), 54);
    pc.facts.switches.shortDescriptor = machine::Switches::ShortDescriptor::Fails;
    ExpectFailure(StorageProperty(40), ERROR_INSUFFICIENT_BUFFER);
    ExpectSuccess(StorageProperty(54), 54);
    ExpectFailure(StorageProperty(7), ERROR_INVALID_PARAMETER);
}

TEST(StorageQueryProperty, ExistsQuery_ReturnsNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    ExpectSuccess(StorageProperty(40, StorageDeviceProperty, PropertyExistsQuery), 0);
}

TEST(StorageQueryProperty, UnsupportedQuery_Fails) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    ExpectFailure(StorageProperty(7), ERROR_INVALID_PARAMETER);
    ExpectFailure(StorageProperty(40, StorageAdapterProperty), ERROR_NOT_SUPPORTED);
    ExpectFailure(StorageProperty(40, StorageDeviceProperty, PropertyMaskQuery), ERROR_NOT_SUPPORTED);
    ExpectFailure(Control(TEXT("\\\\.\\C:"), IOCTL_STORAGE_QUERY_PROPERTY, 40, "short", 5),
                  ERROR_INVALID_PARAMETER);
    ExpectFailure(Control(TEXT("\\\\.\\X:"), IOCTL_STORAGE_QUERY_PROPERTY, 40), ERROR_INVALID_FUNCTION);
    pc.facts.disks[0].storageBusType = machine::Fact<uint32_t>::Fails(ERROR_GEN_FAILURE);
    ExpectFailure(StorageProperty(40), ERROR_GEN_FAILURE);
}

TEST(VolumeDiskExtents, OneExtent_IsThePartition) {
    EmulatedPc pc(machine::FactoryMbr());
    const machine::Partition& data = pc.facts.disks[0].partitions[2];
    const Reply reply = Extents(TEXT("\\\\.\\D:"));
    ExpectSuccess(reply, 32);
    const VOLUME_DISK_EXTENTS extents = reply.As<VOLUME_DISK_EXTENTS>();
    EXPECT_EQ(extents.NumberOfDiskExtents, 1u);
    EXPECT_EQ(extents.Extents[0].DiskNumber, 0u);
    EXPECT_EQ(extents.Extents[0].StartingOffset.QuadPart, static_cast<LONGLONG>(data.offset));
    EXPECT_EQ(extents.Extents[0].ExtentLength.QuadPart, static_cast<LONGLONG>(data.size));
}

TEST(VolumeDiskExtents, MoreExtentsThanFit_ReturnsTheFirstWithMoreData) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].partitions[2].volume->furtherExtents = {{1, 4096, 8192}};
    const Reply one = Extents(TEXT("\\\\.\\D:"));
    EXPECT_FALSE(one.result);
    EXPECT_EQ(one.error, DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(one.returned, 32u);
    EXPECT_EQ(one.As<VOLUME_DISK_EXTENTS>().NumberOfDiskExtents, 2u);
    EXPECT_EQ(one.As<VOLUME_DISK_EXTENTS>().Extents[0].DiskNumber, 0u);

    const Reply both = Extents(TEXT("\\\\.\\D:"), 56);
    ExpectSuccess(both, 56);
    DISK_EXTENT second;
    std::memcpy(&second, both.output.data() + 32, sizeof second);
    EXPECT_EQ(second.DiskNumber, 1u);
    EXPECT_EQ(second.StartingOffset.QuadPart, 4096);
    EXPECT_EQ(second.ExtentLength.QuadPart, 8192);
}

TEST(VolumeDiskExtents, NoExtentOrShortBuffer_Fails) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    ExpectFailure(Extents(TEXT("\\\\.\\X:")), ERROR_INVALID_FUNCTION);
    ExpectFailure(Extents(TEXT("\\\\.\\PHYSICALDRIVE0")), ERROR_INVALID_FUNCTION);
    ExpectFailure(Extents(TEXT("\\\\.\\D:"), 31), ERROR_INSUFFICIENT_BUFFER);
}

TEST(PartitionInfo, MbrPartition_ReturnsItsRecord) {
    EmulatedPc pc(machine::FactoryMbr());
    const Reply reply = Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_PARTITION_INFO_EX, 144);
    ExpectSuccess(reply, 144);
    const PARTITION_INFORMATION_EX info = reply.As<PARTITION_INFORMATION_EX>();
    const machine::Partition& windows = pc.facts.disks[0].partitions[1];
    EXPECT_EQ(info.PartitionStyle, PARTITION_STYLE_MBR);
    EXPECT_EQ(info.StartingOffset.QuadPart, static_cast<LONGLONG>(windows.offset));
    EXPECT_EQ(info.PartitionLength.QuadPart, static_cast<LONGLONG>(windows.size));
    EXPECT_EQ(info.PartitionNumber, 2u);
    EXPECT_EQ(info.Mbr.PartitionType, 0x07);
    EXPECT_EQ(info.Mbr.BootIndicator, 1);
    EXPECT_EQ(info.Mbr.RecognizedPartition, TRUE);
    EXPECT_EQ(info.Mbr.HiddenSectors, windows.offset / 512);
}

TEST(PartitionInfo, GptPartition_ReturnsItsRecord) {
    EmulatedPc pc(machine::FactoryGpt());
    pc.facts.disks[0].partitions[4].attributes = 0x8000000000000001;
    const Reply reply = Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_PARTITION_INFO_EX, 144);
    ExpectSuccess(reply, 144);
    const PARTITION_INFORMATION_EX info = reply.As<PARTITION_INFORMATION_EX>();
    EXPECT_EQ(info.PartitionStyle, PARTITION_STYLE_GPT);
    EXPECT_EQ(info.PartitionNumber, 5u);
    EXPECT_TRUE(info.Gpt.PartitionType == PARTITION_BASIC_DATA_GUID);
    EXPECT_TRUE(info.Gpt.PartitionId == pc.facts.disks[0].partitions[4].gptId);
    EXPECT_EQ(info.Gpt.Attributes, 0x8000000000000001u);
    EXPECT_STREQ(ToUtf8(info.Gpt.Name).c_str(), "Basic data partition");
}

TEST(PartitionInfo, PhysicalDisk_IsPartitionZero) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].style = machine::PartitionStyle::Unknown;
    const Reply reply = Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_DISK_GET_PARTITION_INFO_EX, 144);
    ExpectSuccess(reply, 144);
    EXPECT_EQ(reply.As<PARTITION_INFORMATION_EX>().PartitionStyle, PARTITION_STYLE_RAW);
    EXPECT_EQ(reply.As<PARTITION_INFORMATION_EX>().PartitionNumber, 0u);
    EXPECT_EQ(reply.As<PARTITION_INFORMATION_EX>().PartitionLength.QuadPart,
              static_cast<LONGLONG>(pc.facts.disks[0].size));
}

TEST(PartitionInfo, NoDiskDynamicDataOrShortBuffer_Fails) {
    EmulatedPc pc(machine::FactoryGpt());
    machine::Volume disc;
    disc.letters = "E";
    pc.facts.volumes = {disc};
    ExpectFailure(Control(TEXT("\\\\.\\E:"), IOCTL_DISK_GET_PARTITION_INFO_EX, 144), ERROR_INVALID_FUNCTION);
    ExpectFailure(Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_PARTITION_INFO_EX, 143),
                  ERROR_INSUFFICIENT_BUFFER);
    pc.facts.disks[0].partitions[4].gptType = *GuidFromText("af9b60a0-1431-4f62-bc68-3311714a69ad");
    ExpectFailure(Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_PARTITION_INFO_EX, 144), ERROR_INVALID_FUNCTION);
}

TEST(DriveLayout, MbrDisk_HasAMultipleOfFourEntries) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    const Reply reply = Control(TEXT("\\\\.\\PHYSICALDRIVE1"), IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 1024);
    ExpectSuccess(reply, 48 + 4 * 144);
    const DRIVE_LAYOUT_INFORMATION_EX layout = reply.As<DRIVE_LAYOUT_INFORMATION_EX>();
    EXPECT_EQ(layout.PartitionStyle, DWORD{PARTITION_STYLE_MBR});
    EXPECT_EQ(layout.PartitionCount, 4u);
    EXPECT_EQ(layout.Mbr.Signature, 0xCAC4E001u);
    EXPECT_EQ(layout.PartitionEntry[0].Mbr.PartitionType, 0x49);
    EXPECT_EQ(layout.PartitionEntry[0].Mbr.RecognizedPartition, FALSE);
    PARTITION_INFORMATION_EX unused;
    std::memcpy(&unused, reply.output.data() + 48 + 144, sizeof unused);
    EXPECT_EQ(unused.PartitionNumber, 0u);
    EXPECT_EQ(unused.Mbr.PartitionType, 0);
}

TEST(DriveLayout, GptDisk_ReturnsIdAndEveryPartition) {
    EmulatedPc pc(machine::FactoryGpt());
    const Reply reply = Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 1024);
    ExpectSuccess(reply, 48 + 6 * 144);
    const DRIVE_LAYOUT_INFORMATION_EX layout = reply.As<DRIVE_LAYOUT_INFORMATION_EX>();
    EXPECT_EQ(layout.PartitionStyle, DWORD{PARTITION_STYLE_GPT});
    EXPECT_EQ(layout.PartitionCount, 6u);
    EXPECT_TRUE(layout.Gpt.DiskId == pc.facts.disks[0].guid);
    EXPECT_EQ(layout.Gpt.MaxPartitionCount, 128u);
}

TEST(DriveLayout, VolumeOrShortBuffer_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    ExpectFailure(Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 1024), ERROR_INVALID_FUNCTION);
    ExpectFailure(Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_DISK_GET_DRIVE_LAYOUT_EX, 192),
                  ERROR_INSUFFICIENT_BUFFER);
}

TEST(DriveGeometry, PhysicalDisk_ReturnsItsSizeAndSectors) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].sectorSize = 4096;
    const Reply reply =
        Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, sizeof(DISK_GEOMETRY_EX));
    ExpectSuccess(reply, sizeof(DISK_GEOMETRY_EX));
    const auto geometry = reply.As<DISK_GEOMETRY_EX>();
    EXPECT_EQ(geometry.DiskSize.QuadPart, int64_t{500} << 30);
    EXPECT_EQ(geometry.Geometry.BytesPerSector, 4096u);
    EXPECT_EQ(geometry.Geometry.MediaType, FixedMedia);
}

TEST(DriveGeometry, VolumeOrShortBuffer_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    ExpectFailure(Control(TEXT("\\\\.\\C:"), IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, 1024), ERROR_INVALID_FUNCTION);
    ExpectFailure(Control(TEXT("\\\\.\\PHYSICALDRIVE0"), IOCTL_DISK_GET_DRIVE_GEOMETRY_EX,
                          sizeof(DISK_GEOMETRY_EX) - 1),
                  ERROR_INSUFFICIENT_BUFFER);
}

TEST(DeviceIoControl, UnknownControlFileOrClosedHandle_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    ExpectFailure(Control(TEXT("\\\\.\\C:"), 0x12345678, 8), ERROR_INVALID_FUNCTION);
    ExpectFailure(Control(TEXT("C:\\Windows\\System32\\Winload.exe"), IOCTL_SCSI_GET_ADDRESS, 8),
                  ERROR_INVALID_FUNCTION);
    DWORD returned = 1;
    EXPECT_FALSE(
        DeviceIoControl(nullptr, IOCTL_SCSI_GET_ADDRESS, nullptr, 0, nullptr, 0, &returned, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(returned, 0u);
    EXPECT_FALSE(DeviceIoControl(nullptr, IOCTL_SCSI_GET_ADDRESS, nullptr, 0, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(DeviceIoControl, VolumeThatLostItsLetter_FailsWithFileInvalid) {
    EmulatedPc pc(machine::FactoryMbr());
    const HANDLE handle = OpenShared(TEXT("\\\\.\\D:"));
    pc.facts.disks[0].partitions[2].volume->letters.clear();
    DWORD returned = 0;
    EXPECT_FALSE(DeviceIoControl(handle, IOCTL_SCSI_GET_ADDRESS, nullptr, 0, nullptr, 0, &returned, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_INVALID});
    CloseHandle(handle);
    ExpectCleanLedger(pc);
}

TEST(DeviceIoControl, Fault_ReturnsNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    FailNext(pc, "DeviceIoControl", ERROR_NOT_READY, true);
    const Reply reply = Extents(TEXT("\\\\.\\C:"));
    ExpectFailure(reply, ERROR_NOT_READY);
    EXPECT_EQ(reply.output, std::vector<char>(32, '\x55'));
}

TEST(DeviceIoControl, AnyControl_JournalsDeviceAndControl) {
    EmulatedPc pc(machine::FactoryMbr());
    Extents(TEXT("\\\\.\\C:"));
    EXPECT_THAT(pc.journal.Calls("DeviceIoControl")[0].arguments,
                testing::ElementsAre("\\\\.\\C:", "IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS"));
}
