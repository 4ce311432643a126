// Location texts: reading them, and getting them from device set-up.
#include "device/disk_location.h"

#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

struct Location {
    int number;
    int marker;
    bool operator==(const Location&) const = default;
};

Location Read(const WCHAR* text, int marker = 0) {
    const int number = ReadLocation(text, marker);
    return {number, marker};
}

machine::Pc PcWithLocation(machine::Fact<std::string> location) {
    machine::Disk disk = BareDisk(0);
    disk.location = std::move(location);
    return PcWithDisks({disk});
}

const WideString diskId = TEXT("IDE\\DISK0");

}  // namespace

TEST(ReadLocation, BareNumber_IsTheLocation) {
    EXPECT_EQ(Read(TEXT("0")), (Location{0, 0}));
    EXPECT_EQ(Read(TEXT("1")), (Location{1, 0}));
    EXPECT_EQ(Read(TEXT(" 7 of 8")), (Location{7, 0}));
    EXPECT_EQ(Read(TEXT("6")), (Location{6, 0}));  // no bus, so no target either
}

TEST(ReadLocation, BusNumber_IsTheLocation) {
    EXPECT_EQ(Read(TEXT("Bus Number 0, Target Id 3, LUN 0")), (Location{0, 0}));
    EXPECT_EQ(Read(TEXT("Bus Number 5, Target Id 3, LUN 0")), (Location{5, 0}));
    EXPECT_EQ(Read(TEXT("Bus Number 7, Target Id 3, LUN 0")), (Location{7, 0}));
}

TEST(ReadLocation, TargetOfBus6_IsTheLocation) {
    EXPECT_EQ(Read(TEXT("Bus Number 6, Target Id 3, LUN 0")), (Location{3, 1}));
}

TEST(ReadLocation, Marker_IsNeverTakenBack) {
    EXPECT_EQ(Read(TEXT("Bus Number 0, Target Id 3, LUN 0"), 1), (Location{0, 1}));
    EXPECT_EQ(Read(TEXT("2"), 1), (Location{2, 1}));
    EXPECT_EQ(Read(TEXT("Channel 0"), 1), (Location{-1, 1}));
}

TEST(ReadLocation, IncompleteOrOlderText_IsNoLocation) {
    EXPECT_EQ(Read(TEXT("Bus Number 0, Target ID 0, LUN 0")), (Location{-1, 0}));  // older drivers: capitals
    EXPECT_EQ(Read(TEXT("Bus Number 6, Target ID 0, LUN 0")), (Location{-1, 0}));
    EXPECT_EQ(Read(TEXT("Bus Number 6")), (Location{-1, 0}));
    EXPECT_EQ(Read(TEXT("Bus Number 6, Target Id x")), (Location{-1, 0}));
}

TEST(ReadLocation, OtherTexts_AreNoLocation) {
    EXPECT_EQ(Read(TEXT("Channel 0, Target 0, Lun 0")), (Location{-1, 0}));
    EXPECT_EQ(Read(TEXT("Port_#0004.Hub_#0006")), (Location{-1, 0}));
    EXPECT_EQ(Read(TEXT("")), (Location{-1, 0}));
    EXPECT_EQ(Read(TEXT("   ")), (Location{-1, 0}));
}

TEST(GetLocationInformation, KnownDevice_ReturnsItsText) {
    const HostedPc pc(PcWithLocation(std::string("Bus Number 1, Target Id 0, LUN 0")));
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), 0U);
    ASSERT_TRUE(text);
    EXPECT_EQ(WideString(text.Get()), TEXT("Bus Number 1, Target Id 0, LUN 0"));
    EXPECT_EQ(
        Transcript(pc.emulated.journal),
        "4 Kestova CDiskDrive::GetDeviceRegistryProperty End (0) lpProperty = Bus Number 1, Target Id 0, "
        "LUN 0\n"
        "4 Kestova CDiskDrive::GetLocationInformation End (0)\n");
}

TEST(GetLocationInformation, DeviceWithoutTheProperty_ReturnsEmpty) {
    const HostedPc pc(PcWithLocation(machine::Fact<std::string>::Fails(ERROR_INVALID_DATA)));
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), 0U);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

// Its size can be asked for without a buffer.
TEST(GetLocationInformation, PropertyOfNoBytes_ReturnsAnEmptyText) {
    const HostedPc pc(PcWithLocation(machine::Fact<std::string>::Fails(ERROR_SUCCESS)));
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), 0U);
    ASSERT_TRUE(text);
    EXPECT_EQ(WideString(text.Get()), TEXT(""));
    EXPECT_EQ(Transcript(pc.emulated.journal),
              "4 Kestova CDiskDrive::GetDeviceRegistryProperty End (0) lpProperty = \n"
              "4 Kestova CDiskDrive::GetLocationInformation End (0)\n");
}

TEST(GetLocationInformation, NoDeviceSet_Fails) {
    HostedPc pc(PcWithLocation(std::string("0")));
    pc.Fail("SetupDiCreateDeviceInfoList", ERROR_NOT_ENOUGH_MEMORY);
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), LOCATION_NO_DEVICE_SET);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetLocationInformation, UnknownDevice_Fails) {
    const HostedPc pc(PcWithLocation(std::string("0")));
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(TEXT("IDE\\NONE"), text), LOCATION_NO_DEVICE);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetLocationInformation, UnknownSize_Fails) {
    const HostedPc pc(PcWithLocation(machine::Fact<std::string>::Fails(ERROR_ACCESS_DENIED)));
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), PROPERTY_SIZE_UNKNOWN);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetLocationInformation, NoMemory_Fails) {
    HostedPc pc(PcWithLocation(std::string("0")));
    pc.Fail("GlobalAlloc", ERROR_NOT_ENOUGH_MEMORY);
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), PROPERTY_NO_MEMORY);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

// Even ERROR_INVALID_DATA is a failure the second time.
TEST(GetLocationInformation, UnreadableText_Fails) {
    HostedPc pc(PcWithLocation(std::string("0")));
    pc.Fail("SetupDiGetDeviceRegistryPropertyW", ERROR_INVALID_DATA, 2);
    GlobalBuffer<WCHAR> text;
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), PROPERTY_NOT_READ);
    EXPECT_FALSE(text);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetLocationInformation, StaleText_IsReleased) {
    const HostedPc pc(PcWithLocation(machine::Fact<std::string>::Fails(ERROR_INVALID_DATA)));
    GlobalBuffer<WCHAR> text(static_cast<WCHAR*>(GlobalAlloc(GMEM_ZEROINIT, 2)));
    EXPECT_EQ(CDiskDrive().GetLocationInformation(diskId, text), 0U);
    EXPECT_FALSE(text);
}

// The records name the steps by these numbers, and callers pass them on.
TEST(Steps, EveryStep_HasItsNumber) {
    EXPECT_EQ(LOCATION_NO_DEVICE_SET, 1U);
    EXPECT_EQ(LOCATION_NO_DEVICE, 2U);
    EXPECT_EQ(PROPERTY_SIZE_UNKNOWN, 1U);
    EXPECT_EQ(PROPERTY_NO_MEMORY, 2U);
    EXPECT_EQ(PROPERTY_NOT_READ, 3U);
    EXPECT_EQ(DEVICE_NOT_OPENED, 1U);
    EXPECT_EQ(SCSI_ADDRESS_NOT_READ, 2U);
    EXPECT_EQ(STORAGE_SIZE_UNKNOWN, 2U);
    EXPECT_EQ(STORAGE_NO_MEMORY, 3U);
    EXPECT_EQ(STORAGE_NOT_READ, 4U);
}
