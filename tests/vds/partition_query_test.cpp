// The partitions of the first internal disk.
#include "tests/vds/vds_session.h"

namespace {

constexpr uint32_t failure = 0x80004005;
const std::string method = "Kestova CVDSPartition::QueryPartitions";
const std::string totalMethod = "Kestova CVDSPartition::GetTotalPartitionNumbers";
const std::string totalStarted = "4 " + totalMethod + " Start\n";
const std::string totalEnded = "4 " + totalMethod + " end.\n";

// The numbers of the listed partitions, or nothing on FALSE; the array is freed.
std::optional<std::vector<uint32_t>> Query(VdsSession& session) {
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    std::optional<std::vector<uint32_t>> numbers;
    if (session->QueryPartitions(&partitions, &count)) {
        numbers.emplace();
        for (LONG index = 0; index < count; ++index) {
            numbers->push_back(static_cast<uint32_t>(partitions[index].ulPartitionNumber));
        }
    }
    CoTaskMemFree(partitions);
    return numbers;
}

using Numbers = std::vector<int>;
using Partitions = std::vector<uint32_t>;

}  // namespace

TEST(QueryPartitions, FactoryMbr_ListsTheFirstInternalDisk) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_EQ(Query(session), (Partitions{1, 2, 3, 4}));
    EXPECT_EQ(session.Records(), queryPartitionsRecords);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QueryPartitions, EachCall_DropsTheDiskOfTheOneBefore) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_TRUE(Query(session).has_value());
    EXPECT_TRUE(Query(session).has_value());
    EXPECT_TRUE(Query(session).has_value());
    EXPECT_EQ(session.Left(3), (Holdings{{"IVdsAdvancedDisk", 2}}));
}

TEST(QueryPartitions, NoInternalDisk_IsAnError) {
    VdsSession session(WindowsPe({}));
    EXPECT_EQ(Query(session), std::nullopt);
    ExpectTranscript(session.pc.journal);
}

TEST(QueryPartitions, DiskWithoutANumber_IsAnError) {
    machine::Disk disk = PlainDisk(0);
    disk.vdsName = "\\\\?\\PhysicalDrive-1";
    VdsSession session(WindowsPe({disk}));
    EXPECT_EQ(Query(session), std::nullopt);
    ExpectTranscript(session.pc.journal);
}

TEST(QueryPartitions, MissingDisk_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::GetObject", 0x80042405);
    session.pc.lastError = 5;
    EXPECT_EQ(Query(session), std::nullopt);
    EXPECT_EQ(session.Records(),
              "4 " + method + " Start\n" + firstDiskRecords +
                  Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                         "1 Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != "
                         "hResult.hResult = {long -2147212283} GetLastError = {ulong 2}",
                         "1 " + method +
                             " CVDSEx::GetVdsAdvancedDisk S_OK != hResult. hResult = {long -2147212283}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QueryPartitions, SuccessWithoutAnInterface_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IUnknown::QueryInterface", 0, 5);  // after two providers, a pack and a disk
    EXPECT_EQ(Query(session), std::nullopt);
    EXPECT_EQ(session.Records(), "4 " + method + " Start\n" + firstDiskRecords +
                                     Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                            "4 Kestova CVDSEx::GetVdsAdvancedDisk End",
                                            "1 " + method + " m_pVdsAdvancedDisk is NULL"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QueryPartitions, DiskWithoutPartitions_IsAnError) {
    machine::Disk disk = PlainDisk(0);
    disk.partitions.clear();
    VdsSession session(WindowsPe({disk}));
    EXPECT_EQ(Query(session), std::nullopt);
    ExpectTranscript(session.pc.journal);
    EXPECT_EQ(session.Left(1), Holdings());
}

// The caller has what the platform has written.
TEST(QueryPartitions, EmptyTableOrFailureWithAnArray_IsAnErrorWithTheArray) {
    machine::Pc empty = WindowsPe({PlainDisk(0)});
    empty.disks[0].partitions.clear();
    empty.switches.emptyTableLendsArray = true;
    machine::Pc failing = machine::FactoryMbr();
    failing.faults = {{.call = "IVdsAdvancedDisk::QueryPartitions", .code = failure, .withOutputs = true}};
    machine::Pc odd = machine::FactoryMbr();
    odd.faults = {{.call = "IVdsAdvancedDisk::QueryPartitions", .code = S_FALSE, .withOutputs = true}};
    for (const machine::Pc& facts : {empty, failing, odd}) {
        VdsSession session(facts);
        VDS_PARTITION_PROP* partitions = nullptr;
        LONG count = -1;
        EXPECT_FALSE(session->QueryPartitions(&partitions, &count));
        EXPECT_NE(partitions, nullptr);
        EXPECT_EQ(static_cast<size_t>(count), facts.disks[0].partitions.size());
        CoTaskMemFree(partitions);
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(QueryPartitions, PartitionsThatCannotBeListed_AreAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsAdvancedDisk::QueryPartitions", failure);
    EXPECT_EQ(Query(session), std::nullopt);
    EXPECT_EQ(session.Records(), "4 " + method + " Start\n" + firstDiskRecords +
                                     Lines({"4 Kestova CVDSEx::GetVdsAdvancedDisk Start",
                                            "4 Kestova CVDSEx::GetVdsAdvancedDisk End",
                                            "1 " + method +
                                                " QueryPartitions S_OK != hResult. hResult = "
                                                "{long -2147467259} GetLastError = {ulong 2}"}));
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetTotalPartitionNumbers, FactoryMbr_ReturnsNumbersInReverseWithZerosBehind) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions.pop_back();
    VdsSession session(pc);
    ASSERT_TRUE(session->SelectDisk(0));
    session.pc.journal.Clear();
    Numbers numbers(8, -1);
    EXPECT_TRUE(session->GetTotalPartitionNumbers(numbers.data(), 8));
    EXPECT_EQ(numbers, (Numbers{3, 2, 1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(session.Records(), totalStarted + totalEnded);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetTotalPartitionNumbers, SmallArray_IsFilledAndFalse) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions.pop_back();
    VdsSession session(pc);
    ASSERT_TRUE(session->SelectDisk(0));
    for (const int capacity : {2, 0, -1}) {
        SCOPED_TRACE(capacity);
        session.pc.journal.Clear();
        Numbers numbers(3, -1);
        EXPECT_FALSE(session->GetTotalPartitionNumbers(numbers.data(), capacity));
        EXPECT_EQ(numbers, (capacity == 2 ? Numbers{3, 2, -1} : Numbers{-1, -1, -1}));
        EXPECT_EQ(session.Records(), totalStarted + "1 " + totalMethod +
                                         "\\tpPartitionArray number is not enough\n" + totalEnded);
    }
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(GetTotalPartitionNumbers, ArrayThatJustSuffices_IsEnough) {
    VdsSession session(machine::FactoryMbr());
    ASSERT_TRUE(session->SelectDisk(0));
    Numbers numbers(4, -1);
    EXPECT_TRUE(session->GetTotalPartitionNumbers(numbers.data(), 4));
    EXPECT_EQ(numbers, (Numbers{4, 3, 2, 1}));
}

TEST(GetTotalPartitionNumbers, NoPartitionsBehindASuccess_AreTrue) {
    VdsSession session(machine::FactoryMbr());
    ASSERT_TRUE(session->SelectDisk(0));
    session.pc.journal.Clear();
    session.Fail("IVdsAdvancedDisk::QueryPartitions", 0);
    Numbers numbers(2, -1);
    EXPECT_TRUE(session->GetTotalPartitionNumbers(numbers.data(), 2));
    EXPECT_EQ(numbers, (Numbers{0, 0}));
    EXPECT_EQ(session.Records(), totalStarted + totalEnded);
}

TEST(GetTotalPartitionNumbers, MissingArray_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->GetTotalPartitionNumbers(nullptr, 8));
    EXPECT_EQ(session.Records(), totalStarted + "1 " + totalMethod + "\\tNULL == pPartitionArray\n");
}

TEST(GetTotalPartitionNumbers, MissingDisk_IsAnErrorAndZeros) {
    VdsSession session(machine::FactoryMbr());
    Numbers numbers(2, -1);
    EXPECT_FALSE(session->GetTotalPartitionNumbers(numbers.data(), 2));
    EXPECT_EQ(numbers, (Numbers{0, 0}));
    EXPECT_EQ(session.Records(), totalStarted + "1 " + totalMethod + "\\tNULL == m_pVdsAdvancedDisk\n");
}

TEST(GetTotalPartitionNumbers, PartitionsThatCannotBeListed_AreAnError) {
    for (const uint32_t code : {failure, uint32_t{1}}) {
        VdsSession session(machine::FactoryMbr());
        ASSERT_TRUE(session->SelectDisk(0));
        session.pc.journal.Clear();
        session.Fail("IVdsAdvancedDisk::QueryPartitions", code);
        session.pc.lastError = 6;
        Numbers numbers(2, -1);
        EXPECT_FALSE(session->GetTotalPartitionNumbers(numbers.data(), 2));
        EXPECT_EQ(session.Records(),
                  totalStarted + "1 " + totalMethod +
                      "\\tm_pVdsAdvancedDisk->QueryPartitions S_OK != hResult GetLastError = {ulong 6}\n");
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(IsDynamic, EveryDisk_ReturnsFalse) {
    for (const machine::NamedMachine& named : machine::NamedMachines()) {
        SCOPED_TRACE(named.name);
        VdsSession session(named.make());
        EXPECT_FALSE(session->IsDynamic());
        EXPECT_FALSE(session.pc.journal.Calls("IVdsAdvancedDisk::QueryPartitions").empty());
    }
    VdsSession session(machine::FactoryMbr());
    EXPECT_FALSE(session->IsDynamic());
    EXPECT_EQ(session.Records(), queryPartitionsRecords);
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(IsDynamic, Failures_AreFalseInSilence) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 1);
    EXPECT_FALSE(session->IsDynamic());
    EXPECT_EQ(session.Records(), "");
    CVDSPartition unconnected;
    EXPECT_FALSE(unconnected.IsDynamic());
    EXPECT_EQ(session.Records(), "");
}
