#include "base/hexadecimal.h"

#include <gtest/gtest.h>

TEST(Hex, ShortNumber_HasTheLeastDigits) {
    EXPECT_EQ(Hex(7, 2), "0x07");
    EXPECT_EQ(Hex(0, 8), "0x00000000");
}

TEST(Hex, LongNumber_HasAllItsDigits) {
    EXPECT_EQ(Hex(0xFEDCBA9876543210, 2), "0xFEDCBA9876543210");
}

TEST(Hex, LettersInEitherCase) {
    EXPECT_EQ(Hex(0x8004242C, 8), "0x8004242C");
    EXPECT_EQ(Hex(0x8004242C, 8, HexDigits::Lower), "0x8004242c");
}

TEST(AreHexDigits, DigitsInEitherCase_Check_IsTrue) {
    EXPECT_TRUE(AreHexDigits("0123456789abcdefABCDEF"));
    EXPECT_TRUE(AreHexDigits(""));
}

TEST(AreHexDigits, OneOtherCharacter_Check_IsFalse) {
    for (const char* const text : {"g", "0x1", "1 ", "-1", "/", ":", "@", "G", "`"})
        EXPECT_FALSE(AreHexDigits(text)) << text;
}
