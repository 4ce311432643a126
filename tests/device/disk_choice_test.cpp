// Which disk is the first internal one.
#include <gtest/gtest.h>

#include "device/disk_drive.h"
#include "tests/device/hosted_pc.h"
#include "tests/support/transcript.h"

namespace {

struct Choice {
    BOOL found = FALSE;
    int number = 99;
    int marker = 99;
    bool operator==(const Choice&) const = default;
};

void PrintTo(const Choice& choice, std::ostream* out) {
    *out << "{found " << choice.found << ", number " << choice.number << ", marker " << choice.marker << "}";
}

Choice Choose(const HostedPc&, int skippedDrive = -1) {
    Choice choice;
    choice.found = CDiskDrive().GetFirstInternalDriveNumber(choice.number, skippedDrive, choice.marker);
    return choice;
}

// A disk at a location, on a controller of a few letters.
machine::Disk DiskOn(uint32_t number, const char* controller, int location) {
    machine::Disk disk = BareDisk(number);
    disk.controllers = {controller};
    disk.location = std::to_string(location);
    return disk;
}

machine::Pc Ordered(std::vector<machine::Disk> disks, std::string ini) {
    machine::Pc pc = PcWithDisks(std::move(disks));
    pc.host.files.PutFile("IDE.INI", std::move(ini));
    return pc;
}

constexpr const char* orderAThenB = "[OrderIndex]\r\nDeviceID1=A\r\nDeviceID2=B\r\n";

}  // namespace

TEST(GetFirstInternalDriveNumber, OneDisk_IsChosen) {
    const HostedPc pc(PcWithDisks({DiskOn(0, "A", 0)}));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 0, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, NoDiskToSkip_SkipsNone) {
    const HostedPc pc(PcWithDisks({DiskOn(0, "A", 0)}));
    int number = 99;
    int marker = 99;
    EXPECT_EQ(CDiskDrive().GetFirstInternalDriveNumber(number, marker), TRUE);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(marker, 0);
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, WinPeWithIdeIni_ReturnsDisk0) {
    const HostedPc pc(machine::WinPeTwoDisks());
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 0, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, FirstChoiceSkipped_ReturnsTheSecond) {
    const HostedPc pc(machine::WinPeTwoDisks());
    EXPECT_EQ(Choose(pc, 0), (Choice{TRUE, 1, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, NoDisk_ReturnsNone) {
    const HostedPc pc(PcWithDisks({}));
    EXPECT_EQ(Choose(pc), (Choice{FALSE, -1, 99}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, FailingTable_Fails) {
    HostedPc pc(PcWithDisks({DiskOn(0, "A", 0)}));
    pc.Fail("IWbemLocator::ConnectServer", 0x8004100E);
    EXPECT_EQ(Choose(pc), (Choice{FALSE, -1, 99}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, SixtyFourDisks_FailSixtyThreeDoNot) {
    std::vector<machine::Disk> disks;
    for (uint32_t number = 0; number < 63; ++number)
        disks.push_back(BareDisk(number));
    EXPECT_EQ(Choose(HostedPc(PcWithDisks(disks))), (Choice{TRUE, 0, -1}));
    disks.push_back(BareDisk(63));
    const HostedPc pc(PcWithDisks(disks));
    EXPECT_EQ(Choose(pc), (Choice{FALSE, -1, 99}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, OnlyAtaRaidAndSata_AreInternal) {
    for (uint32_t bus = 0; bus <= 127; ++bus) {
        machine::Disk disk = DiskOn(0, "A", 0);
        disk.storageBusType = bus;
        const bool internal = bus == 3 || bus == 8 || bus == 11;
        EXPECT_EQ(Choose(HostedPc(PcWithDisks({disk}))),
                  (internal ? Choice{TRUE, 0, 0} : Choice{FALSE, -1, 99}))
            << "bus " << bus;
    }
}

TEST(GetFirstInternalDriveNumber, OnlyIdeAndScsi_AreInternal) {
    for (const char* kind : {"IDE", "SCSI", "USB", "1394", "HDC"}) {
        machine::Disk disk = DiskOn(0, "A", 0);
        disk.wmi->interfaceType = kind;
        const bool internal = std::string(kind) == "IDE" || std::string(kind) == "SCSI";
        EXPECT_EQ(Choose(HostedPc(PcWithDisks({disk}))),
                  (internal ? Choice{TRUE, 0, 0} : Choice{FALSE, -1, 99}))
            << kind;
    }
}

TEST(GetFirstInternalDriveNumber, UnknownBus_IsNeverChosen) {
    machine::Disk disk = DiskOn(0, "A", 0);
    disk.storageBusType = machine::Fact<uint32_t>::Fails(ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({disk}))), (Choice{FALSE, -1, 99}));
}

TEST(GetFirstInternalDriveNumber, SmallestLocation_Wins) {
    const HostedPc pc(PcWithDisks({DiskOn(0, "A", 2), DiskOn(1, "A", 0), DiskOn(2, "A", 1)}));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 1, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, NothingKnown_ReturnsTheLowestNumber) {
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({BareDisk(3), BareDisk(1), BareDisk(2)}))), (Choice{TRUE, 1, -1}));
}

// A fact of any eligible disk takes the number's say away; the first seen stays.
TEST(GetFirstInternalDriveNumber, OneLocationKnown_ReturnsTheFirstSeen) {
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({BareDisk(3), BareDisk(1), DiskOn(2, "A", 0)}))),
              (Choice{TRUE, 3, -1}));
    machine::Disk addressed = BareDisk(2);
    addressed.scsiAddress = machine::ScsiAddress{};
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({BareDisk(3), BareDisk(1), addressed}))), (Choice{TRUE, 3, -1}));
}

TEST(GetFirstInternalDriveNumber, ExternalDisks_DoNotCount) {
    machine::Disk usb = DiskOn(2, "A", 0);
    usb.wmi->interfaceType = "USB";
    usb.scsiAddress = machine::ScsiAddress{};
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({usb, BareDisk(3), BareDisk(1)}))), (Choice{TRUE, 1, -1}));
}

TEST(GetFirstInternalDriveNumber, ChosenDisk_ReturnsItsMarker) {
    machine::Disk target = BareDisk(0);
    target.location = std::string("Bus Number 6, Target Id 2, LUN 0");
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({target}))), (Choice{TRUE, 0, 1}));
}

TEST(GetFirstInternalDriveNumber, ExcludedController_IsPassedOver) {
    const HostedPc pc(Ordered({DiskOn(0, "A", 0), DiskOn(1, "B", 1)}, "[Exclude]\r\nDeviceID1=A\r\n"));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 1, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, EveryControllerExcluded_ReturnsNone) {
    const HostedPc pc(Ordered({DiskOn(0, "A", 0)}, "[Exclude]\r\nDeviceID1=A\r\n"));
    EXPECT_EQ(Choose(pc), (Choice{FALSE, -1, 99}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, ExcludeKeysBehindAGap_AreNotRead) {
    const char* const ini = "[Exclude]\r\nDeviceID1=X\r\nDeviceID3=A\r\n";
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "A", 0)}, ini))), (Choice{TRUE, 0, 0}));
}

// The records at the end show the last answers of the two checks, whatever disk they were about.
TEST(GetFirstInternalDriveNumber, LastDiskExcluded_EndShowsIt) {
    const HostedPc pc(Ordered({DiskOn(0, "A", 0), DiskOn(1, "B", 1)},
                              "[Exclude]\r\nDeviceID1=B\r\n[OrderIndex]\r\nDeviceID1=A\r\n"));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 0, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, ListedDisk_ReplacesAnUnlistedOne) {
    const HostedPc pc(Ordered({DiskOn(0, "C", 0), DiskOn(1, "B", 5)}, orderAThenB));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 1, 0}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, UnlistedDisk_DoesNotReplaceAListedOne) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "B", 5), DiskOn(1, "C", 0)}, orderAThenB))),
              (Choice{TRUE, 0, 0}));
}

TEST(GetFirstInternalDriveNumber, SmallerOrder_Wins) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "B", 0), DiskOn(1, "A", 5)}, orderAThenB))),
              (Choice{TRUE, 1, 0}));
}

TEST(GetFirstInternalDriveNumber, LargerOrder_Loses) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "A", 5), DiskOn(1, "B", 0)}, orderAThenB))),
              (Choice{TRUE, 0, 0}));
}

// Disk 2 meets the order of disk 0, not that of disk 1, which lost.
TEST(GetFirstInternalDriveNumber, LosingDisk_LeavesTheBestOrder) {
    for (const char* const loser : {"B", "C"}) {
        EXPECT_EQ(Choose(HostedPc(
                      Ordered({DiskOn(0, "A", 5), DiskOn(1, loser, 0), DiskOn(2, "B", 0)}, orderAThenB))),
                  (Choice{TRUE, 0, 0}))
            << loser;
    }
}

TEST(GetFirstInternalDriveNumber, EqualOrder_ComparesTheDisks) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "A", 5), DiskOn(1, "A", 2)}, orderAThenB))),
              (Choice{TRUE, 1, 0}));
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "A", 2), DiskOn(1, "A", 5)}, orderAThenB))),
              (Choice{TRUE, 0, 0}));
}

TEST(GetFirstInternalDriveNumber, UnlistedListedPreferred_ReturnsThePreferred) {
    EXPECT_EQ(
        Choose(HostedPc(Ordered({DiskOn(0, "C", 0), DiskOn(1, "B", 0), DiskOn(2, "A", 9)}, orderAThenB))),
        (Choice{TRUE, 2, 0}));
}

TEST(GetFirstInternalDriveNumber, OnlyDiskSkipped_ReturnsNone) {
    const HostedPc pc(PcWithDisks({DiskOn(0, "A", 0)}));
    EXPECT_EQ(Choose(pc, 0), (Choice{TRUE, -1, 99}));
    ExpectTranscript(pc.emulated.journal);
}

TEST(GetFirstInternalDriveNumber, SkippedDisk_IsNotCompared) {
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({DiskOn(0, "A", 5), DiskOn(1, "A", 0)})), 1), (Choice{TRUE, 0, 0}));
}

TEST(GetFirstInternalDriveNumber, SkippedListedDisk_DoesNotReplaceAnUnlistedOne) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "C", 0), DiskOn(1, "A", 0)}, orderAThenB)), 1),
              (Choice{TRUE, 0, 0}));
}

TEST(GetFirstInternalDriveNumber, SkippedDiskOfEqualOrder_IsNotCompared) {
    EXPECT_EQ(Choose(HostedPc(Ordered({DiskOn(0, "A", 5), DiskOn(1, "A", 0)}, orderAThenB)), 1),
              (Choice{TRUE, 0, 0}));
}

// Its order is not remembered either: disk 2 is still compared with disk 0, which has the same order.
TEST(GetFirstInternalDriveNumber, SkippedDisk_LeavesTheBestOrder) {
    EXPECT_EQ(
        Choose(HostedPc(Ordered({DiskOn(0, "B", 5), DiskOn(1, "A", 0), DiskOn(2, "B", 1)}, orderAThenB)), 1),
        (Choice{TRUE, 2, 0}));
}

TEST(GetFirstInternalDriveNumber, SkippedFirstDisk_LeavesTheBestOrder) {
    EXPECT_EQ(
        Choose(HostedPc(Ordered({DiskOn(0, "A", 0), DiskOn(1, "C", 5), DiskOn(2, "C", 1)}, orderAThenB)), 0),
        (Choice{TRUE, 2, 0}));
}

// A device id that opens but names no physical drive: its row bears -1, the number of no disk.
TEST(GetFirstInternalDriveNumber, DiskWithoutNumber_IsNotChosen) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].wmi->deviceId = "\\\\.\\C:";
    EXPECT_EQ(Choose(HostedPc(facts)), (Choice{TRUE, -1, 99}));
    EXPECT_EQ(Choose(HostedPc(facts), 5), (Choice{TRUE, -1, 0}));
    const HostedPc pc(facts);
    Choice unskipped;
    unskipped.found = CDiskDrive().GetFirstInternalDriveNumber(unskipped.number, unskipped.marker);
    EXPECT_EQ(unskipped, (Choice{TRUE, -1, 99}));
}

// Whether a location or a SCSI address is known of any internal disk, chosen or not, decides whether numbers
// are compared.
TEST(GetFirstInternalDriveNumber, KnowledgeOfADiskThatIsNotChosen_ForbidsTheChoiceByNumber) {
    struct Case {
        const char* what;
        const char* controller;
        uint32_t number;
        const char* deviceId;
    };
    const Case cases[] = {{"excluded", "A", 5, "\\\\.\\PHYSICALDRIVE5"},
                          {"skipped", "B", 5, "\\\\.\\PHYSICALDRIVE5"},
                          {"number 0", "A", 0, "\\\\.\\PHYSICALDRIVE0"},
                          {"no number", "A", 5, "\\\\.\\E:"}};
    for (const Case& known : cases) {
        for (const bool byLocation : {true, false}) {
            SCOPED_TRACE(std::string(known.what) + (byLocation ? ", location" : ", address"));
            machine::Disk disk = BareDisk(known.number);
            disk.wmi->deviceId = known.deviceId;
            disk.controllers = {known.controller};
            disk.partitions.resize(1);
            disk.partitions[0].volume.emplace().letters = "E";
            if (byLocation) disk.location = std::string("0");
            if (!byLocation) disk.scsiAddress = machine::ScsiAddress{0, 0, 0, 0};
            const HostedPc pc(Ordered({BareDisk(2), BareDisk(1), disk}, "[Exclude]\r\nDeviceID1=A\r\n"));
            EXPECT_EQ(Choose(pc, 5).number, 2);
        }
    }
}

TEST(GetFirstInternalDriveNumber, NegativeLocation_IsTheSmallest) {
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({DiskOn(3, "A", -5), DiskOn(1, "A", 2)}))), (Choice{TRUE, 3, 0}));
    EXPECT_EQ(Choose(HostedPc(PcWithDisks({DiskOn(1, "A", 2), DiskOn(3, "A", -5)}))), (Choice{TRUE, 3, 0}));
}

// A row behind the last one is not looked at, even where an earlier table left a disk in it.
TEST(GetFirstInternalDriveNumber, DiskThatIsGone_IsNotChosenAgain) {
    HostedPc pc(PcWithDisks({DiskOn(1, "A", 5), DiskOn(0, "A", 0)}));
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 0, 0}));
    pc.emulated.facts.disks.pop_back();
    EXPECT_EQ(Choose(pc), (Choice{TRUE, 1, 0}));
}
