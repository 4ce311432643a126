// The enumerations of WMI.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "device/wmi_ex.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

// A PC with an open namespace; its journal and fault plan begin behind that.
struct ConnectedPc : HostedPc {
    explicit ConnectedPc(machine::Pc facts) : HostedPc(std::move(facts)) {
        EXPECT_EQ(CWMIEx::ConnectServer(TEXT("\\\\.\\root\\CIMV2"), locator.Put(), services.Put()), S_OK);
        emulated.journal.Clear();
    }
    ~ConnectedPc() {
        services.Reset();
        locator.Reset();
    }
    HRESULT EnumerateDisks() { return CDiskDrive().Enum_DiskDrive(services.Get(), table); }
    HRESULT EnumerateLinks(const WCHAR* associationClass = TEXT("Win32_IDEControllerDevice")) {
        return CDiskDrive().Enum_ControllerDevice(services.Get(), associationClass, links);
    }

    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    tagDiskDriveTable_t table;
    tagControllerLinkTable_t links;
};

machine::Pc TwoDisks() {
    machine::Disk first = BareDisk(0);
    machine::Disk second = BareDisk(1);
    first.controllers = {"PCI\\VEN_8086\\1"};
    second.controllers = {"PCIIDE\\IDECHANNEL\\0", "PCI\\VEN_8086\\2"};
    return PcWithDisks({first, second});
}

machine::Pc ManyDisks(uint32_t count) {
    std::vector<machine::Disk> disks;
    for (uint32_t number = 0; number < count; ++number)
        disks.push_back(BareDisk(number));
    return PcWithDisks(disks);
}

std::string End(int overflow) {
    return "4 Kestova CDiskDrive::Enum_DiskDrive Start\n"
           "4 Kestova CDiskDrive::Enum_DiskDrive End bOverBuffer = {int " +
           std::to_string(overflow) + "}\n";
}

std::string LinksEnd(long status) {
    return "4 Kestova CDiskDrive::Enum_ControllerDevice End. hResult = {long " + std::to_string(status) +
           "}\n";
}

}  // namespace

TEST(EnumDiskDrive, EveryDisk_StartsAsUnknown) {
    ConnectedPc pc(TwoDisks());
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    ASSERT_EQ(pc.table.nCount, 2);
    EXPECT_EQ(pc.table.strDeviceID[1], TEXT("\\\\.\\PHYSICALDRIVE1"));
    EXPECT_EQ(pc.table.strPNPDeviceID[1], TEXT("IDE\\DISK1"));
    EXPECT_EQ(pc.table.strControllerID[1], TEXT(""));
    EXPECT_EQ(pc.table.nInterfaceType[1], INTERFACE_IDE);
    EXPECT_EQ(pc.table.nDriveNumber[1], -1);
    EXPECT_EQ(pc.table.nLocation[1], -1);
    EXPECT_EQ(pc.table.bScsiAddress[1], 0);
    EXPECT_EQ(pc.table.PortNumber[1], 255);
    EXPECT_EQ(pc.table.PathId[1], 255);
    EXPECT_EQ(pc.table.TargetId[1], 255);
    EXPECT_EQ(pc.table.Lun[1], 255);
    EXPECT_EQ(pc.table.nBusType[1], 127);
    EXPECT_EQ(pc.table.nTargetLocation[1], -1);
    EXPECT_EQ(Transcript(pc.emulated.journal), End(0));
}

TEST(EnumDiskDrive, InterfaceTypes_ReturnTheirNumbers) {
    const std::pair<std::optional<std::string>, int> types[] = {
        {"IDE", 1},  {"ide", 1}, {"SCSI", 2}, {"Scsi", 2}, {"USB", 3},   {"usb", 3},
        {"1394", 4}, {"HDC", 0}, {"IDE ", 0}, {"", 0},     {"SCSI2", 0}, {std::nullopt, 0},
    };
    for (const auto& [name, type] : types) {
        machine::Pc facts = ManyDisks(1);
        facts.disks[0].wmi->interfaceType = name;
        ConnectedPc pc(facts);
        pc.EnumerateDisks();
        EXPECT_EQ(pc.table.nInterfaceType[0], type) << name.value_or("(absent)");
    }
}

TEST(EnumDiskDrive, AbsentProperties_AreEmptyTexts) {
    machine::Pc facts = ManyDisks(1);
    facts.disks[0].wmi = machine::WmiDisk{};
    ConnectedPc pc(facts);
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    ASSERT_EQ(pc.table.nCount, 1);
    EXPECT_EQ(pc.table.strDeviceID[0], TEXT(""));
    EXPECT_EQ(pc.table.strPNPDeviceID[0], TEXT(""));
}

TEST(EnumDiskDrive, NoDisk_ReturnsNoRow) {
    ConnectedPc pc(PcWithDisks({}));
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.table.nCount, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal), End(0));
}

TEST(EnumDiskDrive, SixtyThreeDisks_Fit) {
    ConnectedPc pc(ManyDisks(63));
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.table.nCount, 63);
    EXPECT_EQ(Transcript(pc.emulated.journal), End(0));
}

// The full table is noticed before a 65th disk is looked for.
TEST(EnumDiskDrive, SixtyFourDisks_AreTooMany) {
    ConnectedPc pc(ManyDisks(64));
    EXPECT_EQ(pc.EnumerateDisks(), E_OUTOFMEMORY);
    EXPECT_EQ(pc.table.nCount, 64);
    EXPECT_EQ(pc.emulated.journal.Calls("IEnumWbemClassObject::Next").size(), 64U);
    EXPECT_EQ(Transcript(pc.emulated.journal), End(1));
}

TEST(EnumDiskDrive, EnumerationThatDoesNotBegin_Fails) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemServices::CreateInstanceEnum", 0x80041010);
    EXPECT_EQ(pc.EnumerateDisks(), static_cast<HRESULT>(0x80041010));
    EXPECT_EQ(pc.table.nCount, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "4 Kestova CDiskDrive::Enum_DiskDrive Start\n"
              "4 Kestova CDiskDrive::Enum_DiskDrive pWbemServices->CreateInstanceEnum FAILED( hResult )\n");
}

TEST(EnumDiskDrive, SuccessWithoutEnumerator_Fails) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemServices::CreateInstanceEnum", S_OK);
    EXPECT_EQ(pc.EnumerateDisks(), E_INVALIDARG);
}

TEST(EnumDiskDrive, NoMemoryForTheClassName_Fails) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("SysAllocString", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_LT(pc.EnumerateDisks(), 0);
    EXPECT_EQ(pc.table.nCount, 0);
}

TEST(EnumDiskDrive, AnyDisk_IsAskedForwardOnlyAndAtOnce) {
    ConnectedPc pc(TwoDisks());
    pc.EnumerateDisks();
    const auto calls = pc.emulated.journal.Calls("IWbemServices::CreateInstanceEnum");
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_THAT(calls[0].arguments,
                testing::ElementsAre("Win32_DiskDrive", testing::AnyOf("0x00000030", "48")));
}

TEST(EnumDiskDrive, SlowDisk_IsWaitedForAsLongAsItTakes) {
    ConnectedPc pc(TwoDisks());
    pc.EnumerateDisks();
    const auto calls = pc.emulated.journal.Calls("IEnumWbemClassObject::Next");
    ASSERT_EQ(calls.size(), 3U);
    for (const machine::CallRecord& call : calls)
        EXPECT_THAT(call.arguments, testing::ElementsAre("-1", "1"));  // WBEM_INFINITE, one object
}

TEST(EnumDiskDrive, NextThatFails_EndsWithTheRowsSoFar) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IEnumWbemClassObject::Next", 0x80041001, 2);
    EXPECT_EQ(pc.EnumerateDisks(), static_cast<HRESULT>(0x80041001));
    EXPECT_EQ(pc.table.nCount, 1);
    EXPECT_EQ(Transcript(pc.emulated.journal), End(0));
}

TEST(EnumDiskDrive, NextWithoutObject_Ends) {
    for (const uint32_t status : {uint32_t{S_OK}, uint32_t{WBEM_S_FALSE}, uint32_t{0x40004}}) {
        ConnectedPc pc(TwoDisks());
        pc.Fail("IEnumWbemClassObject::Next", status, 2);
        EXPECT_EQ(pc.EnumerateDisks(), static_cast<HRESULT>(status));
        EXPECT_EQ(pc.table.nCount, 1);
    }
}

// Three properties a disk: the fourth to sixth reads are the second disk's.
TEST(EnumDiskDrive, UnreadProperty_DropsItsDisk) {
    for (uint32_t read = 4; read <= 6; ++read) {
        ConnectedPc pc(TwoDisks());
        pc.Fail("IWbemClassObject::Get", 0x80041002, read);
        EXPECT_EQ(pc.EnumerateDisks(), static_cast<HRESULT>(0x80041002));
        EXPECT_EQ(pc.table.nCount, 1);
        EXPECT_EQ(Transcript(pc.emulated.journal), End(0));
    }
}

TEST(EnumDiskDrive, PositiveStatusOfTheLastProperty_EndsBehindItsDisk) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemClassObject::Get", WBEM_S_FALSE, 3);
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.table.nCount, 1);
}

TEST(EnumDiskDrive, PositiveStatusOfAnEarlierProperty_EndsNothing) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemClassObject::Get", WBEM_S_FALSE, 2);
    EXPECT_EQ(pc.EnumerateDisks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.table.nCount, 2);
}

TEST(EnumControllerDevice, TwoClasses_ReturnsTheLinksOfTheOneAskedFor) {
    ConnectedPc pc(TwoDisks());
    EXPECT_EQ(pc.EnumerateLinks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.links.nCount, 3);
    EXPECT_EQ(Transcript(pc.emulated.journal), LinksEnd(1));
}

TEST(EnumControllerDevice, NoLink_ReturnsNone) {
    ConnectedPc pc(TwoDisks());
    EXPECT_EQ(pc.EnumerateLinks(TEXT("Win32_SCSIControllerDevice")), WBEM_S_FALSE);
    EXPECT_EQ(pc.links.nCount, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal), LinksEnd(1));
}

TEST(EnumControllerDevice, SixtyFourLinks_AreReadAndNoMore) {
    machine::Pc facts = ManyDisks(1);
    for (int step = 1; step <= 65; ++step)
        facts.disks[0].controllers.push_back("PCI\\BRIDGE" + std::to_string(step));
    ConnectedPc pc(facts);
    EXPECT_EQ(pc.EnumerateLinks(), S_OK);
    EXPECT_EQ(pc.links.nCount, 64);
    EXPECT_EQ(pc.emulated.journal.Calls("IEnumWbemClassObject::Next").size(), 64U);
    EXPECT_EQ(Transcript(pc.emulated.journal), LinksEnd(0));
}

TEST(EnumControllerDevice, EnumerationThatDoesNotBegin_Fails) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemServices::CreateInstanceEnum", 0x80041010);
    SetLastError(ERROR_NOT_READY);
    EXPECT_EQ(pc.EnumerateLinks(), static_cast<HRESULT>(0x80041010));
    EXPECT_EQ(pc.links.nCount, 0);
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "1 Kestova CDiskDrive::Enum_ControllerDevice CreateInstanceEnum FAILED. hResult = "
              "{long -2147217392}GetLastError = {ulong 21}\n");
}

TEST(EnumControllerDevice, SuccessWithoutEnumerator_Fails) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemServices::CreateInstanceEnum", S_OK);
    EXPECT_EQ(pc.EnumerateLinks(), E_INVALIDARG);
}

TEST(EnumControllerDevice, NextThatFails_EndsTheLinks) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IEnumWbemClassObject::Next", 0x80041001, 2);
    EXPECT_EQ(pc.EnumerateLinks(), static_cast<HRESULT>(0x80041001));
    EXPECT_EQ(pc.links.nCount, 1);
    EXPECT_EQ(Transcript(pc.emulated.journal), LinksEnd(static_cast<int32_t>(0x80041001)));
}

TEST(EnumControllerDevice, UnreadProperty_DropsItsLink) {
    for (uint32_t read = 3; read <= 4; ++read) {
        ConnectedPc pc(TwoDisks());
        pc.Fail("IWbemClassObject::Get", 0x80041002, read);
        EXPECT_EQ(pc.EnumerateLinks(), static_cast<HRESULT>(0x80041002));
        EXPECT_EQ(pc.links.nCount, 1);
    }
}

TEST(EnumControllerDevice, PositiveStatusOfDependent_EndsBehindItsLink) {
    ConnectedPc pc(TwoDisks());
    pc.Fail("IWbemClassObject::Get", WBEM_S_FALSE, 2);
    EXPECT_EQ(pc.EnumerateLinks(), WBEM_S_FALSE);
    EXPECT_EQ(pc.links.nCount, 1);
}
