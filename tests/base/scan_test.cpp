#include "base/scan.h"

#include <gtest/gtest.h>

#include <random>

#include "base/wide_string.h"

namespace {

struct Reading {
    const char* name;
    const WCHAR* text;
    const WCHAR* format;
    int stored;
    int first;   // 77: unchanged
    int second;  // 77: unchanged
};

void PrintTo(const Reading& reading, std::ostream* out) {
    *out << reading.name;
}

class ScanNumbersTable : public testing::TestWithParam<Reading> {};

TEST_P(ScanNumbersTable, Text_ScanNumbers_MatchesThePlatform) {
    int first = 77;
    int second = 77;
    EXPECT_EQ(ScanNumbers(GetParam().text, GetParam().format, {&first, &second}), GetParam().stored);
    EXPECT_EQ(first, GetParam().first);
    EXPECT_EQ(second, GetParam().second);
}

constexpr const WCHAR* number = TEXT("%d");
constexpr const WCHAR* drive = TEXT("\\\\?\\PHYSICALDRIVE%d");
constexpr const WCHAR* location = TEXT("Bus Number %d, Target Id %d");

const Reading readings[] = {
    {"Number", TEXT("12"), number, 1, 12, 77},
    {"Zero", TEXT("0"), number, 1, 0, 77},
    {"Negative", TEXT("-1"), number, 1, -1, 77},
    {"Positive", TEXT("+5"), number, 1, 5, 77},
    {"BlanksBefore", TEXT(" \t\r\n 4"), number, 1, 4, 77},
    {"NumberAndMore", TEXT("7abc"), number, 1, 7, 77},
    {"Word", TEXT("abc"), number, 0, 77, 77},
    {"SignOnly", TEXT("-"), number, 0, 77, 77},
    {"Empty", TEXT(""), number, -1, 77, 77},
    {"BlanksOnly", TEXT("   "), number, -1, 77, 77},
    {"Smallest", TEXT("-2147483648"), number, 1, -2147483647 - 1, 77},
    {"JustTooLarge", TEXT("2147483648"), number, 1, -2147483647 - 1, 77},
    {"JustTooSmall", TEXT("-2147483649"), number, 1, 2147483647, 77},
    {"ThirtyThreeBits", TEXT("4294967296"), number, 1, 0, 77},
    {"ElevenNines", TEXT("99999999999"), number, 1, 1215752191, 77},
    {"Drive", TEXT("\\\\?\\PHYSICALDRIVE3"), drive, 1, 3, 77},
    {"DriveNegative", TEXT("\\\\?\\PHYSICALDRIVE-1"), drive, 1, -1, 77},
    {"DriveInAnotherCase", TEXT("\\\\?\\PhysicalDrive3"), drive, 0, 77, 77},
    {"DriveWithoutNumber", TEXT("\\\\?\\PHYSICALDRIVE"), drive, -1, 77, 77},
    {"DriveCutShort", TEXT("\\\\?\\PHYS"), drive, -1, 77, 77},
    {"Volume", TEXT("\\\\?\\Volume{0}"), drive, 0, 77, 77},
    {"Location", TEXT("Bus Number 0, Target Id 2, LUN 0"), location, 2, 0, 2},
    {"LocationInCapitals", TEXT("Bus Number 0, Target ID 2, LUN 0"), location, 1, 0, 77},
    {"LocationOfAChannel", TEXT("Channel 0, Target 0, Lun 0"), location, 0, 77, 77},
    {"LocationCutShort", TEXT("Bus Number 6, Targ"), location, 1, 6, 77},
    {"LocationWithMoreBlanks", TEXT("Bus  Number 6,Target Id 1"), location, 2, 6, 1},
};

INSTANTIATE_TEST_SUITE_P(Of, ScanNumbersTable, testing::ValuesIn(readings),
                         [](const auto& tested) { return tested.param.name; });

TEST(ScanNumbers, MoreConversionsThanOutputs_ScanNumbers_StoresOnlyTheOutputs) {
    int only = 77;
    EXPECT_EQ(ScanNumbers(TEXT("1 2"), TEXT("%d %d"), {&only}), 1);
    EXPECT_EQ(only, 1);
}

TEST(ScanNumbers, PercentBeforeAnotherLetter_ScanNumbers_MatchesLiterally) {
    int only = -7;
    EXPECT_EQ(ScanNumbers(TEXT("%x 5"), TEXT("%x %d"), {&only}), 1);
    EXPECT_EQ(only, 5);
    EXPECT_EQ(ScanNumbers(TEXT("10 5"), TEXT("%x %d"), {&only}), 0);
}

TEST(ScanNumbers, RandomText_ScanNumbers_ReturnsAValidCount) {
    std::mt19937 random(20260714);
    std::uniform_int_distribution<int> unit(0, 0xFFFF);
    std::uniform_int_distribution<int> length(0, 40);
    for (int round = 0; round < 20000; ++round) {
        WideString text = round % 2 == 0 ? TEXT("Bus Number ") : TEXT("");
        for (int count = length(random); count > 0; --count)
            text += static_cast<WCHAR>(unit(random));
        int first = 0;
        int second = 0;
        const int stored = ScanNumbers(text.c_str(), location, {&first, &second});
        EXPECT_TRUE(stored >= -1 && stored <= 2);
    }
}

}  // namespace
