#include "base/nearest.h"

#include <gtest/gtest.h>

namespace {

const std::vector<std::string> words = {"status", "boot", "call", "IVdsAdvancedDisk::ChangeAttributes"};

TEST(Nearest, MisspeltWord_Nearest_ReturnsTheMostSimilarWord) {
    EXPECT_EQ(Nearest("staus", words), "status");
    EXPECT_EQ(Nearest("boott", words), "boot");
    EXPECT_EQ(Nearest("caal", words), "call");
}

TEST(Nearest, WordInAnotherCase_Nearest_IgnoresCase) {
    EXPECT_EQ(Nearest("STATUS", words), "status");
}

TEST(Nearest, PartOfAWord_Nearest_ReturnsTheWordFromFourLettersOn) {
    EXPECT_EQ(Nearest("ChangeAttributes", words), "IVdsAdvancedDisk::ChangeAttributes");
    EXPECT_EQ(Nearest("tat", words), "");
}

TEST(Nearest, SeveralSimilarWords_Nearest_PrefersTheSmallestDistanceThenTheFirst) {
    EXPECT_EQ(Nearest("boat", {"bolt", "boot", "boats"}), "bolt");
    EXPECT_EQ(Nearest("boat", {"bolts", "boats"}), "boats");
}

TEST(Nearest, TwoLettersTooManyOrTooFew_Nearest_CountsEachAsOne) {
    EXPECT_EQ(Nearest("boat", {"bxoxat"}), "bxoxat");
    EXPECT_EQ(Nearest("bxoxat", {"boat"}), "boat");
    EXPECT_EQ(Nearest("boat", {"bxoxaxt"}), "");
    EXPECT_EQ(Nearest("bxoxaxt", {"boat"}), "boat");
    EXPECT_EQ(Nearest("bxoxaxtx", {"boat"}), "");
}

TEST(Nearest, NoSimilarWord_Nearest_ReturnsTheEmptyText) {
    EXPECT_EQ(Nearest("partition", words), "");
    EXPECT_EQ(Nearest("", words), "");
    EXPECT_EQ(Nearest("boot", {}), "");
}

}  // namespace
