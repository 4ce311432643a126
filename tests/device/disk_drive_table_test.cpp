// The table of all disks.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

constexpr const char* bridge = "PCI\\VEN_8086&DEV_2922\\3&FA";
constexpr const char* raid = "PCI\\VEN_8086&DEV_282A\\3&FB";

// An IDE disk behind a channel, a SCSI disk, a USB disk.
machine::Pc ThreeKinds() {
    machine::Disk ide = BareDisk(0);
    ide.controllers = {"PCIIDE\\IDECHANNEL\\4&0", bridge};
    ide.location = std::string("1");
    ide.scsiAddress = machine::ScsiAddress{1, 2, 3, 4};
    ide.storageBusType = uint32_t{BUS_TYPE_ATA};
    machine::Disk scsi = BareDisk(1);
    scsi.wmi->pnpDeviceId = "SCSI\\DISK1";
    scsi.wmi->interfaceType = "SCSI";
    scsi.controllers = {raid};
    scsi.location = std::string("Bus Number 2, Target Id 5, LUN 0");
    scsi.storageBusType = uint32_t{BUS_TYPE_RAID};
    machine::Disk usb = BareDisk(2);
    usb.wmi->pnpDeviceId = "USBSTOR\\DISK2";
    usb.wmi->interfaceType = "USB";
    usb.storageBusType = machine::Fact<uint32_t>::Fails(ERROR_NOT_SUPPORTED);
    return PcWithDisks({ide, scsi, usb});
}

machine::Pc DisksWithLocations(const std::vector<std::optional<std::string>>& locations) {
    std::vector<machine::Disk> disks;
    for (const auto& location : locations) {
        disks.push_back(BareDisk(static_cast<uint32_t>(disks.size())));
        if (location) disks.back().location = *location;
    }
    return PcWithDisks(disks);
}

int NumberOf(std::optional<std::string> deviceId) {
    machine::Pc facts = PcWithDisks({BareDisk(0)});
    facts.disks[0].wmi->deviceId = std::move(deviceId);
    const HostedPc pc(facts);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    return table.nDriveNumber[0];
}

// What GetDiskDrive answers when a call fails on the PC with three kinds of disks.
HRESULT ResultWithFailure(const char* call, uint32_t code, uint32_t nth) {
    HostedPc pc(ThreeKinds());
    pc.Fail(call, code, nth);
    tagDiskDriveTable_t table;
    const HRESULT result = CDiskDrive().GetDiskDrive(table);
    ExpectTranscript(pc.emulated.journal);
    return result;
}

constexpr auto accessDenied = static_cast<HRESULT>(0x80041003);

}  // namespace

TEST(GetDiskDrive, ThreeKinds_FillEveryColumn) {
    const HostedPc pc(ThreeKinds());
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    ASSERT_EQ(table.nCount, 3);

    EXPECT_EQ(table.strDeviceID[0], TEXT("\\\\.\\PHYSICALDRIVE0"));
    EXPECT_EQ(table.strPNPDeviceID[0], TEXT("IDE\\DISK0"));
    EXPECT_EQ(table.strControllerID[0], TEXT("PCI\\VEN_8086&DEV_2922\\3&FA"));
    EXPECT_EQ(table.nInterfaceType[0], INTERFACE_IDE);
    EXPECT_EQ(table.nDriveNumber[0], 0);
    EXPECT_EQ(table.nLocation[0], 1);
    EXPECT_EQ(table.bScsiAddress[0], 1);
    EXPECT_EQ(table.PortNumber[0], 1);
    EXPECT_EQ(table.PathId[0], 2);
    EXPECT_EQ(table.TargetId[0], 3);
    EXPECT_EQ(table.Lun[0], 4);
    EXPECT_EQ(table.nBusType[0], BUS_TYPE_ATA);
    EXPECT_EQ(table.nTargetLocation[0], 0);

    EXPECT_EQ(table.strControllerID[1], TEXT("PCI\\VEN_8086&DEV_282A\\3&FB"));
    EXPECT_EQ(table.nInterfaceType[1], INTERFACE_SCSI);
    EXPECT_EQ(table.nDriveNumber[1], 1);
    EXPECT_EQ(table.nLocation[1], 2);
    EXPECT_EQ(table.bScsiAddress[1], 0);
    EXPECT_EQ(table.PathId[1], 255);
    EXPECT_EQ(table.nBusType[1], BUS_TYPE_RAID);
    EXPECT_EQ(table.nTargetLocation[1], 0);

    EXPECT_EQ(table.strControllerID[2], TEXT(""));
    EXPECT_EQ(table.nInterfaceType[2], INTERFACE_USB);
    EXPECT_EQ(table.nDriveNumber[2], 2);
    EXPECT_EQ(table.nLocation[2], -1);
    EXPECT_EQ(table.nBusType[2], BUS_TYPE_UNKNOWN);
    EXPECT_EQ(table.nTargetLocation[2], -1);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetDiskDrive, SeveralDisks_KeepTheOrderOfWmi) {
    machine::Pc facts = ThreeKinds();
    facts.wmiOrder = {2, 0, 1};
    const HostedPc pc(facts);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.nDriveNumber[0], 2);
    EXPECT_EQ(table.nDriveNumber[1], 0);
    EXPECT_EQ(table.nDriveNumber[2], 1);
}

TEST(GetDiskDrive, DiskUnlistedByWmi_GetsNoRow) {
    machine::Pc facts = ThreeKinds();
    facts.disks[0].wmi.reset();
    const HostedPc pc(facts);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.nCount, 2);
    EXPECT_EQ(table.nDriveNumber[0], 1);
}

TEST(GetDiskDrive, Controllers_AreAskedForOnlyWhereDisksNeedThem) {
    for (const char* kind : {"IDE", "SCSI", "USB"}) {
        machine::Pc facts = PcWithDisks({BareDisk(0)});
        facts.disks[0].wmi->interfaceType = kind;
        const HostedPc pc(facts);
        tagDiskDriveTable_t table;
        EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
        std::string classes;
        for (const machine::CallRecord& call : pc.emulated.journal.Calls("IWbemServices::CreateInstanceEnum"))
            classes += call.arguments[0] + " ";
        const std::string association =
            std::string(kind) == "USB" ? "" : "Win32_" + std::string(kind) + "ControllerDevice ";
        EXPECT_EQ(classes, "Win32_DiskDrive " + association);
    }
}

// Both have one id, by which the links of the SCSI disk would fit the IDE disk as well.
TEST(GetDiskDrive, ControllerOfTheOtherKindOfDisk_IsNotTaken) {
    machine::Pc facts = ThreeKinds();
    facts.disks[0].controllers.clear();
    facts.disks[1].wmi->pnpDeviceId = facts.disks[0].wmi->pnpDeviceId;
    const HostedPc pc(facts);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.strControllerID[0], TEXT(""));
    EXPECT_EQ(table.strControllerID[1], TEXT("PCI\\VEN_8086&DEV_282A\\3&FB"));
}

TEST(GetDiskDrive, FailureBeforeTheFirstRow_EmptiesATableUsedBefore) {
    HostedPc pc(ThreeKinds());
    pc.Fail("CoInitializeSecurity", 0x80041003);
    tagDiskDriveTable_t table;
    table.nCount = 3;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), accessDenied);
    EXPECT_EQ(table.nCount, 0);
}

// Nothing of an earlier PC is left in a row.
TEST(GetDiskDrive, TableUsedBefore_IsFilledAnew) {
    HostedPc pc(ThreeKinds());
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    pc.emulated.facts = PcWithDisks({BareDisk(5)});
    pc.emulated.facts.disks[0].wmi->interfaceType = "USB";
    pc.emulated.facts.disks[0].wmi->deviceId = "\\\\.\\E:";
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.nCount, 1);
    EXPECT_EQ(table.strControllerID[0], TEXT(""));
    EXPECT_EQ(table.nDriveNumber[0], -1);
    EXPECT_EQ(table.nLocation[0], -1);
    EXPECT_EQ(table.bScsiAddress[0], FALSE);
    EXPECT_EQ(table.PortNumber[0], 255);
    EXPECT_EQ(table.PathId[0], 255);
    EXPECT_EQ(table.TargetId[0], 255);
    EXPECT_EQ(table.Lun[0], 255);
    EXPECT_EQ(table.nBusType[0], BUS_TYPE_UNKNOWN);
    EXPECT_EQ(table.nTargetLocation[0], -1);
}

TEST(GetDiskDrive, DeviceIds_ReturnTheirNumbers) {
    EXPECT_EQ(NumberOf("\\\\.\\PHYSICALDRIVE0"), 0);
    EXPECT_EQ(NumberOf("\\\\.\\PHYSICALDRIVE12"), 12);
    EXPECT_EQ(NumberOf("\\\\.\\PhysicalDrive3"), 3);
    EXPECT_EQ(NumberOf("\\\\.\\PHYSICALDRIVE"), -1);
    EXPECT_EQ(NumberOf("\\\\?\\PHYSICALDRIVE1"), -1);
    EXPECT_EQ(NumberOf("\\\\\\\\.\\\\PHYSICALDRIVE1"), -1);
    EXPECT_EQ(NumberOf("PHYSICALDRIVE1"), -1);
    EXPECT_EQ(NumberOf(""), -1);
    EXPECT_EQ(NumberOf(std::nullopt), -1);
    EXPECT_EQ(NumberOf("\\\\.\\PHYSICALDRIVE" + std::string(244, '0') + "7"), 0);  // cut at 260 units
    EXPECT_EQ(NumberOf("\\\\.\\PHYSICALDRIVE" + std::string(242, '0') + "7"), 7);
}

TEST(GetDiskDrive, Locations_AreReadFromTheirTexts) {
    const HostedPc pc(
        DisksWithLocations({"3", "Bus Number 2, Target Id 5, LUN 0", "Bus Number 2, Target ID 5, LUN 0",
                            "Channel 0, Target 0, Lun 0", std::nullopt}));
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_THAT(std::vector(table.nLocation, table.nLocation + 5), testing::ElementsAre(3, 2, -1, -1, -1));
    EXPECT_THAT(std::vector(table.nTargetLocation, table.nTargetLocation + 5),
                testing::ElementsAre(0, 0, 0, 0, -1));
}

TEST(GetDiskDrive, MarkerOfBus6_IsCarriedOn) {
    const HostedPc pc(DisksWithLocations({"0", "Bus Number 6, Target Id 4, LUN 0", "1", std::nullopt,
                                          "Bus Number 0, Target Id 2, LUN 0", "Channel 0"}));
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_THAT(std::vector(table.nLocation, table.nLocation + 6), testing::ElementsAre(0, 4, 1, -1, 0, -1));
    EXPECT_THAT(std::vector(table.nTargetLocation, table.nTargetLocation + 6),
                testing::ElementsAre(0, 1, 1, -1, 1, 1));
}

TEST(GetDiskDrive, UnknownBusTypes_AreKeptAsTheyAre) {
    machine::Pc facts = PcWithDisks({BareDisk(0)});
    facts.disks[0].storageBusType = uint32_t{300};
    const HostedPc pc(facts);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.nBusType[0], 300);
}

TEST(GetDiskDrive, DiskThatDoesNotOpen_StaysUnknown) {
    HostedPc pc(ThreeKinds());
    pc.Fail("CreateFileW", ERROR_ACCESS_DENIED);
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.bScsiAddress[0], 0);
    EXPECT_EQ(table.nBusType[0], BUS_TYPE_UNKNOWN);
    EXPECT_EQ(table.nLocation[0], 1);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetDiskDrive, NoSecurity_Fails) {
    EXPECT_EQ(ResultWithFailure("CoInitializeSecurity", 0x80041003, 0), accessDenied);
}

TEST(GetDiskDrive, NoLocator_Fails) {
    EXPECT_EQ(ResultWithFailure("CoCreateInstance", 0x80041003, 0), accessDenied);
}

TEST(GetDiskDrive, NoNamespace_Fails) {
    EXPECT_EQ(ResultWithFailure("IWbemLocator::ConnectServer", 0x80041003, 0), accessDenied);
}

TEST(GetDiskDrive, NoProxySecurity_Fails) {
    EXPECT_EQ(ResultWithFailure("CoSetProxyBlanket", 0x80041003, 0), accessDenied);
}

TEST(GetDiskDrive, UnlistedDisks_Fail) {
    EXPECT_EQ(ResultWithFailure("IWbemServices::CreateInstanceEnum", 0x80041003, 1), accessDenied);
}

// Asked for an immediate return, the platform can find out that there is no such class only later.
TEST(GetDiskDrive, WmiWithoutTheClassOfDisks_FailsWheneverThePlatformSaysSo) {
    for (const bool late : {false, true}) {
        machine::Pc facts = PcWithDisks({BareDisk(0)});
        facts.absentWmiClasses = {"Win32_DiskDrive"};
        facts.switches.absentClassFailsLate = late;
        const HostedPc pc(facts);
        tagDiskDriveTable_t table;
        EXPECT_EQ(CDiskDrive().GetDiskDrive(table), static_cast<HRESULT>(WBEM_E_INVALID_CLASS)) << late;
        EXPECT_EQ(table.nCount, 0);
        EXPECT_EQ(pc.emulated.journal.Calls("IEnumWbemClassObject::Next").size(), late ? 1U : 0U);
    }
}

// The object counts, not the number that comes with it.
TEST(GetDiskDrive, ObjectWithAnotherCountThanOne_IsARow) {
    for (const uint32_t count : {0u, 2u}) {
        HostedPc pc(PcWithDisks({BareDisk(0), BareDisk(1)}));
        pc.emulated.faults.Arm(
            {.call = "IEnumWbemClassObject::Next", .nth = 1, .code = 0, .withOutputs = true, .count = count});
        tagDiskDriveTable_t table;
        EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
        EXPECT_EQ(table.nCount, 2) << count;
    }
}

TEST(GetDiskDrive, SuccessWithACountAndNoObject_EndsTheTable) {
    HostedPc pc(PcWithDisks({BareDisk(0), BareDisk(1)}));
    pc.emulated.faults.Arm({.call = "IEnumWbemClassObject::Next", .nth = 2, .code = 0, .count = 1});
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    EXPECT_EQ(table.nCount, 1);
}

TEST(GetDiskDrive, RefusedObjectThatIsThereAllTheSame_FailsAndReleasesIt) {
    HostedPc pc(PcWithDisks({BareDisk(0)}));
    pc.emulated.faults.Arm({.call = "IEnumWbemClassObject::Next",
                            .nth = 1,
                            .code = static_cast<uint32_t>(WBEM_E_FAILED),
                            .withOutputs = true});
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), static_cast<HRESULT>(WBEM_E_FAILED));
    EXPECT_EQ(table.nCount, 0);
}

TEST(GetDiskDrive, UnlistedIdeControllers_Fail) {
    EXPECT_EQ(ResultWithFailure("IWbemServices::CreateInstanceEnum", 0x80041003, 2), accessDenied);
}

TEST(GetDiskDrive, UnlistedScsiControllers_Fail) {
    EXPECT_EQ(ResultWithFailure("IWbemServices::CreateInstanceEnum", 0x80041003, 3), accessDenied);
}
