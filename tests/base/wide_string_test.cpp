#include "base/wide_string.h"

#include <gtest/gtest.h>

namespace {

TEST(UpperCase, LettersAndOtherUnits_UpperCase_FoldsOnlyAToZ) {
    EXPECT_EQ(UpperCase(TEXT("pci\\ven_8086&Dev{}`@")), TEXT("PCI\\VEN_8086&DEV{}`@"));
    EXPECT_EQ(UpperCase(TEXT("\u00e9")), TEXT("\u00e9"));
    EXPECT_EQ(UpperCase(TEXT("")), TEXT(""));
}

TEST(EqualIgnoringCase, TextsOfDifferentCaseOrLength_EqualIgnoringCase_ComparesThemWhole) {
    EXPECT_TRUE(EqualIgnoringCase(TEXT("System Reserved"), TEXT("SYSTEM reserved")));
    EXPECT_TRUE(EqualIgnoringCase(TEXT(""), TEXT("")));
    EXPECT_FALSE(EqualIgnoringCase(TEXT("System"), TEXT("System Reserved")));
    EXPECT_FALSE(EqualIgnoringCase(TEXT("System Reserved"), TEXT("System")));
    EXPECT_FALSE(EqualIgnoringCase(TEXT("["), TEXT("{")));
}

TEST(CopyBounded, TextBeyondTheCapacity_CopyBounded_TruncatesAndTerminates) {
    WCHAR buffer[] = {1, 2, 3, 4, 5};
    CopyBounded(buffer, 4, TEXT("abcdef"));
    EXPECT_EQ(WideString(buffer), TEXT("abc"));
    EXPECT_EQ(buffer[4], 5);
    CopyBounded(buffer, 4, TEXT(""));
    EXPECT_EQ(buffer[0], 0);
}

TEST(CopyBounded, CapacityOf0_CopyBounded_WritesNothing) {
    WCHAR buffer[] = {7};
    CopyBounded(buffer, 0, TEXT("abc"));
    EXPECT_EQ(buffer[0], 7);
}

}  // namespace
