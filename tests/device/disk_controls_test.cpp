// The SCSI address and the storage descriptor of a disk.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

const WideString diskPath = TEXT("\\\\.\\PHYSICALDRIVE0");

machine::Pc OneDisk() {
    machine::Disk disk = BareDisk(0);
    disk.scsiAddress = machine::ScsiAddress{1, 2, 3, 4};
    disk.storageBusType = uint32_t{8};
    return PcWithDisks({disk});
}

}  // namespace

TEST(GetScsiAddress, ScsiDisk_ReturnsItsAddress) {
    const HostedPc pc(OneDisk());
    SCSI_ADDRESS address = {};
    EXPECT_EQ(CDiskDrive().GetScsiAddress(diskPath, address), 0U);
    EXPECT_EQ(address.PortNumber, 1);
    EXPECT_EQ(address.PathId, 2);
    EXPECT_EQ(address.TargetId, 3);
    EXPECT_EQ(address.Lun, 4);
    EXPECT_EQ(Transcript(pc.emulated.journal), "4 Kestova CDiskDrive::GetScsiAddress End (0)\n");
}

TEST(GetScsiAddress, ScsiDisk_IsOpenedForReadingAndWritingByAll) {
    const HostedPc pc(OneDisk());
    SCSI_ADDRESS address = {};
    CDiskDrive().GetScsiAddress(diskPath, address);
    const auto opened = pc.emulated.journal.Calls("CreateFileW");
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_THAT(opened[0].arguments,
                testing::ElementsAre("\\\\.\\PHYSICALDRIVE0", "0xc0000000", "0x00000003", "OPEN_EXISTING"));
}

TEST(GetScsiAddress, DiskThatDoesNotOpen_Fails) {
    const HostedPc pc(OneDisk());
    SCSI_ADDRESS address = {};
    EXPECT_EQ(CDiskDrive().GetScsiAddress(TEXT("\\\\.\\PHYSICALDRIVE9"), address), DEVICE_NOT_OPENED);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "4 Kestova CDiskDrive::GetScsiAddress CreateFile INVALID_HANDLE_VALUE (1)\n");
}

TEST(GetScsiAddress, DiskWithoutAddress_Fails) {
    machine::Pc facts = OneDisk();
    facts.disks[0].scsiAddress = machine::Fact<machine::ScsiAddress>::Fails(ERROR_NOT_SUPPORTED);
    const HostedPc pc(facts);
    SCSI_ADDRESS address = {};
    EXPECT_EQ(CDiskDrive().GetScsiAddress(diskPath, address), SCSI_ADDRESS_NOT_READ);
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "4 Kestova CDiskDrive::GetScsiAddress DeviceIoControl return False (2) GetLastError = {ulong 50}\n");
}

// A failing CloseHandle must not hide why the control failed.
TEST(GetScsiAddress, FailingControl_RecordsItsError) {
    HostedPc pc(OneDisk());
    pc.Fail("DeviceIoControl", ERROR_GEN_FAILURE);
    pc.emulated.faults.Arm({.call = "CloseHandle", .afterEffect = true, .code = ERROR_INVALID_HANDLE});
    SCSI_ADDRESS address = {};
    EXPECT_EQ(CDiskDrive().GetScsiAddress(diskPath, address), SCSI_ADDRESS_NOT_READ);
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "4 Kestova CDiskDrive::GetScsiAddress DeviceIoControl return False (2) GetLastError = {ulong 31}\n");
}

TEST(QueryStorageProperty, SataDisk_ReturnsItsDescriptor) {
    const HostedPc pc(OneDisk());
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), 0U);
    ASSERT_TRUE(descriptor);
    EXPECT_EQ(static_cast<int>(descriptor->BusType), BUS_TYPE_RAID);
    EXPECT_GE(descriptor->Size, sizeof(STORAGE_DEVICE_DESCRIPTOR));
    EXPECT_EQ(Transcript(pc.emulated.journal), "4 Kestova CDiskDrive::QueryStorageProperty End (0)\n");
}

TEST(QueryStorageProperty, DiskThatDoesNotOpen_Fails) {
    const HostedPc pc(OneDisk());
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(TEXT("\\\\.\\PHYSICALDRIVE9"), descriptor),
              DEVICE_NOT_OPENED);
    EXPECT_FALSE(descriptor);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

// The record that callers read is whole, whatever the device has of it.
TEST(QueryStorageProperty, DescriptorOfAnySize_IsReadWithZerosForWhatIsMissing) {
    struct Size {
        DWORD bytes;
        int busType;
    };
    for (const auto& [bytes, busType] : {Size{8, 0}, Size{28, 0}, Size{32, BUS_TYPE_RAID},
                                         Size{40, BUS_TYPE_RAID}, Size{4096, BUS_TYPE_RAID}}) {
        machine::Pc facts = OneDisk();
        facts.disks[0].storageDescriptorSize = bytes;
        const HostedPc pc(facts);
        GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
        EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), 0U) << bytes;
        ASSERT_TRUE(descriptor);
        EXPECT_EQ(descriptor->Size, bytes);
        EXPECT_EQ(static_cast<int>(descriptor->BusType), busType) << bytes;
        EXPECT_EQ(pc.emulated.journal.Calls("GlobalAlloc").at(0).arguments[1],
                  std::to_string(std::max<DWORD>(bytes, sizeof(STORAGE_DEVICE_DESCRIPTOR))));
        EXPECT_EQ(pc.emulated.journal.Unshown("DeviceIoControl").at(1)[1], std::to_string(bytes));
    }
}

TEST(QueryStorageProperty, DeviceThatRefusesAShorterBuffer_HasAnUnknownSize) {
    for (const auto answer :
         {machine::Switches::ShortDescriptor::Fails, machine::Switches::ShortDescriptor::MoreData}) {
        machine::Pc facts = OneDisk();
        facts.switches.shortDescriptor = answer;
        HostedPc pc(facts);
        GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
        EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), STORAGE_SIZE_UNKNOWN);
        pc.emulated.facts.disks[0].storageDescriptorSize = DWORD{sizeof(STORAGE_DEVICE_DESCRIPTOR)};
        EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), 0U);
    }
}

TEST(QueryStorageProperty, UnknownSize_Fails) {
    machine::Pc facts = OneDisk();
    facts.disks[0].storageBusType = machine::Fact<uint32_t>::Fails(ERROR_NOT_SUPPORTED);
    const HostedPc pc(facts);
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), STORAGE_SIZE_UNKNOWN);
    EXPECT_FALSE(descriptor);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(QueryStorageProperty, NoMemory_Fails) {
    HostedPc pc(OneDisk());
    pc.Fail("GlobalAlloc", ERROR_NOT_ENOUGH_MEMORY);
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), STORAGE_NO_MEMORY);
    EXPECT_FALSE(descriptor);
    EXPECT_EQ(Transcript(pc.emulated.journal), "");
}

TEST(QueryStorageProperty, UnreadableDescriptor_Fails) {
    HostedPc pc(OneDisk());
    pc.Fail("DeviceIoControl", ERROR_GEN_FAILURE, 2);
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), STORAGE_NOT_READ);
    EXPECT_FALSE(descriptor);
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "4 Kestova CDiskDrive::QueryStorageProperty DeviceIoControl return False GetLastError: {ulong 31}\n");
}

TEST(QueryStorageProperty, SataDisk_IsAskedForTheWholeDescriptor) {
    const HostedPc pc(OneDisk());
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    CDiskDrive().QueryStorageProperty(diskPath, descriptor);
    const auto allocations = pc.emulated.journal.Calls("GlobalAlloc");
    ASSERT_EQ(allocations.size(), 1U);
    EXPECT_EQ(allocations[0].arguments[0], "0x00000040");  // GMEM_ZEROINIT
    EXPECT_EQ(allocations[0].arguments[1], std::to_string(descriptor->Size));
    EXPECT_EQ(pc.emulated.journal.Calls("DeviceIoControl").size(), 2U);
}

namespace {

// What is on loan at the moment of that record.
class LoansAtRecord : public ILogSink {
  public:
    LoansAtRecord(const machine::Ledger& ledger, const WCHAR* start) : ledger_(ledger), start_(start) {
        CLoggingFactory::GetInstance().AddSink(*this);
    }
    ~LoansAtRecord() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    std::map<std::string, int> loans;

  private:
    void Write(const LogEntry& entry) override {
        if (entry.Text().starts_with(start_)) loans = ledger_.Outstanding();
    }
    const machine::Ledger& ledger_;
    const WideString start_;
};

}  // namespace

TEST(QueryStorageProperty, UnreadableDescriptor_IsFreedAfterTheRecordAndTheDeviceClosedBefore) {
    HostedPc pc(OneDisk());
    pc.Fail("DeviceIoControl", ERROR_GEN_FAILURE, 2);
    const LoansAtRecord record(pc.emulated.ledger,
                               TEXT("Kestova CDiskDrive::QueryStorageProperty DeviceIoControl"));
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    EXPECT_EQ(CDiskDrive().QueryStorageProperty(diskPath, descriptor), STORAGE_NOT_READ);
    EXPECT_EQ(record.loans, (std::map<std::string, int>{{"COM initialization", 1}, {"GlobalAlloc", 1}}));
}
