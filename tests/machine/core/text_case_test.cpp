#include "machine/core/text_case.h"

#include <gtest/gtest.h>

TEST(TextCase, UpperChangesLettersOnly) {
    EXPECT_EQ(machine::Upper("az{`@[09\xC3\xBC"), "AZ{`@[09\xC3\xBC");
}

TEST(TextCase, SameNameIgnoresCase) {
    EXPECT_TRUE(machine::SameName("PhysicalDrive0", "PHYSICALDRIVE0"));
    EXPECT_FALSE(machine::SameName("PhysicalDrive0", "PhysicalDrive"));
    EXPECT_FALSE(machine::SameName("a", "b"));
}
