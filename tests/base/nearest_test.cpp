#include "base/nearest.h"

#include <gtest/gtest.h>

namespace {

const std::vector<std::string> words = {"status", "boot", "call", "IVdsAdvancedDisk::ChangeAttributes"};

TEST(Nearest, FindsAWordWithFewDifferences) {
    EXPECT_EQ(Nearest("staus", words), "status");
    EXPECT_EQ(Nearest("boott", words), "boot");
    EXPECT_EQ(Nearest("caal", words), "call");
}

TEST(Nearest, IgnoresCase) {
    EXPECT_EQ(Nearest("STATUS", words), "status");
}

TEST(Nearest, FindsAWordThatContainsTheOther) {
    EXPECT_EQ(Nearest("ChangeAttributes", words), "IVdsAdvancedDisk::ChangeAttributes");
    EXPECT_EQ(Nearest("tat", words), "");
}

TEST(Nearest, PrefersTheFewestDifferencesAndThenTheFirst) {
    EXPECT_EQ(Nearest("boat", {"bolt", "boot", "boats"}), "bolt");
    EXPECT_EQ(Nearest("boat", {"bolts", "boats"}), "boats");
}

TEST(Nearest, EmptyWhenNothingIsNear) {
    EXPECT_EQ(Nearest("partition", words), "");
    EXPECT_EQ(Nearest("", words), "");
    EXPECT_EQ(Nearest("boot", {}), "");
}

}  // namespace
