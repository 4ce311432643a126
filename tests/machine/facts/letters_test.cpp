#include "machine/facts/letters.h"

#include <gtest/gtest.h>

#include "machine/facts/machines.h"

using machine::FindLetter;
using machine::Pc;
using machine::Volume;

namespace {

Volume WithLetters(std::string letters) {
    Volume volume;
    volume.letters = std::move(letters);
    return volume;
}

}  // namespace

TEST(Letters, LetterOfPartition_Find_ReturnsDiskPartitionAndVolume) {
    Pc pc = machine::FactoryMbr();
    for (const char letter : {'D', 'd'}) {
        const machine::LocatedVolume located = FindLetter(pc, letter);
        ASSERT_TRUE(located) << letter;
        EXPECT_EQ(located.disk, &pc.disks[0]);
        EXPECT_EQ(located.partition->number, 3u);
        EXPECT_EQ(located.volume, &*located.partition->volume);
    }
}

TEST(Letters, LetterOfDisc_Find_ReturnsNoDisk) {
    Pc pc = machine::WinPeTwoDisks();
    const machine::LocatedVolume located = FindLetter(pc, 'X');
    EXPECT_EQ(located.volume, &pc.volumes[0]);
    EXPECT_EQ(located.partition, nullptr);
    EXPECT_EQ(located.disk, nullptr);
}

TEST(Letters, UnusedLetter_Find_ReturnsNothing) {
    Pc pc = machine::FactoryMbr();
    EXPECT_FALSE(FindLetter(pc, 'Q'));
    EXPECT_FALSE(FindLetter(pc, '\0'));
}

TEST(Letters, LetterUsedTwice_Find_PrefersThePartition) {
    Pc pc = machine::FactoryMbr();
    pc.volumes = {WithLetters("C")};
    EXPECT_EQ(FindLetter(pc, 'C').disk, &pc.disks[0]);
}

TEST(Letters, SeveralVolumes_UsedLetters_AreSortedAndUnique) {
    Pc pc = machine::FactoryMbr();
    pc.volumes = {WithLetters("ZEC")};
    EXPECT_EQ(machine::UsedLetters(pc), "CDEZ");
    EXPECT_EQ(machine::UsedLetters(Pc()), "");
}
