#include "machine/journal/ledger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using machine::Ledger;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST(Ledger, Take_CountsByKind) {
    Ledger ledger;
    ledger.Take("file handle");
    ledger.Take("file handle");
    ledger.Take("registry key");
    ledger.GiveBack("file handle");
    EXPECT_THAT(ledger.Outstanding(), ElementsAre(Pair("file handle", 1), Pair("registry key", 1)));
}

TEST(Ledger, EverythingReleased_Outstanding_IsEmpty) {
    Ledger ledger;
    ledger.Take("file handle");
    ledger.GiveBack("file handle");
    EXPECT_THAT(ledger.Outstanding(), IsEmpty());
    EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST(Ledger, EverythingReleased_Counts_HasTheKindAtZero) {
    Ledger ledger;
    ledger.Take("file handle");
    ledger.GiveBack("file handle");
    EXPECT_THAT(ledger.Counts(), ElementsAre(Pair("file handle", 0)));
}

TEST(Ledger, NothingHeld_GiveBack_IsAViolation) {
    Ledger ledger;
    ledger.GiveBack("IVdsDisk");
    EXPECT_THAT(ledger.Outstanding(), IsEmpty());
    EXPECT_THAT(ledger.Violations(), ElementsAre("IVdsDisk given back too often"));
}

TEST(Ledger, Lend_ZeroesMemoryAndCountsItUntilReturned) {
    Ledger ledger;
    char* const block = static_cast<char*>(ledger.Lend("CoTaskMem", "VDS_DISK_PROP", 64));
    EXPECT_TRUE(std::all_of(block, block + 64, [](char byte) { return byte == 0; }));
    EXPECT_THAT(ledger.Outstanding(), ElementsAre(Pair("VDS_DISK_PROP", 1)));
    EXPECT_TRUE(ledger.Return("CoTaskMem", block));
    EXPECT_THAT(ledger.Outstanding(), IsEmpty());
    EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST(Ledger, EmptyBlocks_Lend_ReturnsDistinctAddresses) {
    Ledger ledger;
    void* const first = ledger.Lend("GlobalAlloc", "GlobalAlloc", 0);
    void* const second = ledger.Lend("GlobalAlloc", "GlobalAlloc", 0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(first, second);
}

TEST(Ledger, Null_Return_Succeeds) {
    Ledger ledger;
    EXPECT_TRUE(ledger.Return("CoTaskMem", nullptr));
    EXPECT_THAT(ledger.Violations(), IsEmpty());
}

TEST(Ledger, ReturnedBlock_Return_IsAViolation) {
    Ledger ledger;
    void* const block = ledger.Lend("CoTaskMem", "VDS_DISK_PROP", 8);
    ledger.Return("CoTaskMem", block);
    EXPECT_FALSE(ledger.Return("CoTaskMem", block));
    EXPECT_THAT(ledger.Violations(), ElementsAre("memory freed with CoTaskMem that is not on loan"));
}

TEST(Ledger, BlockOfOtherAllocator_Return_IsAViolationAndFrees) {
    Ledger ledger;
    void* const block = ledger.Lend("BSTR", "property text", 8);
    EXPECT_TRUE(ledger.Return("GlobalAlloc", block));
    EXPECT_THAT(ledger.Violations(), ElementsAre("property text freed with GlobalAlloc instead of BSTR"));
    EXPECT_THAT(ledger.Outstanding(), IsEmpty());
}
