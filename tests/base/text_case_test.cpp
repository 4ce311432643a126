#include "base/text_case.h"

#include <gtest/gtest.h>

TEST(TextCase, LettersAndOtherBytes_UpperCase_FoldsOnlyAToZ) {
    EXPECT_EQ(UpperCase("az{`@[09\xC3\xBC"), "AZ{`@[09\xC3\xBC");
}

TEST(TextCase, NamesInDifferentCase_SameName_IgnoresCase) {
    EXPECT_TRUE(SameName("PhysicalDrive0", "PHYSICALDRIVE0"));
    EXPECT_FALSE(SameName("PhysicalDrive0", "PhysicalDrive"));
    EXPECT_FALSE(SameName("a", "b"));
}
