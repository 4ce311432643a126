// What the platform is given beside what its answers depend on: each call of the device layer once.
#include "base/utf.h"
#include "device/device_handle.h"
#include "device/disk_drive.h"
#include "device/encrypt_volume.h"
#include "device/ide_ini.h"
#include "device/wmi_ex.h"
#include "tests/device/hosted_pc.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using Arguments = std::vector<std::string>;

std::string SizeText(size_t size) {
    return std::to_string(size);
}

machine::Pc OneDisk() {
    machine::Disk disk = BareDisk(0);
    disk.scsiAddress = machine::ScsiAddress{1, 2, 3, 4};
    disk.location = std::string("Bus Number 0, Target Id 0, LUN 0");
    return PcWithDisks({disk});
}

// Flags, security, template.
const Arguments ordinaryFile = {"0x00000080", "null", "null"};

const WideString diskPath = TEXT("\\\\.\\PHYSICALDRIVE0");

}  // namespace

TEST(DeviceCalls, ScsiAddress_IsReadIntoItsRecord) {
    HostedPc pc(OneDisk());
    SCSI_ADDRESS address = {};
    CDiskDrive().GetScsiAddress(diskPath, address);
    EXPECT_THAT(pc.emulated.journal.Unshown("CreateFileW"), ElementsAre(ordinaryFile));
    EXPECT_THAT(pc.emulated.journal.Unshown("DeviceIoControl"),
                ElementsAre(Arguments{"0", SizeText(sizeof(SCSI_ADDRESS)), "null"}));
}

TEST(DeviceCalls, StorageProperty_IsReadAsHeaderThenWhole) {
    HostedPc pc(OneDisk());
    GlobalBuffer<STORAGE_DEVICE_DESCRIPTOR> descriptor;
    CDiskDrive().QueryStorageProperty(diskPath, descriptor);
    const std::string query = SizeText(sizeof(STORAGE_PROPERTY_QUERY));
    EXPECT_THAT(pc.emulated.journal.Unshown("DeviceIoControl"),
                ElementsAre(Arguments{query, SizeText(sizeof(STORAGE_DEVICE_DESCRIPTOR)), "null"},
                            Arguments{query, SizeText(descriptor->Size), "null"}));
}

TEST(DeviceCalls, DiskOfAVolume_IsReadIntoSpaceForOneExtent) {
    HostedPc pc(machine::FactoryMbr());
    int number = -1;
    EXPECT_TRUE(ReadDiskNumber(OpenVolume(TEXT('C'), GENERIC_READ), number));
    EXPECT_THAT(pc.emulated.journal.Unshown("CreateFileW"), ElementsAre(ordinaryFile));
    EXPECT_THAT(pc.emulated.journal.Unshown("DeviceIoControl"),
                ElementsAre(Arguments{"0", SizeText(sizeof(VOLUME_DISK_EXTENTS)), "null"}));
}

TEST(DeviceCalls, WindowsDirectory_IsReadIntoAPath) {
    const HostedPc pc(machine::FactoryMbr());
    int number = -1;
    CDiskDrive().GetCurrentDriveNumber(number);
    EXPECT_THAT(pc.emulated.journal.Calls("GetWindowsDirectoryW").at(0).arguments,
                ElementsAre(std::to_string(MAX_PATH)));
}

TEST(DeviceCalls, StartOptions_AreReadInto1000Bytes) {
    HostedPc pc(machine::WinPeTwoDisks());
    CDiskDrive().IsWindowsPE();
    EXPECT_THAT(pc.emulated.journal.Unshown("RegOpenKeyExW"), ElementsAre(Arguments{"0x00000000"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("RegQueryValueExW"),
                ElementsAre(Arguments{"null", "given", "1000"}));
}

TEST(DeviceCalls, Location_IsReadIntoZeroedMemoryWithATerminator) {
    HostedPc pc(OneDisk());
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(TEXT("IDE\\DISK0"), text), 0U);
    EXPECT_THAT(pc.emulated.journal.Unshown("SetupDiCreateDeviceInfoList"),
                ElementsAre(Arguments{"null", "null"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("SetupDiOpenDeviceInfoW"),
                ElementsAre(Arguments{"null", "0x00000000"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("SetupDiGetDeviceRegistryPropertyW"),
                ElementsAre(Arguments{"null", "null", "given"}, Arguments{"null", "given", "null"}));
    const size_t size = (std::string("Bus Number 0, Target Id 0, LUN 0").size() + 1) * sizeof(WCHAR);
    const auto properties = pc.emulated.journal.Calls("SetupDiGetDeviceRegistryPropertyW");
    ASSERT_EQ(properties.size(), 2U);
    EXPECT_THAT(properties[0].arguments, ElementsAre("13", "0"));
    EXPECT_THAT(properties[1].arguments, ElementsAre("13", SizeText(size)));
    EXPECT_THAT(pc.emulated.journal.Calls("GlobalAlloc").at(0).arguments,
                ElementsAre("0x00000040", SizeText(size + sizeof(WCHAR))));
}

TEST(DeviceCalls, NamespaceOfWmi_IsOpenedAsTheCallerByTheUsualProxy) {
    HostedPc pc(OneDisk());
    {
        ComPtr<IWbemLocator> locator;
        ComPtr<IWbemServices> services;
        EXPECT_EQ(CWMIEx::ConnectServer(TEXT("\\\\.\\root\\CIMV2"), locator.Put(), services.Put()), S_OK);
    }
    EXPECT_THAT(pc.emulated.journal.Calls("CoCreateInstance").at(0).arguments,
                ElementsAre("WbemLocator", "0x00000001"));
    EXPECT_THAT(pc.emulated.journal.Unshown("IWbemLocator::ConnectServer"),
                ElementsAre(Arguments{"null", "null", "null", "0", "null", "null"}));
    EXPECT_THAT(pc.emulated.journal.Calls("CoSetProxyBlanket").at(0).arguments,
                ElementsAre("10", "0", "3", "3", "0x00000000"));
    EXPECT_THAT(pc.emulated.journal.Unshown("CoSetProxyBlanket"), ElementsAre(Arguments{"null", "null"}));
}

TEST(DeviceCalls, SecurityOfTheProcess_IsChosenByThePlatform) {
    const HostedPc pc(OneDisk());
    EXPECT_EQ(CWMIEx::Initialize(), S_OK);
    EXPECT_THAT(pc.emulated.journal.Calls("CoInitializeSecurity").at(0).arguments,
                ElementsAre("-1", "0", "3", "0x00000000"));
    EXPECT_THAT(pc.emulated.journal.Unshown("CoInitializeSecurity"),
                ElementsAre(Arguments{"null", "null", "null"}));
}

TEST(DeviceCalls, EncryptionOfAVolume_IsAskedWithoutContext) {
    machine::Pc facts = OneDisk();
    facts.encryptableVolumes = {
        machine::EncryptableVolume{.deviceId = "volume", .persistentVolumeId = "{1}"}};
    const HostedPc pc(facts);
    tagEncryptVolume_t volumes;
    EXPECT_TRUE(CEncryptVolume().GetEncryptVolume(volumes));
    EXPECT_THAT(pc.emulated.journal.Unshown("IWbemServices::CreateInstanceEnum"),
                ElementsAre(Arguments{"null"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("IWbemServices::GetObject"),
                ElementsAre(Arguments{"null", "null"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("IWbemServices::ExecMethod"),
                ElementsAre(Arguments{"null", "null", "null"}));
}

TEST(DeviceCalls, IdeIni_IsReadByKeysOfTheWholeLength) {
    machine::Pc facts = OneDisk();
    facts.host.files.PutFile("IDE.INI", "[Exclude]\r\nDeviceID1=B\r\n");
    const HostedPc pc(facts);
    int number = -1;
    int target = -1;
    CDiskDrive().GetFirstInternalDriveNumber(number, target);
    EXPECT_THAT(pc.emulated.journal.Calls("GetModuleFileNameW").at(0).arguments,
                ElementsAre("null", std::to_string(MAX_PATH)));
    const auto read = pc.emulated.journal.Calls("GetPrivateProfileStringW");
    const std::string file = ToUtf8(IdeIniPath());
    ASSERT_EQ(read.size(), 3U);
    EXPECT_THAT(read[0].arguments, ElementsAre("Exclude", "DeviceID1", "(INI READ ERROR)", "260", file));
    EXPECT_THAT(read[1].arguments, ElementsAre("Exclude", "DeviceID2", "(INI READ ERROR)", "260", file));
    EXPECT_THAT(read[2].arguments, ElementsAre("OrderIndex", "DeviceID1", "(INI READ ERROR)", "260", file));
}

// The proxies go before the locator that made them, each link of a table before its enumeration.
TEST(DeviceCalls, TableOfDisks_ReleasesWhatItReadInnermostFirst) {
    HostedPc pc(OneDisk());
    tagDiskDriveTable_t table;
    EXPECT_EQ(CDiskDrive().GetDiskDrive(table), S_OK);
    const std::string next = "IEnumWbemClassObject::Next";
    const std::string get = "IWbemClassObject::Get";
    const std::string last = pc.emulated.journal.Calls().back().call;
    EXPECT_THAT(pc.emulated.journal.Unshown("IWbemServices::CreateInstanceEnum"), Each(Arguments{"null"}));
    EXPECT_THAT(pc.emulated.journal.Unshown("IUnknown::Release"),
                ElementsAre(Arguments{"IWbemClassObject", get}, Arguments{"IEnumWbemClassObject", next},
                            Arguments{"IEnumWbemClassObject", next}, Arguments{"IWbemServices", last},
                            Arguments{"IWbemLocator", last}));
}
