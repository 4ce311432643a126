// Selecting a disk.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
const std::string method = "Kestova CVDSPartition::SelectDisk";
const std::string nameMethod = "Kestova CVDSPartition::GetPhysicalDriveNumber";

// What SelectDisk writes up to the disk, when disk 0 is the first of the list.
const std::string selectedRecords =
    Lines({"4 " + method + "\\tStart", "4 Kestova CVDSEx::QueryDisks\\tStart",
           "4 " + nameMethod + "\\tStart. pszName = \\\\?\\PhysicalDrive0",
           "4 " + nameMethod + "\\tEnd (TRUE). Number = {int 0}", "4 Kestova CVDSEx::GetVdsDisk\\tStart"});

struct Name {
    std::basic_string<WCHAR> text;
    BOOL parsed;
    int number;
};

}  // namespace

TEST(GetPhysicalDriveNumber, DeviceName_ReturnsTheNumberBehindIt) {
    const Name names[] = {
        {TEXT("\\\\?\\PhysicalDrive3"), TRUE, 3},    {TEXT("\\\\?\\PHYSICALDRIVE12"), TRUE, 12},
        {TEXT("\\\\?\\physicaldrive0abc"), TRUE, 0}, {TEXT("\\\\?\\PhysicalDrive-1"), TRUE, -1},
        {TEXT("\\\\?\\PhysicalDrive"), FALSE, -1},   {TEXT("\\\\?\\PhysicalDriveX"), FALSE, -1},
        {TEXT("\\\\.\\PhysicalDrive3"), FALSE, -1},  {TEXT("\\\\?\\Volume{0}"), FALSE, -1},
        {TEXT("\\\\?\\CdRom0"), FALSE, -1},          {TEXT("C:"), FALSE, -1},
    };
    for (const Name& name : names) {
        SCOPED_TRACE(ToUtf8(name.text));
        machine::EmulatedPc pc(machine::FactoryMbr());
        CVDSPartition partition;
        int number = 7;
        EXPECT_EQ(partition.GetPhysicalDriveNumber(name.text.c_str(), number), name.parsed);
        EXPECT_EQ(number, name.number);
        EXPECT_EQ(Transcript(pc.journal),
                  Lines({"4 " + nameMethod + "\\tStart. pszName = " + ToUtf8(name.text),
                         "4 " + nameMethod + "\\tEnd (" + (name.parsed ? "TRUE" : "FALSE") +
                             "). Number = {int " + std::to_string(name.number) + "}"}));
    }
}

TEST(GetPhysicalDriveNumber, NoName_IsNotParsed) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    for (const WCHAR* const name : {static_cast<const WCHAR*>(nullptr), TEXT("")}) {
        int number = 7;
        EXPECT_FALSE(partition.GetPhysicalDriveNumber(name, number));
        EXPECT_EQ(number, -1);
    }
}

TEST(GetPhysicalDriveNumber, LongName_ReadsTheFirst260Units) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    const std::basic_string<WCHAR> device = TEXT("\\\\?\\PhysicalDrive");
    int number = -1;
    EXPECT_TRUE(partition.GetPhysicalDriveNumber(
        (device + std::basic_string<WCHAR>(260 - device.size() - 1, TEXT('0')) + TEXT("12")).c_str(),
        number));
    EXPECT_EQ(number, 1);
    EXPECT_FALSE(partition.GetPhysicalDriveNumber(
        (std::basic_string<WCHAR>(300, TEXT(' ')) + device + TEXT("1")).c_str(), number));
    EXPECT_EQ(number, -1);
}

TEST(SelectDisk, FactoryMbr_KeepsThePropertiesOfTheDisk) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->SelectDisk(0));
    EXPECT_EQ(session->DiskProperties().ullSize, session.Disk().size);
    EXPECT_EQ(ToUtf8(session->DiskProperties().pwszName), "\\\\?\\PhysicalDrive0");
    EXPECT_EQ(session.Records(), selectedRecords + Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                                          "4 Kestova CVDSEx::GetVdsAdvancedDisk End"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SelectDisk, DiskOnEveryBus_IsSelectedButNoOtherDevice) {
    machine::Disk disc = PlainDisk(1);
    disc.deviceType = 2;
    machine::Disk stick = PlainDisk(1, 77);
    stick.busType = VDS_BUS_TYPE_USB;
    disc.number = 9;
    disc.vdsName = stick.vdsName;
    VdsSession session(WindowsPe({disc, PlainDisk(0), stick}));
    EXPECT_TRUE(session->SelectDisk(1));
    EXPECT_EQ(session->DiskProperties().ullSize, 77u);
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(3), Holdings());
}

TEST(SelectDisk, DisksWithoutANumber_ArePassedOver) {
    machine::Disk nameless = PlainDisk(1, 77);
    nameless.vdsName.reset();
    machine::Disk other = PlainDisk(2, 88);
    other.vdsName = "\\\\?\\CdRom0";
    VdsSession session(WindowsPe({nameless, other, PlainDisk(0, 99)}));
    EXPECT_TRUE(session->SelectDisk(0));
    EXPECT_EQ(session->DiskProperties().ullSize, 99u);
    EXPECT_FALSE(session->SelectDisk(-1));  // what a name without a number gives
}

TEST(SelectDisk, MissingDisk_IsFalseWithoutARecordOfItsOwn) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->SelectDisk(1));
    EXPECT_EQ(session.Records(), Lines({"4 " + method + "\\tStart", "4 Kestova CVDSEx::QueryDisks\\tStart",
                                        "4 " + nameMethod + "\\tStart. pszName = \\\\?\\PhysicalDrive0",
                                        "4 " + nameMethod + "\\tEnd (TRUE). Number = {int 0}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SelectDisk, SecondSelection_DropsTheInterfacesOfTheFirst) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(session->SelectDisk(0));
    EXPECT_TRUE(session->SelectDisk(0));
    EXPECT_EQ(session.Left(2), (Holdings{{"IVdsDisk", 1}, {"IVdsAdvancedDisk", 1}}));
}

TEST(SelectDisk, MissingService_IsAnError) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    EXPECT_FALSE(partition.SelectDisk(0));
    EXPECT_EQ(Transcript(pc.journal),
              Lines({"4 " + method + "\\tStart", "1 " + method + "\\tNULL == m_pVdsService"}));
}

TEST(SelectDisk, ServiceNotReady_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 1);
    session.pc.lastError = 5;
    EXPECT_FALSE(session->SelectDisk(0));
    EXPECT_EQ(session.Records(),
              Lines({"4 " + method + "\\tStart", "1 " + method +
                                                     "  S_OK != hResult. hResult = {long 1} "
                                                     "GetLastError = {ulong 5}"}));
}

TEST(SelectDisk, DisksThatCannotBeListed_AreAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::QueryUnallocatedDisks", failure);
    session.pc.lastError = 5;
    EXPECT_FALSE(session->SelectDisk(0));
    EXPECT_EQ(session.Records(),
              Lines({"4 " + method + "\\tStart", "4 Kestova CVDSEx::QueryDisks\\tStart",
                     "1 Kestova CVDSEx::QueryDisks\\tQueryUnallocatedDisks  S_OK != hResult. hResult = "
                     "{long -2147467259} GetLastError = {ulong 5}",
                     "1 " + method +
                         "  CVDSEx::QueryDisks\\tS_OK != hResult. hResult = "
                         "{long -2147467259} GetLastError = {ulong 5}"}));
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(SelectDisk, DiskThatCannotBeHad_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", failure, 1);
    session.pc.lastError = 5;
    EXPECT_FALSE(session->SelectDisk(0));
    EXPECT_EQ(session->DiskProperties().ullSize, session.Disk().size);
    EXPECT_EQ(session.Records(),
              selectedRecords + Lines({"4 Kestova CVDSEx::GetVdsDisk  IsServiceReady  S_OK != hResult. "
                                       "hResult = {long -2147467259} GetLastError = {ulong 5}",
                                       "1 " + method +
                                           "  CVDSEx::GetVdsDisk S_OK != hResult. hResult = "
                                           "{long -2147467259} GetLastError = {ulong 5}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(SelectDisk, AdvancedDiskThatCannotBeHad_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", failure, 2);
    session.pc.lastError = 5;
    EXPECT_FALSE(session->SelectDisk(0));
    EXPECT_EQ(session.Records(),
              selectedRecords + Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                       "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != "
                                       "hResult.hResult = {long -2147467259} GetLastError = {ulong 5}",
                                       "1 " + method +
                                           "  CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = "
                                           "{long -2147467259} GetLastError = {ulong 5}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(RefreshDiskProperties, SelectedDisk_IsReadAgainInSilence) {
    VdsSession session(machine::FactoryMbr());
    ASSERT_TRUE(session->SelectDisk(0));
    session.Disk().size = 4711;
    session.pc.journal.Clear();
    EXPECT_TRUE(session->RefreshDiskProperties());
    EXPECT_EQ(session->DiskProperties().ullSize, 4711u);
    EXPECT_EQ(session.Records(), "");
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(RefreshDiskProperties, UnreadableDisk_FailsInSilenceAndKeepsTheProperties) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->RefreshDiskProperties());  // nothing selected
    ASSERT_TRUE(session->SelectDisk(0));
    const ULONGLONG size = session->DiskProperties().ullSize;
    session.pc.journal.Clear();
    session.Disk().size = 4711;
    for (const char* const call : {"IVdsService::IsServiceReady", "IVdsDisk::GetProperties"}) {
        session.pc.faults.Disarm();
        session.Fail(call, 1);
        EXPECT_FALSE(session->RefreshDiskProperties());
        EXPECT_EQ(session->DiskProperties().ullSize, size);
    }
    EXPECT_EQ(session.Records(), "");
    CVDSPartition unconnected;
    EXPECT_FALSE(unconnected.RefreshDiskProperties());
}

TEST(GetDiskPartitionStyle, FactoryPc_ReturnsTheStyleOfTheFirstInternalDisk) {
    struct Case {
        machine::Pc pc;
        VDS_PARTITION_STYLE style;
    };
    for (const Case& expected :
         {Case{machine::FactoryMbr(), VDS_PST_MBR}, Case{machine::FactoryGpt(), VDS_PST_GPT}}) {
        VdsSession session(expected.pc);
        int style = -1;
        EXPECT_TRUE(session->GetDiskPartitionStyle(style));
        EXPECT_EQ(style, expected.style);
        EXPECT_EQ(session.Records(), firstDiskRecords + selectedRecords +
                                         Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                                "4 Kestova CVDSEx::GetVdsAdvancedDisk End"}));
        EXPECT_EQ(session.Left(3), Holdings());
    }
}

TEST(GetDiskPartitionStyle, DiskWithoutATable_IsOfUnknownStyle) {
    machine::Disk disk = PlainDisk(0);
    disk.style = machine::PartitionStyle::Unknown;
    disk.unallocated = true;
    disk.partitions.clear();
    VdsSession session(WindowsPe({disk}));
    int style = -1;
    EXPECT_TRUE(session->GetDiskPartitionStyle(style));
    EXPECT_EQ(style, VDS_PST_UNKNOWN);
}

TEST(GetDiskPartitionStyle, EachStepThatFails_IsFalseAndLeavesTheStyle) {
    struct Case {
        const char* call;
        uint32_t nth;
    };
    for (const Case& fault : {Case{"IVdsService::IsServiceReady", 1}, Case{"IVdsService::IsServiceReady", 3},
                              Case{"IVdsService::GetObject", 1}, Case{"IVdsDisk::GetProperties", 3}}) {
        SCOPED_TRACE(std::string(fault.call) + "#" + std::to_string(fault.nth));
        VdsSession session(machine::FactoryMbr());
        session.Fail(fault.call, failure, fault.nth);
        int style = -1;
        EXPECT_FALSE(session->GetDiskPartitionStyle(style));
        EXPECT_EQ(style, -1);
    }
}
