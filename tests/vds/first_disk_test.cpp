// The first internal disk.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
constexpr uint64_t GiB = uint64_t{1} << 30;
const std::string method = "Kestova CVDSPartition::GetFirstInternalDriveNumber";

// Result and number of one call.
struct Decision {
    BOOL found = FALSE;
    int number = 12345;
    bool operator==(const Decision&) const = default;
};

void PrintTo(const Decision& decision, std::ostream* out) {
    *out << "found " << decision.found << ", number " << decision.number;
}

Decision FirstDisk(VdsSession& session) {
    Decision decision;
    decision.found = session->GetFirstInternalDriveNumber(decision.number);
    return decision;
}

using Sizes = std::vector<uint64_t>;

// The partitions of the first internal disk in order, known by their sizes; none on FALSE.
Sizes SizesOfFirstDisk(VdsSession& session) {
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    Sizes sizes;
    if (!session->QueryPartitions(&partitions, &count)) return sizes;
    for (LONG index = 0; index < count; ++index)
        sizes.push_back(partitions[index].ullSize);
    CoTaskMemFree(partitions);
    return sizes;
}

Sizes SizesOf(const machine::Disk& disk) {
    Sizes sizes;
    for (const machine::Partition& partition : disk.partitions)
        sizes.push_back(partition.size);
    return sizes;
}

// An internal disk that WMI names by the volume on it: it can be opened and read, but has no number. The
// service does not list it.
machine::Disk NumberlessDisk(uint32_t number, const std::string& location) {
    machine::Disk disk = KnownDisk(number, GiB, location);
    disk.vdsName.reset();
    disk.wmi->deviceId = "\\\\.\\C:";
    disk.partitions[0].volume.emplace().letters = "C";
    return disk;
}

}  // namespace

TEST(GetFirstInternalDriveNumber, InstalledWindows_ReturnsItsDisk) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    EXPECT_EQ(session.Records(), firstDiskRecords);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetFirstInternalDriveNumber, InstalledWindowsOnTheDiskListedSecond_ReturnsItsNumber) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.insert(pc.disks.begin(), PlainDisk(1));
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(GetFirstInternalDriveNumber, DataDiskBehindTheSystemDisk_IsLeftAlone) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.push_back(PlainDisk(1));
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    EXPECT_EQ(SizesOfFirstDisk(session), SizesOf(session.Disk(0)));
    EXPECT_TRUE(session->SetActive(1));
    EXPECT_EQ(session.Disk(0).partitions[0].bootIndicator, 1);
    EXPECT_EQ(session.Disk(1).partitions[0].bootIndicator, 0);
    EXPECT_EQ(session.Left(6), (Holdings{{"IVdsAdvancedDisk", 1}}));
}

TEST(GetFirstInternalDriveNumber, DiskThatWasFoundBefore_IsNoMatchOnAnotherBus) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.push_back(PlainDisk(1));
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    session.Disk(0).busType = VDS_BUS_TYPE_NVME;
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 0}));
    EXPECT_EQ(SizesOfFirstDisk(session), Sizes());
    EXPECT_FALSE(session->SetActive(1));
    EXPECT_TRUE(session.pc.journal.Calls("IVdsAdvancedDisk::ChangeAttributes").empty());
    EXPECT_EQ(session.Left(8), Holdings());
}

TEST(GetFirstInternalDriveNumber, MissingService_IsAnError) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    int number = 7;
    EXPECT_FALSE(partition.GetFirstInternalDriveNumber(number));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(Transcript(pc.journal),
              Lines({"4 " + method + " Start", "1 " + method + " m_pVdsService = NULL"}));
}

TEST(GetFirstInternalDriveNumber, ServiceNotReady_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 1);
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    EXPECT_EQ(session.Records(),
              Lines({"4 " + method + " Start", "1 " + method + " IsServiceReady Error hResult = {long 1}"}));
}

TEST(GetFirstInternalDriveNumber, WindowsOnTwoDisks_HasNone) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[1].volume->furtherExtents = {{.disk = 1, .offset = 0, .size = GiB}};
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    EXPECT_EQ(session.Records(), Lines({"4 " + method + " Start", "4 " + method + " bWindowsPE = FALSE",
                                        "1 " + method +
                                            " call pDiskDrive->GetCurrentDriveNumber Error bResult = {int 0}"
                                            "  DiskNumber = {int -1}"}));
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(GetFirstInternalDriveNumber, DisksThatCannotBeListed_AreAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::QueryProviders", failure);
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 0}));
    EXPECT_EQ(session.Records(),
              Lines({"4 " + method + " Start", "4 " + method + " bWindowsPE = FALSE",
                     "4 Kestova CVDSEx::QueryDisks\\tStart",
                     "1 Kestova CVDSEx::QueryDisks QueryProviders S_OK != hResult. hResult = "
                     "{long -2147467259} GetLastError = {ulong 2}",  // left by the search for IDE.INI
                     "1 " + method + " call CVDSEx::QueryDisks Error hResult = {long -2147467259}"}));
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(GetFirstInternalDriveNumber, InstalledWindowsOnAnotherBus_IsTheNumberButNoMatch) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].busType = VDS_BUS_TYPE_NVME;
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 0}));
    EXPECT_EQ(session.Records(),
              Lines({"4 " + method + " Start", "4 " + method + " bWindowsPE = FALSE",
                     "4 Kestova CVDSEx::QueryDisks\\tStart", "4 " + method + " lNumberOfDisks = {long 1}",
                     "4 " + method + " End DiskNumber = {int 0} bFind = {int 0}"}));
}

TEST(GetFirstInternalDriveNumber, OnlyThreeBuses_AreInternal) {
    for (uint32_t bus = 0; bus <= 19; ++bus) {
        SCOPED_TRACE(bus);
        machine::Disk disk = PlainDisk(0);
        disk.busType = bus;
        VdsSession session(WindowsPe({disk}));
        const bool internal = bus == 3 || bus == 8 || bus == 11;
        EXPECT_EQ(FirstDisk(session), (internal ? Decision{TRUE, 0} : Decision{FALSE, -1}));
    }
}

TEST(GetFirstInternalDriveNumber, WindowsPe_TakesTheLowestNumber) {
    VdsSession session(WindowsPe({PlainDisk(2), PlainDisk(0)}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(GetFirstInternalDriveNumber, WindowsPe_KeepsTheLowestNumberWhenItComesFirst) {
    VdsSession session(WindowsPe({PlainDisk(0, GiB), PlainDisk(2, 2 * GiB)}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    EXPECT_TRUE(session->QueryPartitions(&partitions, &count));
    ASSERT_EQ(count, 1);
    EXPECT_EQ(partitions[0].ullSize, GiB / 2);
    CoTaskMemFree(partitions);
}

TEST(GetFirstInternalDriveNumber, WindowsPe_LeavesOtherDevicesAndNamesOut) {
    machine::Disk disc = PlainDisk(0);
    disc.deviceType = 2;
    disc.vdsName = "\\\\?\\CdRom0";
    machine::Disk stick = PlainDisk(1);
    stick.busType = VDS_BUS_TYPE_USB;
    machine::Disk nameless = PlainDisk(2);
    nameless.vdsName.reset();
    machine::Disk strange = PlainDisk(3);
    strange.vdsName = "\\\\?\\Volume3";
    VdsSession session(WindowsPe({disc, stick, nameless, strange, PlainDisk(4)}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 4}));
    ExpectTranscript(session.pc.journal);
}

TEST(GetFirstInternalDriveNumber, WindowsPeWithAUsbDiskAlone_HasNone) {
    machine::Disk stick = PlainDisk(0);
    stick.busType = VDS_BUS_TYPE_USB;
    VdsSession session(WindowsPe({stick}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    ExpectTranscript(session.pc.journal);
}

TEST(GetFirstInternalDriveNumber, SettingFile_DecidesInWindowsPe) {
    VdsSession session(machine::WinPeTwoDisks());
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(GetFirstInternalDriveNumber, SettingFile_MeansNothingInInstalledWindows) {
    machine::Pc pc = machine::FactoryMbr();
    pc.host.files.PutFile("IDE.INI", "[Exclude]\r\n");
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    EXPECT_EQ(session.Records(), firstDiskRecords);
}

TEST(GetFirstInternalDriveNumber, UnknownPathOfTheHost_CountsAsNoSettingFile) {
    VdsSession session(machine::WinPeTwoDisks());
    session.Fail("GetModuleFileNameW", 5);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    const std::string records = session.Records();
    EXPECT_NE(records.find("bExistSettingFile = FALSE"), std::string::npos) << records;
}

TEST(GetFirstInternalDriveNumber, SettingFileWithoutAnyDisk_IsAnError) {
    VdsSession session(WithSettingFile({}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(GetFirstInternalDriveNumber, DiskWithoutAReadableNumber_IsAnError) {
    VdsSession session(WithSettingFile({NumberlessDisk(0, "0")}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    ExpectTranscript(session.pc.journal);
}

TEST(GetFirstInternalDriveNumber, ChosenDiskUnlistedByTheService_IsTheNumberButNoMatch) {
    machine::Disk chosen = KnownDisk(0, GiB, "0");
    chosen.vdsName.reset();
    VdsSession session(WithSettingFile({chosen}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 0}));
}

TEST(GetFirstInternalDriveNumber, NumberWithoutAMatch_IsRemembered) {
    machine::Disk chosen = KnownDisk(3, GiB, "0");
    chosen.vdsName.reset();
    VdsSession session(WithSettingFile({chosen}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 3}));
    session.pc.journal.Clear();
    int second = 0;
    EXPECT_FALSE(session->GetSecondInternalDriveNumber(second));
    const std::string records = session.Records();
    EXPECT_NE(records.find("TRUE == bFind. FirstDiskNumber ={int 3}"), std::string::npos) << records;
}

TEST(GetFirstInternalDriveNumber, LargerSecondTarget_BecomesTheFirstDisk) {
    VdsSession session(TwoTargets(GiB, 2 * GiB));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 1}));
    ExpectTranscript(session.pc.journal);
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    ASSERT_TRUE(session->QueryPartitions(&partitions, &count));
    EXPECT_EQ(partitions[0].ullSize, GiB);
    CoTaskMemFree(partitions);
    EXPECT_EQ(session.Left(4), Holdings());
}

TEST(GetFirstInternalDriveNumber, SecondTargetNotLarger_ChangesNothing) {
    for (const uint64_t secondSize : {GiB, GiB - 1}) {
        VdsSession session(TwoTargets(GiB, secondSize));
        EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    }
}

TEST(GetFirstInternalDriveNumber, Sizes_AreComparedWithoutASign) {
    constexpr uint64_t huge = uint64_t{1} << 63;
    {
        VdsSession session(TwoTargets(GiB, huge));
        EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 1}));
    }
    VdsSession session(TwoTargets(huge, GiB));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
}

TEST(GetFirstInternalDriveNumber, SecondTargetWithoutANumber_IsNotCompared) {
    // Without a number it would count as the list's first disk, which is larger.
    VdsSession session(
        WithSettingFile({PlainDisk(2, 4 * GiB), KnownDisk(0, GiB, "Bus Number 6, Target Id 0, LUN 0"),
                         NumberlessDisk(1, "Bus Number 6, Target Id 1, LUN 0")}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    EXPECT_EQ(SizesOfFirstDisk(session), Sizes{GiB / 2});
}

TEST(GetFirstInternalDriveNumber, Sizes_AreComparedOnlyBetweenTargetsOfBusSix) {
    // The larger disk is read first, so that it does not inherit the mark of the other.
    VdsSession session(
        WithSettingFile({KnownDisk(1, 2 * GiB, "7"), KnownDisk(0, GiB, "Bus Number 6, Target Id 0, LUN 0")}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
}

TEST(GetFirstInternalDriveNumber, SecondTargetUnlistedByTheService_IsComparedAsTheFirstListed) {
    // The list is disk 2, disk 0; the second choice, disk 1, is not in it and so counts as disk 2.
    machine::Disk larger = PlainDisk(2, 4 * GiB);
    machine::Disk unlisted = KnownDisk(1, 2 * GiB, "Bus Number 6, Target Id 1, LUN 0");
    unlisted.vdsName.reset();
    VdsSession session(
        WithSettingFile({larger, KnownDisk(0, GiB, "Bus Number 6, Target Id 0, LUN 0"), unlisted}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 1}));
    ExpectTranscript(session.pc.journal);
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    ASSERT_TRUE(session->QueryPartitions(&partitions, &count));
    EXPECT_EQ(partitions[0].ullSize, 2 * GiB);
    CoTaskMemFree(partitions);
}

TEST(GetFirstInternalDriveNumber, TargetsWithoutAnyListedDisk_AreNotCompared) {
    machine::Pc pc = TwoTargets(GiB, 2 * GiB);
    pc.packs = {{.name = "Away", .status = VDS_PS_OFFLINE}};
    for (machine::Disk& disk : pc.disks)
        disk.pack = "Away";
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, 0}));
    ExpectTranscript(session.pc.journal);
}

TEST(GetFirstInternalDriveNumber, NumberBeyondThirtyOneBits_IsAnError) {
    constexpr uint32_t huge = 0xFFFFFFFF;  // -1 as a signed number
    machine::Pc windows = machine::FactoryMbr();
    windows.disks[0].number = huge;
    {
        VdsSession session(windows);
        EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
        EXPECT_EQ(session.Records(),
                  Lines({"4 " + method + " Start", "4 " + method + " bWindowsPE = FALSE",
                         "1 " + method +
                             " call pDiskDrive->GetFirstInternalDriveNumber Error DiskNumber < 0."
                             " DiskNumber = {int -1}"}));
    }
    VdsSession session(WithSettingFile({KnownDisk(huge, GiB, "0")}));
    EXPECT_EQ(FirstDisk(session), (Decision{FALSE, -1}));
    ExpectTranscript(session.pc.journal);
}

namespace {

machine::Disk Named(machine::Disk disk, const std::string& name) {
    disk.vdsName = name;
    return disk;
}

}  // namespace

TEST(GetFirstInternalDriveNumber, WindowsPeWithTwoEntriesOfOneNumber_TakesTheFirst) {
    const std::string name = "\\\\?\\PhysicalDrive3";
    VdsSession session(WindowsPe({Named(PlainDisk(3, 2 * GiB), name), Named(PlainDisk(4, 4 * GiB), name)}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 3}));
    EXPECT_EQ(SizesOfFirstDisk(session), (Sizes{GiB}));
}

TEST(GetFirstInternalDriveNumber, InstalledWindowsWithTwoEntriesOfItsNumber_TakesTheLast) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks.push_back(Named(PlainDisk(1, 2 * GiB), *pc.disks[0].vdsName));
    VdsSession session(pc);
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
    EXPECT_EQ(SizesOfFirstDisk(session), (Sizes{GiB}));
}

// Neither a disk nor on an internal bus: recorded as no disk, so the device type comes first.
TEST(GetFirstInternalDriveNumber, DiscDriveOnAnotherBus_IsRecordedAsNoDisk) {
    machine::Disk disc = PlainDisk(0);
    disc.deviceType = 2;
    disc.busType = VDS_BUS_TYPE_USB;
    VdsSession session(WindowsPe({disc, PlainDisk(1)}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 1}));
    EXPECT_NE(session.Records().find("FILE_DEVICE_DISK != dwDeviceType, lDisk = {long 0}"),
              std::string::npos);
}

// The first target, which the service does not list, is compared as the first disk of the list.
TEST(GetFirstInternalDriveNumber, FirstTargetUnlistedByTheService_IsComparedAsTheFirstListed) {
    for (const uint64_t sizeOfFirstListed : {GiB, 3 * GiB}) {
        SCOPED_TRACE(sizeOfFirstListed);
        machine::Pc pc = TwoTargets(GiB, 2 * GiB);
        pc.disks[0].vdsName.reset();
        pc.disks.insert(pc.disks.begin(), PlainDisk(5, sizeOfFirstListed));
        VdsSession session(pc);
        EXPECT_EQ(FirstDisk(session), (sizeOfFirstListed < 2 * GiB ? Decision{TRUE, 1} : Decision{FALSE, 0}));
    }
}

// The search for the second candidate skips the first one, whatever its number.
TEST(GetFirstInternalDriveNumber, FirstTargetThatIsNotDisk0_IsComparedWithTheOther) {
    VdsSession session(WithSettingFile({KnownDisk(1, GiB, "Bus Number 6, Target Id 0, LUN 0"),
                                        KnownDisk(0, 2 * GiB, "Bus Number 6, Target Id 1, LUN 0")}));
    EXPECT_EQ(FirstDisk(session), (Decision{TRUE, 0}));
}
