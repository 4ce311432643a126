// Where two PCs differ.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "tests/machine/description/random_pc.h"

namespace {

using namespace machine;
using testing::ElementsAre;
using testing::IsEmpty;

// "place: left | right", with "-" for what only the other one has.
std::vector<std::string> Differences(const Pc& left, const Pc& right) {
    std::vector<std::string> found;
    for (const Difference& difference : Compare(left, right))
        found.push_back(difference.place + ": " + difference.left.value_or("-") + " | " +
                        difference.right.value_or("-"));
    return found;
}

TEST(Compare, RandomPcs_DifferExactlyIfTheyAreNotTheSame) {
    for (uint32_t seed = 0; seed < 60; ++seed) {
        const Pc one = RandomPc(seed);
        EXPECT_THAT(Differences(one, ReadDescription(WriteDescription(one), "one.json")), IsEmpty()) << seed;
        EXPECT_FALSE(Compare(one, RandomPc(seed + 1)).empty()) << seed;
    }
}

TEST(Compare, EveryKindOfChange_IsSaidWithBothValues) {
    const Pc before = FactoryMbr();
    Pc after = before;
    after.disks[0].partitions[0].bootIndicator = 1;
    after.disks[0].partitions[0].volume->label = Fact<std::string>::Fails(5);
    after.system.kind = SystemKind::WindowsPe;
    after.switches.hidingRemovesVolume = !before.switches.hidingRemovesVolume;
    EXPECT_THAT(
        Differences(before, after),
        ElementsAre("system, kind: \"windows\" | \"windows-pe\"", "disk 0, partition 1, bootIndicator: 0 | 1",
                    testing::StartsWith("disk 0, partition 1, volume, label"),
                    testing::StartsWith("switches, hidingRemovesVolume: ")));
}

// Two without a letter are not one.
TEST(Compare, ThingsWithoutAName_AreComparedByPosition) {
    Pc one;
    one.volumes.emplace_back().fileSystem = "A";
    Pc two = one;
    two.volumes.emplace_back().fileSystem = "Z";
    ASSERT_EQ(Compare(one, two).size(), 1u);
    EXPECT_EQ(Compare(one, two)[0].place, "volume [1]");
    two.volumes[0].fileSystem = "B";
    EXPECT_EQ(Differences(one, two)[0], "volume [0], fileSystem: \"A\" | \"B\"");
    EXPECT_EQ(Compare(one, two).size(), 2u);
}

// Not by their place in the list.
TEST(Compare, DisksAndPartitionsInAnotherOrder_AreComparedByNumber) {
    const Pc before = WinPeTwoDisks();
    Pc after = before;
    std::ranges::reverse(after.disks);
    for (Disk& disk : after.disks)
        std::ranges::reverse(disk.partitions);
    EXPECT_THAT(Differences(before, after), IsEmpty());
    after.disks.back().partitions.pop_back();
    const std::vector<Difference> found = Compare(before, after);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_THAT(found[0].place, testing::StartsWith("disk 0, partition "));
    EXPECT_TRUE(found[0].left.has_value());
    EXPECT_FALSE(found[0].right.has_value());
    EXPECT_FALSE(Compare(after, before)[0].left.has_value());
}

TEST(Compare, OrderThatCounts_IsADifferenceOfItsOwn) {
    const Pc before = WinPeTwoDisks();
    Pc after = before;
    std::ranges::reverse(after.disks);
    const std::vector<Difference> found = Compare(before, after, ListOrder::Compared);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].place, "disks, order");
    EXPECT_EQ(found[0].left, "[\"disk 0\",\"disk 1\"]");
    EXPECT_EQ(found[0].right, "[\"disk 1\",\"disk 0\"]");
    std::ranges::reverse(after.volumes);
    EXPECT_EQ(Compare(before, after, ListOrder::Compared).size(), 1u);
}

}  // namespace
