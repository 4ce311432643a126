#include "logging/log_line.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

const LogStamp stamp = {{2026, 11, 6, 21, 8, 5, 9, 42}, 1234, 5678};

std::string LineOf(int level, const std::basic_string<WCHAR>& text) {
    return LogLine(stamp, {level, {{LogItemKind::Text, text}}});
}

TEST(LogLine, Record_HasTimeProcessThreadLevelAndText) {
    EXPECT_EQ(LogLine(stamp, {LOG_LEVEL_TRACE,
                              {{LogItemKind::Text, TEXT("Kestova::SetActive\tEnd. bRet = ")},
                               {LogItemKind::Int, TEXT("1")},
                               {LogItemKind::Text, TEXT("")}}}),
              "2026-11-21T08:05:09.042Z 1234 5678 TRACE Kestova::SetActive\tEnd. bRet = 1\r\n");
}

TEST(LogLine, AnyLevel_IsNamedIfKnownAndNumberedIfNot) {
    EXPECT_EQ(LineOf(LOG_LEVEL_ERROR, TEXT("x")), "2026-11-21T08:05:09.042Z 1234 5678 ERROR x\r\n");
    EXPECT_EQ(LineOf(3, TEXT("x")), "2026-11-21T08:05:09.042Z 1234 5678 3 x\r\n");
}

TEST(LogLine, LargeProcessAndThread_AreUnsigned) {
    EXPECT_EQ(LogLine({stamp.time, 0xFFFFFFFF, 0x80000000}, {LOG_LEVEL_ERROR, {}}),
              "2026-11-21T08:05:09.042Z 4294967295 2147483648 ERROR \r\n");
}

TEST(LogLine, EveryCharacter_IsWrittenInUtf8) {
    EXPECT_TRUE(
        LineOf(1, TEXT("\u007F\u0080\u07FF\u0800\uFFFD\U00010000\U0010FFFF"))
            .ends_with(
                "ERROR \x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\r\n"));
}

TEST(LogLine, HalfASurrogatePair_IsReplaced) {
    const std::basic_string<WCHAR> high(1, 0xD800);
    const std::basic_string<WCHAR> low(1, 0xDC00);
    EXPECT_TRUE(LineOf(1, high).ends_with("ERROR \xEF\xBF\xBD\r\n"));
    EXPECT_TRUE(LineOf(1, low + TEXT("a"))
                    .ends_with("ERROR \xEF\xBF\xBD"
                               "a\r\n"));
    EXPECT_TRUE(LineOf(1, high + high + low).ends_with("ERROR \xEF\xBF\xBD\xF0\x90\x80\x80\r\n"));
}

TEST(LogLine, CharactersBesideTheSurrogates_AreTheirOwn) {
    const std::basic_string<WCHAR> high(1, 0xDBFF);
    EXPECT_TRUE(LineOf(1, TEXT("\uD7FF\uE000")).ends_with("ERROR \xED\x9F\xBF\xEE\x80\x80\r\n"));
    EXPECT_TRUE(LineOf(1, high + TEXT("\uE000")).ends_with("ERROR \xEF\xBF\xBD\xEE\x80\x80\r\n"));
    EXPECT_TRUE(LineOf(1, high + TEXT("\uD7FF")).ends_with("ERROR \xEF\xBF\xBD\xED\x9F\xBF\r\n"));
    EXPECT_TRUE(
        LineOf(1, high + std::basic_string<WCHAR>(1, 0xDFFF)).ends_with("ERROR \xF4\x8F\xBF\xBF\r\n"));
    EXPECT_TRUE(LineOf(1, std::basic_string<WCHAR>(1, 0xDFFF)).ends_with("ERROR \xEF\xBF\xBD\r\n"));
}

TEST(LogLine, TextWithLineBreaks_StaysOneLine) {
    EXPECT_TRUE(LineOf(1, TEXT("one\r\ntwo\n")).ends_with("ERROR one\\r\\ntwo\\n\r\n"));
}

TEST(LogLine, NulCharacter_StaysText) {
    EXPECT_TRUE(LineOf(1, std::basic_string<WCHAR>(1, 0)).ends_with("ERROR \\0\r\n"));
}

TEST(HighestLevel, Setting_ReturnsItsNumber) {
    EXPECT_EQ(HighestLevel(TEXT("0")), 0);
    EXPECT_EQ(HighestLevel(TEXT("1")), LOG_LEVEL_ERROR);
    EXPECT_EQ(HighestLevel(TEXT("4")), LOG_LEVEL_TRACE);
    EXPECT_EQ(HighestLevel(TEXT("999999999")), 999999999);
}

TEST(HighestLevel, UnusableSetting_ReturnsNone) {
    for (const WCHAR* const setting : {TEXT(""), TEXT("trace"), TEXT("-1"), TEXT("1 "), TEXT("1000000000")})
        EXPECT_EQ(HighestLevel(setting), std::numeric_limits<int>::max());
}

}  // namespace
