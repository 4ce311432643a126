// Finding the recovery partition and the Windows RE partition of the first internal disk.

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

namespace {

using machine::FactoryGpt;
using machine::FactoryMbr;
using machine::FaultRule;

const internals::PartitionSearch recovery = Open(internals::IsExistRecoveryPartitionTag());
const internals::PartitionSearch winRe = Open(internals::IsExistWinREPartitionTag());

struct Place {
    int disk = 77;
    int partition = 77;
    int exists = 77;
    bool operator==(const Place&) const = default;
};

constexpr Place nowhere = {-1, -1, 0};

void PrintTo(const Place& place, std::ostream* out) {
    *out << "disk " << place.disk << " partition " << place.partition << " exists " << place.exists;
}

// The search always answers 1.
Place Search(Application& application, internals::PartitionSearch search) {
    Place place;
    EXPECT_EQ((application.kestova.*search)(place.disk, place.partition, place.exists), 1);
    ExpectOnlyKeptLeftovers(application.pc.ledger);
    return place;
}

machine::Pc WithoutRecoveryFiles() {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 6).volume->files = {};
    return facts;
}

machine::Pc WithLetter(uint32_t number, const std::string& letter) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, number).volume->letters = letter;
    return facts;
}

// Windows RE is partition 6, and recovery partition 2.
machine::Pc Swapped() {
    machine::Pc facts = FactoryGpt();
    std::swap(PartitionOf(facts, 2).volume, PartitionOf(facts, 6).volume);
    return facts;
}

// Partition 2 looks like both.
machine::Pc TwoRecoveryPartitions() {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 2).volume->files = PartitionOf(facts, 6).volume->files;
    return facts;
}

machine::Pc OnDisk1() {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].number = 1;
    facts.disks[0].vdsName = "\\\\?\\PhysicalDrive1";
    facts.disks.push_back(FactoryGpt().disks.front());
    for (machine::Partition& partition : facts.disks[1].partitions)
        if (partition.volume) partition.volume->letters = "";
    return facts;
}

machine::Pc WithoutInternalDisk() {
    machine::Pc facts = FactoryGpt();
    facts.disks[0].busType = 17;
    return facts;
}

machine::Pc WithPartitions(uint32_t count) {
    machine::Pc facts = FactoryGpt();
    std::vector<machine::Partition>& partitions = facts.disks[0].partitions;
    for (uint32_t number = 7; number <= count; ++number) {
        machine::Partition partition;
        partition.number = number;
        partition.offset = (uint64_t{499} << 30) + number;
        partition.size = 1;
        partition.gptType = PARTITION_MSFT_RESERVED_GUID;
        partitions.insert(partitions.begin(), partition);
    }
    return facts;
}

struct Story {
    const char* name;
    internals::PartitionSearch search;
    machine::Pc (*facts)();
    std::vector<FaultRule> faults;
    Place place;
};

void PrintTo(const Story& story, std::ostream* out) {
    *out << story.name;
}

// The disks are queried once to find the first internal one, and once more to select it.
const FaultRule diskNotSelected = {.call = "IVdsService::GetObject", .nth = 1, .code = 0x80042405};

const Story stories[] = {
    {"exist_recovery", recovery, FactoryGpt, {}, {0, 6, 1}},
    {"exist_recovery_lettered", recovery, [] { return WithLetter(6, "R"); }, {}, {0, 6, 1}},
    // The last partition is asked first.
    {"exist_recovery_two", recovery, TwoRecoveryPartitions, {}, {0, 6, 1}},
    {"exist_recovery_partition_2", recovery, Swapped, {}, {0, 2, 1}},
    {"exist_recovery_on_disk_1", recovery, OnDisk1, {}, {1, 6, 1}},
    {"exist_recovery_no_contents", recovery, WithoutRecoveryFiles, {}, nowhere},
    {"exist_recovery_mbr", recovery, FactoryMbr, {}, nowhere},
    {"exist_recovery_no_internal_disk", recovery, WithoutInternalDisk, {}, nowhere},
    {"exist_recovery_disk_not_selected", recovery, FactoryGpt, {diskNotSelected}, nowhere},
    {"exist_recovery_too_many_partitions", recovery, [] { return WithPartitions(129); }, {}, nowhere},

    {"exist_winre", winRe, FactoryGpt, {}, {0, 2, 1}},
    {"exist_winre_lettered", winRe, [] { return WithLetter(2, "R"); }, {}, {0, 2, 1}},
    {"exist_winre_on_disk_1", winRe, OnDisk1, {}, {1, 2, 1}},
    {"exist_winre_elsewhere", winRe, Swapped, {}, nowhere},
    {"exist_winre_mbr", winRe, FactoryMbr, {}, nowhere},
    {"exist_winre_no_internal_disk", winRe, WithoutInternalDisk, {}, nowhere},
    {"exist_winre_disk_not_selected", winRe, FactoryGpt, {diskNotSelected}, nowhere},
};

class RecoverySearch : public testing::TestWithParam<Story> {};

TEST_P(RecoverySearch, Pc_FindsThePartitionAndChangesNothing) {
    const Story& story = GetParam();
    Application application(story.facts());
    for (const FaultRule& fault : story.faults)
        application.pc.faults.Arm(fault);
    EXPECT_EQ(Search(application, story.search), story.place);
    EXPECT_EQ(application.pc.faults.Fired() > 0, !story.faults.empty());
    EXPECT_EQ(application.pc.facts, story.facts());
    ExpectTranscript(application.pc.journal);
}

INSTANTIATE_TEST_SUITE_P(Every, RecoverySearch, testing::ValuesIn(stories),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(IsExistRecoveryPartition, DiskOf128Partitions_FindsThePartition) {
    Application application(WithPartitions(128));
    EXPECT_EQ(Search(application, recovery), (Place{0, 6, 1}));
}

TEST(IsExistRecoveryPartition, MediaOfADisc_IsPassedOver) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 6).volume->files.PutFolder("sources/DVD");
    Application application(facts);
    EXPECT_EQ(Search(application, recovery), nowhere);
}

TEST(IsExistRecoveryPartition, PartitionWithoutANumber_EndsTheSearch) {
    machine::Pc facts = FactoryGpt();
    PartitionOf(facts, 5).number = 0;
    PartitionOf(facts, 2).volume->files = PartitionOf(facts, 6).volume->files;
    PartitionOf(facts, 6).volume->files = {};
    Application application(facts);
    EXPECT_EQ(Search(application, recovery), nowhere);
}

TEST(IsExistRecoveryPartition, NoVolumeLayer_FindsNone) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Search(application, recovery), nowhere);
    EXPECT_EQ(
        Transcript(application.pc.journal),
        "4 Kestova Kestova::IsExistRecoveryPartition\\tStart\n"
        "4 Kestova Kestova::IsExistRecoveryPartition    m_pVDSPartition == NULL\n"
        "4 Kestova Kestova::IsExistRecoveryPartition\\tEnd. bRet = {int 0} iDiskNumber: {int -1} iPartitionNumber: {int -1} bExistRecoveryPartition: {int 0}\n");
}

TEST(IsExistWinREPartition, NoVolumeLayer_FindsNone) {
    Application application(FactoryGpt());
    const internals::WithoutVolumeLayer without(application.kestova);
    application.pc.journal.Clear();
    EXPECT_EQ(Search(application, winRe), nowhere);
    EXPECT_EQ(
        Transcript(application.pc.journal),
        "4 Kestova Kestova::IsExistWinREPartition\\tStart\n"
        "1 Kestova Kestova::IsExistWinREPartition    m_pVDSPartition == NULL\n"
        "4 Kestova Kestova::IsExistWinREPartition\\tEnd. bRet = {int 0} iDiskNumber: {int -1} iPartitionNumber: {int -1} bExistWinREPartition: {int 0}\n");
}

// As many partitions as the search has room for, none of them for recovery.
TEST(RecoverySearch, DiskFullOfPartitions_IsSearchedToItsEnd) {
    for (const size_t count : {size_t{128}, size_t{129}}) {
        machine::Pc facts = FactoryGpt();
        std::vector<machine::Partition>& partitions = facts.disks[0].partitions;
        PartitionOf(facts, 6).gptType = PARTITION_BASIC_DATA_GUID;
        for (uint32_t number = 7; number <= count; ++number) {
            machine::Partition partition;
            partition.number = number;
            partition.offset = partitions.back().offset + partitions.back().size;
            partition.size = 1024ULL * 1024;
            partition.gptType = PARTITION_BASIC_DATA_GUID;
            partitions.push_back(partition);
        }
        Application application(facts);
        EXPECT_EQ(Search(application, recovery), nowhere);
        const bool overflows =
            Transcript(application.pc.journal).find("GetTotalPartitionNumbers return false") !=
            std::string::npos;
        EXPECT_EQ(overflows, count > 128);
    }
}

}  // namespace
