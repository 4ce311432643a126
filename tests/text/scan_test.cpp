#include "text/scan.h"

#include <gtest/gtest.h>

TEST(ScanNumbers, ReadsTheNumberBehindALiteral) {
    int number = -1;
    EXPECT_EQ(ScanNumbers(TEXT("\\\\?\\PHYSICALDRIVE3"), TEXT("\\\\?\\PHYSICALDRIVE%d"), {&number}), 1);
    EXPECT_EQ(number, 3);
}
