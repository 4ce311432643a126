// The second internal disk, and the partitions on it.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
constexpr uint64_t GiB = uint64_t{1} << 30;
const std::string method = "Kestova CVDSPartition::GetSecondInternalDriveNumber";
const std::string queryMethod = "Kestova CVDSPartition::QuerySecondPartitions";
const std::string started = "4 Info: " + method + " Start\n";
const std::string inWindowsPe = "4 " + method + " bWindowsPE  TRUE\n";
const std::string endedWithNone = "4 " + method + " End. DiskNumber ={int -1}\n";

int SecondDisk(VdsSession& session) {
    int number = 12345;
    const BOOL result = session->GetSecondInternalDriveNumber(number);
    EXPECT_EQ(result, number >= 0);
    return number;
}

// Result of QuerySecondPartitions; the array is freed and counted.
BOOL QuerySecond(VdsSession& session, LONG& count) {
    VDS_PARTITION_PROP* partitions = nullptr;
    count = 0;
    const BOOL result = session->QuerySecondPartitions(&partitions, &count);
    CoTaskMemFree(partitions);
    return result;
}

machine::Disk CacheDisk(uint8_t type) {
    machine::Disk disk = PlainDisk(1, GiB);
    disk.partitions[0].mbrType = type;
    return disk;
}

}  // namespace

TEST(GetSecondInternalDriveNumber, WindowsPe_ReturnsTheSmallestDisk) {
    VdsSession session(WindowsPe({PlainDisk(0, 3 * GiB), PlainDisk(2, GiB), PlainDisk(1, 2 * GiB)}));
    EXPECT_EQ(SecondDisk(session), 2);
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(3), Holdings());
}

TEST(GetSecondInternalDriveNumber, OneDisk_IsBothFirstAndSecond) {
    VdsSession session(WindowsPe({PlainDisk(0)}));
    int first = -1;
    EXPECT_TRUE(session->GetFirstInternalDriveNumber(first));
    EXPECT_EQ(SecondDisk(session), first);
    const std::string records = session.Records();
    EXPECT_NE(records.find(method + " TRUE == bFind. FirstDiskNumber ={int 0}"), std::string::npos);
}

TEST(GetSecondInternalDriveNumber, FirstOfEqualSizes_IsTaken) {
    VdsSession session(WindowsPe({PlainDisk(1), PlainDisk(0)}));
    EXPECT_EQ(SecondDisk(session), 1);
}

TEST(GetSecondInternalDriveNumber, DiskWithoutASize_DoesNotCountAsSmallest) {
    VdsSession session(WindowsPe({PlainDisk(0, 0), PlainDisk(1, GiB)}));
    EXPECT_EQ(SecondDisk(session), 1);
}

TEST(GetSecondInternalDriveNumber, Sizes_AreComparedWithoutASign) {
    VdsSession session(WindowsPe({PlainDisk(0, uint64_t{1} << 63), PlainDisk(1, GiB)}));
    EXPECT_EQ(SecondDisk(session), 1);
}

TEST(GetSecondInternalDriveNumber, InstalledWindows_HasNone) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(SecondDisk(session), -1);
    EXPECT_EQ(session.Records(), started + endedWithNone);
}

TEST(GetSecondInternalDriveNumber, MissingService_IsAnError) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    CVDSPartition partition;
    int number = 7;
    EXPECT_FALSE(partition.GetSecondInternalDriveNumber(number));
    EXPECT_EQ(number, -1);
    EXPECT_EQ(Transcript(pc.journal), started + "1 " + method + " m_pVdsService is NULL\n" + endedWithNone);
}

TEST(GetSecondInternalDriveNumber, ServiceNotReady_IsAnError) {
    VdsSession session(WindowsPe({PlainDisk(0)}));
    session.Fail("IVdsService::IsServiceReady", 1);
    EXPECT_EQ(SecondDisk(session), -1);
    EXPECT_EQ(session.Records(),
              started + "1 " + method + " IsServiceReady S_OK != hResult\n" + endedWithNone);
}

TEST(GetSecondInternalDriveNumber, DisksThatCannotBeListed_AreAnError) {
    VdsSession session(WindowsPe({PlainDisk(0)}));
    session.Fail("IVdsService::QueryUnallocatedDisks", failure);
    EXPECT_EQ(SecondDisk(session), -1);
    EXPECT_EQ(session.Records(),
              started + inWindowsPe +
                  Lines({"4 Kestova CVDSEx::QueryDisks\\tStart",
                         "1 Kestova CVDSEx::QueryDisks\\tQueryUnallocatedDisks  S_OK != hResult. hResult = "
                         "{long -2147467259} GetLastError = {ulong 0}",
                         "1 " + method + " CVDSEx::QueryDisks S_OK != hResult"}) +
                  endedWithNone);
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(GetSecondInternalDriveNumber, IneligibleDisks_AreLeftOutAndUnreadableNamesRecorded) {
    machine::Disk disc = PlainDisk(0, 1);
    disc.deviceType = 2;
    machine::Disk stick = PlainDisk(1, 2);
    stick.busType = VDS_BUS_TYPE_USB;
    machine::Disk nameless = PlainDisk(2, 3);
    nameless.vdsName.reset();
    machine::Disk strange = PlainDisk(3, 4);
    strange.vdsName = "\\\\?\\Volume3";
    VdsSession session(WindowsPe({disc, stick, nameless, strange, PlainDisk(4, GiB)}));
    session.pc.lastError = 8;
    EXPECT_EQ(SecondDisk(session), 4);
    ExpectTranscript(session.pc.journal);
}

TEST(GetSecondInternalDriveNumber, NoEligibleDisk_IsRecordedBehindTheWalk) {
    VdsSession session(WindowsPe({}));
    EXPECT_EQ(SecondDisk(session), -1);
    EXPECT_EQ(session.Records(), started + inWindowsPe +
                                     Lines({"4 Kestova CVDSEx::QueryDisks\\tStart",
                                            "4 " + method + " TRUE == bFind. FirstDiskNumber ={int -1}"}) +
                                     endedWithNone);
}

TEST(QuerySecondPartitions, WindowsPe_ListsTheSmallestDisk) {
    VdsSession session(machine::WinPeTwoDisks());
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    ASSERT_TRUE(session->QuerySecondPartitions(&partitions, &count));
    ASSERT_EQ(count, 1);
    EXPECT_EQ(partitions[0].Mbr.partitionType, MBR_ID_CACHE);
    CoTaskMemFree(partitions);
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QuerySecondPartitions, InstalledWindows_HasNone) {
    VdsSession session(machine::FactoryMbr());
    LONG count = 0;
    EXPECT_FALSE(QuerySecond(session, count));
    EXPECT_EQ(session.Records(), "4 Kestova CVDSPartition::QueryPartitions Start\n" + started +
                                     endedWithNone +
                                     Lines({"1 " + queryMethod + " GetSecondInternalDriveNumber return FALSE",
                                            "4 " + queryMethod + " End"}));
}

namespace {

// What QuerySecondPartitions writes in Windows PE on one disk before it asks for the disk.
const std::string secondDiskRecords =
    "4 Kestova CVDSPartition::QueryPartitions Start\n" + started + inWindowsPe +
    Lines({"4 Kestova CVDSEx::QueryDisks\\tStart",
           "4 Kestova CVDSPartition::GetPhysicalDriveNumber\\tStart. pszName = \\\\?\\PhysicalDrive1",
           "4 Kestova CVDSPartition::GetPhysicalDriveNumber\\tEnd (TRUE). Number = {int 1}",
           "4 " + method + " TRUE == bFind. FirstDiskNumber ={int -1}",
           "4 " + method + " End. DiskNumber ={int 1}", "4 Kestova CVDSEx::GetVdsAdvancedDisk Start"});

}  // namespace

TEST(QuerySecondPartitions, MissingDisk_IsAnError) {
    VdsSession session(WindowsPe({CacheDisk(MBR_ID_CACHE)}));
    session.Fail("IVdsService::GetObject", 0x80042405);
    LONG count = 0;
    EXPECT_FALSE(QuerySecond(session, count));
    EXPECT_EQ(session.Records(),
              secondDiskRecords +
                  Lines({"1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != "
                         "hResult.hResult = {long -2147212283} GetLastError = {ulong 0}",
                         "1 " + queryMethod +
                             " CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = {long -2147212283}",
                         "4 " + queryMethod + " End"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QuerySecondPartitions, SuccessWithoutAnInterface_IsAnError) {
    VdsSession session(WindowsPe({CacheDisk(MBR_ID_CACHE)}));
    session.Fail("IUnknown::QueryInterface", 0, 5);  // after two providers, a pack and a disk
    LONG count = 0;
    EXPECT_FALSE(QuerySecond(session, count));
    EXPECT_EQ(session.Records(),
              secondDiskRecords +
                  Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk End",
                         "1 " + queryMethod + " m_pVdsAdvancedDisk is NULL", "4 " + queryMethod + " End"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QuerySecondPartitions, DiskWithoutPartitions_IsAnError) {
    machine::Disk disk = CacheDisk(MBR_ID_CACHE);
    disk.partitions.clear();
    VdsSession session(WindowsPe({disk}));
    session.pc.lastError = 4;
    LONG count = 0;
    EXPECT_FALSE(QuerySecond(session, count));
    EXPECT_EQ(session.Records(),
              secondDiskRecords + Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk End",
                                         "1 " + queryMethod +
                                             " QueryPartitions S_OK != hResult. hResult = {long 1} "
                                             "GetLastError = {ulong 4}",
                                         "4 " + queryMethod + " End"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QuerySecondPartitions, WindowsPe_SelectsNothing) {
    VdsSession session(WindowsPe({PlainDisk(0, 2 * GiB), CacheDisk(MBR_ID_CACHE)}));
    ASSERT_TRUE(session->SelectDisk(0));
    session.Disk(0).partitions[0].number = 5;
    LONG count = 0;
    EXPECT_TRUE(QuerySecond(session, count));
    int numbers[2] = {};
    EXPECT_TRUE(session->GetTotalPartitionNumbers(numbers, 2));
    EXPECT_EQ(numbers[0], 5);
}

TEST(IsCachePartitionForExpCacheExist, MbrCache_IsFound) {
    VdsSession session(machine::WinPeTwoDisks());
    EXPECT_TRUE(session->IsCachePartitionForExpCacheExist());
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(IsCachePartitionForExpCacheExist, GptCache_IsFoundBehindOtherPartitions) {
    machine::Disk disk = PlainDisk(1);
    disk.style = machine::PartitionStyle::Gpt;
    machine::Partition other = disk.partitions[0];
    other.gptType = PARTITION_MSFT_RESERVED_GUID;
    machine::Partition cache = other;
    cache.number = 2;
    cache.offset = other.offset + other.size;
    cache.gptType = EXPCACHE_PARTITION_GUID;
    disk.partitions = {other, cache};
    VdsSession session(WindowsPe({disk}));
    EXPECT_TRUE(session->IsCachePartitionForExpCacheExist());
    session.Disk().partitions.pop_back();
    EXPECT_FALSE(session->IsCachePartitionForExpCacheExist());
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(IsCachePartitionForExpCacheExist, OtherTypes_AreNone) {
    VdsSession session(WindowsPe({CacheDisk(MBR_ID_NTFS)}));
    EXPECT_FALSE(session->IsCachePartitionForExpCacheExist());
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(IsCachePartitionForExpCacheExist, FailedList_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->IsCachePartitionForExpCacheExist());
    EXPECT_EQ(session.Records(),
              "4 Kestova CVDSPartition::IsCachePartitionForExpCacheExist\\t\\tStart\n"
              "4 Kestova CVDSPartition::QueryPartitions Start\n" +
                  started + endedWithNone +
                  Lines({"1 " + queryMethod + " GetSecondInternalDriveNumber return FALSE",
                         "4 " + queryMethod + " End",
                         "1 Kestova CVDSPartition::QuerySecondDiskPartitions error. bReturn = FALSE",
                         "4 Kestova CVDSPartition::IsCachePartitionForExpCacheExist\\t\\t End"}));
}

// The field of one style is not read as that of the other: an id and a GUID begin at the same byte.
TEST(IsCachePartitionForExpCacheExist, CacheTypeOfAnotherStyle_IsNone) {
    machine::Disk gpt = CacheDisk(MBR_ID_NONE);
    gpt.style = machine::PartitionStyle::Gpt;
    gpt.partitions[0].gptType = PARTITION_BASIC_DATA_GUID;
    gpt.partitions[0].gptType.Data1 = MBR_ID_CACHE;
    machine::Disk unknown = CacheDisk(MBR_ID_CACHE);
    unknown.style = machine::PartitionStyle::Unknown;
    for (const machine::Disk& disk : {gpt, unknown}) {
        VdsSession session(WindowsPe({disk}));
        EXPECT_FALSE(session->IsCachePartitionForExpCacheExist());
    }
}
