// The list of all disks.
#include <cstdlib>

#include "tests/vds/vds_session.h"
#include "vds/service_array.h"

namespace {

constexpr uint32_t failure = 0x80004005;

// Which of the next reallocations fails, from 1; 0: none.
int failingReallocation = 0;

// The result, and the disks in order, known by their sizes; the array is freed.
struct Listed {
    HRESULT result = E_FAIL;
    std::vector<uint64_t> sizes;
};

Listed List(VdsSession& session) {
    VDS_DISK_PROP* disks = nullptr;
    LONG count = 0;
    Listed listed;
    listed.result = CVDSEx::QueryDisks(session->GetService(), &disks, &count);
    if (listed.result != S_OK) return listed;
    for (LONG index = 0; index < count; ++index)
        listed.sizes.push_back(disks[index].ullSize);
    std::free(disks);
    return listed;
}

machine::Disk InPack(machine::Disk disk, const std::string& pack) {
    disk.pack = pack;
    return disk;
}

machine::Disk Unallocated(machine::Disk disk) {
    disk.style = machine::PartitionStyle::Unknown;
    disk.unallocated = true;
    disk.partitions.clear();
    return disk;
}

using Sizes = std::vector<uint64_t>;
const std::string started = "4 Kestova CVDSEx::QueryDisks\\tStart\n";

}  // namespace

// The linker has the product call the second in place of the first (--wrap).
extern "C" void* __real_realloc(void* memory, size_t size);
extern "C" void* __wrap_realloc(void* memory, size_t size) {
    const bool fails = failingReallocation > 0 && --failingReallocation == 0;
    return fails ? nullptr : __real_realloc(memory, size);
}

TEST(QueryDisks, OnePackOfTwoDisks_GivesBoth) {
    machine::Pc pc = WindowsPe({InPack(PlainDisk(0, 100), "Disks"), InPack(PlainDisk(1, 200), "Disks")});
    pc.packs = {{.name = "Disks"}};
    VdsSession session(pc);
    const Listed listed = List(session);
    EXPECT_EQ(listed.result, S_OK);
    EXPECT_EQ(listed.sizes, (Sizes{100, 200}));
    EXPECT_EQ(session.pc.journal.Calls("IVdsService::QueryProviders").at(0).arguments,
              (std::vector<std::string>{"0x00000001"}));  // software providers
    EXPECT_EQ(session.Records(), started);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QueryDisks, Records_AreThoseOfTheService) {
    VdsSession session(machine::FactoryMbr());
    VDS_DISK_PROP* disks = nullptr;
    LONG count = 0;
    ASSERT_EQ(CVDSEx::QueryDisks(session->GetService(), &disks, &count), S_OK);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(ToUtf8(disks[0].pwszName), "\\\\?\\PhysicalDrive0");
    EXPECT_EQ(disks[0].dwDeviceType, static_cast<DWORD>(FILE_DEVICE_DISK));
    EXPECT_EQ(disks[0].BusType, VDS_BUS_TYPE_SATA);
    EXPECT_EQ(disks[0].PartitionStyle, VDS_PST_MBR);
    EXPECT_EQ(disks[0].ullSize, session.Disk().size);
    std::free(disks);
}

TEST(QueryDisks, UnallocatedDisks_ComeFirst) {
    VdsSession session(WindowsPe({PlainDisk(0, 100), Unallocated(PlainDisk(1, 200)), PlainDisk(2, 300)}));
    const Listed listed = List(session);
    EXPECT_EQ(listed.result, S_OK);
    EXPECT_EQ(listed.sizes, (Sizes{200, 100, 300}));
    EXPECT_EQ(session.Left(3), Holdings());
}

TEST(QueryDisks, DiskInBothLists_IsListedTwice) {
    machine::Pc pc = WindowsPe({InPack(Unallocated(PlainDisk(0, 100)), "Disks")});
    pc.packs = {{.name = "Disks"}};
    VdsSession session(pc);
    EXPECT_EQ(List(session).sizes, (Sizes{100, 100}));
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QueryDisks, NoDisk_IsAnEmptyList) {
    VdsSession session(WindowsPe({}));
    VDS_DISK_PROP* disks = nullptr;
    LONG count = -1;
    EXPECT_EQ(CVDSEx::QueryDisks(session->GetService(), &disks, &count), S_OK);
    EXPECT_EQ(disks, nullptr);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(session.Records(), started);
}

TEST(QueryDisks, OfflinePack_ContributesNothing) {
    machine::Pc pc =
        WindowsPe({InPack(PlainDisk(0, 100), "Away"), InPack(PlainDisk(1, 200), "Here"), PlainDisk(2, 300)});
    pc.packs = {{.name = "Away", .status = VDS_PS_OFFLINE}, {.name = "Here"}};
    VdsSession session(pc);
    EXPECT_EQ(List(session).sizes, (Sizes{200, 300}));
    EXPECT_EQ(session.Records(), started);
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QueryDisks, DisksOfTheDynamicProvider_AreListedToo) {
    machine::Pc pc = WindowsPe({InPack(PlainDisk(0, 100), "Dynamic"), PlainDisk(1, 200)});
    pc.packs = {{.name = "Dynamic", .dynamic = true}};
    VdsSession session(pc);
    EXPECT_EQ(List(session).sizes, (Sizes{200, 100}));
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QueryDisks, MissingService_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    VDS_DISK_PROP* disks = nullptr;
    LONG count = 0;
    EXPECT_EQ(CVDSEx::QueryDisks(nullptr, &disks, &count), static_cast<HRESULT>(0x80070057));
    EXPECT_EQ(session.Records(), started + "1 Kestova CVDSEx::QueryDisks\\tNULL == pVdsService\n");
}

TEST(QueryDisks, ServiceNotReady_IsAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::IsServiceReady", 1);
    session.pc.lastError = 7;
    EXPECT_EQ(List(session).result, S_FALSE);
    EXPECT_EQ(session.Records(),
              started +
                  "1 Kestova CVDSEx::QueryDisks\\tIsServiceReady  S_OK != hResult. hResult = {long 1} "
                  "GetLastError = {ulong 7}\n");
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(QueryDisks, UnallocatedDisksThatCannotBeListed_AreAnError) {
    VdsSession session(machine::FactoryMbr());
    session.Fail("IVdsService::QueryUnallocatedDisks", failure);
    session.pc.lastError = 5;
    EXPECT_EQ(List(session).result, E_FAIL);
    EXPECT_EQ(session.Records(),
              started +
                  "1 Kestova CVDSEx::QueryDisks\\tQueryUnallocatedDisks  S_OK != hResult. hResult = "
                  "{long -2147467259} GetLastError = {ulong 5}\n");
    EXPECT_EQ(session.Left(0), Holdings());
}

TEST(QueryDisks, UnallocatedDiskWithoutADiskInterface_EndsItsWalkOnly) {
    VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100)), PlainDisk(1, 200)}));
    session.Fail("IUnknown::QueryInterface", 0x80004002, 1);
    session.pc.lastError = 3;
    const Listed listed = List(session);
    EXPECT_EQ(listed.result, S_OK);
    EXPECT_EQ(listed.sizes, (Sizes{200}));
    EXPECT_EQ(session.Records(), started +
                                     "1 Kestova CVDSEx::QueryDisks QueryInterface S_OK != hResult. hResult = "
                                     "{long -2147467262} GetLastError = {ulong 3}\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QueryDisks, UnallocatedDiskWithoutProperties_EndsItsWalkOnly) {
    VdsSession session(
        WindowsPe({Unallocated(PlainDisk(0, 100)), Unallocated(PlainDisk(1, 200)), PlainDisk(2, 300)}));
    session.Fail("IVdsDisk::GetProperties", failure, 2);
    const Listed listed = List(session);
    EXPECT_EQ(listed.result, S_OK);
    EXPECT_EQ(listed.sizes, (Sizes{100, 300}));
    EXPECT_EQ(session.Records(), started +
                                     "1 Kestova CVDSEx::QueryDisks GetProperties S_OK != hResult. hResult = "
                                     "{long -2147467259} GetLastError = {ulong 0}\n");
    EXPECT_EQ(session.Left(2), Holdings());
}

TEST(QueryDisks, IncompleteProperties_AreAFailureToo) {
    VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100)), PlainDisk(1, 200)}));
    session.Fail("IVdsDisk::GetProperties", 0x00042715, 1);
    EXPECT_EQ(List(session).sizes, (Sizes{200}));
    EXPECT_EQ(session.Records(), started +
                                     "1 Kestova CVDSEx::QueryDisks GetProperties S_OK != hResult. hResult = "
                                     "{long 272149} GetLastError = {ulong 0}\n");
}

TEST(QueryDisks, ProvidersThatCannotBeListed_AreAnErrorAndFreeTheArray) {
    VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100))}));
    session.Fail("IVdsService::QueryProviders", failure);
    session.pc.lastError = 6;
    VDS_DISK_PROP* disks = nullptr;
    LONG count = 0;
    EXPECT_EQ(CVDSEx::QueryDisks(session->GetService(), &disks, &count), E_FAIL);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(session.Records(), started +
                                     "1 Kestova CVDSEx::QueryDisks QueryProviders S_OK != hResult. hResult = "
                                     "{long -2147467259} GetLastError = {ulong 6}\n");
    EXPECT_EQ(session.Left(1), Holdings());
}

TEST(QueryDisks, FailuresOfProvidersAndPacks_ShortenTheListInSilence) {
    // Three disks in own packs of the basic provider, one in a pack of the dynamic provider. The interfaces
    // are queried in the order provider, pack, disk, pack, disk, ...
    struct Case {
        const char* call;
        uint32_t nth;
        Sizes sizes;
    };
    const Case cases[] = {
        {"IEnumVdsObject::Next", 2, {}},                     // the list of providers
        {"IUnknown::QueryInterface", 1, {}},                 // the first provider: no other follows
        {"IVdsSwProvider::QueryPacks", 1, {}},               // as above
        {"IVdsSwProvider::QueryPacks", 2, {100, 200, 300}},  // the second provider
        {"IUnknown::QueryInterface", 2, {400}},              // the first pack: on to the next provider
        {"IVdsPack::GetProperties", 2, {100, 400}},          // the second pack: likewise
        {"IVdsPack::QueryDisks", 2, {100, 400}},             // likewise
        {"IUnknown::QueryInterface", 3, {200, 300, 400}},    // the disk of the first pack: on to the next
        {"IVdsDisk::GetProperties", 2, {100, 300, 400}},     // the disk of the second pack: likewise
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(std::string(expected.call) + "#" + std::to_string(expected.nth));
        machine::Pc pc = WindowsPe(
            {PlainDisk(0, 100), PlainDisk(1, 200), PlainDisk(2, 300), InPack(PlainDisk(3, 400), "Dynamic")});
        pc.packs = {{.name = "Dynamic", .dynamic = true}};
        VdsSession session(pc);
        session.Fail(expected.call, failure, expected.nth);
        const Listed listed = List(session);
        EXPECT_EQ(listed.result, S_OK);
        EXPECT_EQ(listed.sizes, expected.sizes);
        EXPECT_EQ(session.Records(), started);
        EXPECT_EQ(session.Left(static_cast<int>(expected.sizes.size())), Holdings());
    }
}

TEST(QueryDisks, SuccessWithoutAnInterface_EndsTheWalk) {
    for (const char* const call :
         {"IVdsService::QueryUnallocatedDisks", "IVdsService::QueryProviders", "IVdsSwProvider::QueryPacks",
          "IVdsPack::QueryDisks", "IUnknown::QueryInterface", "IEnumVdsObject::Next"}) {
        SCOPED_TRACE(call);
        VdsSession session(WindowsPe({PlainDisk(0, 100)}));
        session.Fail(call, 0);
        const Listed listed = List(session);
        EXPECT_EQ(listed.result, S_OK);
        EXPECT_EQ(listed.sizes.size(), call == std::string("IVdsService::QueryUnallocatedDisks") ? 1u : 0u);
        EXPECT_EQ(session.Records(), started);
    }
}

// Of the calls of Next the first gives the unallocated disk, the second ends their list.
TEST(QueryDisks, CountOtherThanOne_EndsTheWalkAndReleasesTheObject) {
    for (const uint32_t count : {0u, 2u}) {
        VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100)), PlainDisk(1, 200)}));
        session.pc.faults.Arm(
            {.call = "IEnumVdsObject::Next", .nth = 1, .code = 0, .withOutputs = true, .count = count});
        const Listed listed = List(session);
        EXPECT_EQ(listed.result, S_OK);
        EXPECT_EQ(listed.sizes, (Sizes{200})) << count;
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(QueryDisks, CountWithoutAnObject_EndsTheWalk) {
    VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100)), PlainDisk(1, 200)}));
    session.pc.faults.Arm({.call = "IEnumVdsObject::Next", .nth = 1, .code = 0, .count = 1});
    EXPECT_EQ(List(session).sizes, (Sizes{200}));
    EXPECT_EQ(session.Left(1), Holdings());
}

// Interfaces are released; what a failing record refers to is the platform's to free.
TEST(QueryDisks, FailuresThatFilledTheirOutputs_AreFailuresAndReleaseTheInterfaces) {
    for (const char* const call : {"IUnknown::QueryInterface", "IEnumVdsObject::Next", "IVdsPack::QueryDisks",
                                   "IVdsSwProvider::QueryPacks"}) {
        VdsSession session(WindowsPe({PlainDisk(0, 100)}));
        session.pc.faults.Arm({.call = call, .code = failure, .withOutputs = true});
        EXPECT_EQ(List(session).sizes, Sizes()) << call;
        EXPECT_EQ(session.Left(0), Holdings()) << call;
    }
}

TEST(QueryDisks, FirstOfTwoUnallocatedDisksRefuses_LeavesTheSecondOut) {
    const machine::Pc pc =
        WindowsPe({Unallocated(PlainDisk(0, 100)), Unallocated(PlainDisk(1, 200)), PlainDisk(2, 300)});
    for (const char* const call : {"IUnknown::QueryInterface", "IVdsDisk::GetProperties"}) {
        SCOPED_TRACE(call);
        VdsSession session(pc);
        session.Fail(call, failure, 1);
        EXPECT_EQ(List(session).sizes, (Sizes{300}));
        EXPECT_EQ(session.Left(1), Holdings());
    }
}

TEST(QueryDisks, NoMemoryForTheSecondUnallocatedDisk_EndsItsWalkOnly) {
    VdsSession session(WindowsPe({Unallocated(PlainDisk(0, 100)), Unallocated(PlainDisk(1, 200)),
                                  Unallocated(PlainDisk(2, 250)), PlainDisk(3, 300)}));
    failingReallocation = 2;
    const Listed listed = List(session);
    EXPECT_EQ(failingReallocation, 0);
    EXPECT_EQ(listed.result, S_OK);
    EXPECT_EQ(listed.sizes, (Sizes{100, 300}));
    EXPECT_EQ(session.Records(), started);
    EXPECT_EQ(session.Left(3), Holdings());
}

TEST(QueryDisks, OneDisk_IsReadOneObjectAtATime) {
    VdsSession session(WindowsPe({PlainDisk(0, 100)}));
    List(session);
    const auto asked = session.pc.journal.Calls("IEnumVdsObject::Next");
    EXPECT_FALSE(asked.empty());
    for (const machine::CallRecord& call : asked)
        EXPECT_EQ(call.arguments, (std::vector<std::string>{"1"}));
}

// Each object goes before its list, each list before the object it came from, the first list before the
// second is asked for.
TEST(QueryDisks, EmptyPc_ReleasesEachListAtItsEnd) {
    VdsSession session(WindowsPe({}));
    List(session);
    using Release = std::vector<std::string>;
    const std::string next = "IEnumVdsObject::Next";
    const auto releases = session.pc.journal.Unshown("IUnknown::Release");
    const std::vector<Release> expected = {{"IEnumVdsObject", next}, {"IEnumVdsObject", next},
                                           {"IVdsSwProvider", next}, {"IUnknown", next},
                                           {"IEnumVdsObject", next}, {"IVdsSwProvider", next},
                                           {"IUnknown", next},       {"IEnumVdsObject", next}};
    ASSERT_GE(releases.size(), expected.size());
    EXPECT_EQ(std::vector<Release>(releases.end() - static_cast<ptrdiff_t>(expected.size()), releases.end()),
              expected);
}

TEST(ServiceArray, ArrayWithoutAPositiveCount_HasNoRecords) {
    machine::EmulatedPc pc(WindowsPe({}));
    for (const LONG count : {0, -1}) {
        PartitionList partitions;
        *partitions.PutRecords() =
            static_cast<VDS_PARTITION_PROP*>(CoTaskMemAlloc(sizeof(VDS_PARTITION_PROP)));
        *partitions.PutCount() = count;
        EXPECT_TRUE(partitions.HasArray());
        EXPECT_TRUE(partitions.Records().empty());
    }
    EXPECT_EQ(pc.ledger.Outstanding(), Holdings());
}

TEST(ServiceArray, CountWithoutAnArray_HasNoRecords) {
    machine::EmulatedPc pc(WindowsPe({}));
    PartitionList partitions;
    *partitions.PutCount() = 3;
    EXPECT_FALSE(partitions.HasArray());
    EXPECT_TRUE(partitions.Records().empty());
}
