#include "base/format.h"

#include <gtest/gtest.h>

namespace {

template <typename... Arguments>
WideString Formatted(const WCHAR* format, Arguments... arguments) {
    WCHAR buffer[64];
    const size_t count = FormatInto(buffer, 64, format, arguments...);
    WideString text = buffer;
    EXPECT_EQ(count, text.size());
    return text;
}

TEST(FormatInto, EachConversion_FormatInto_WritesItsText) {
    EXPECT_EQ(Formatted(TEXT("\\\\.\\%c:"), TEXT('C')), TEXT("\\\\.\\C:"));
    EXPECT_EQ(Formatted(TEXT("%d %d %d"), 0, -1, 2147483647), TEXT("0 -1 2147483647"));
    EXPECT_EQ(Formatted(TEXT("%d"), -2147483647 - 1), TEXT("-2147483648"));
    EXPECT_EQ(Formatted(TEXT("%u"), 4294967295U), TEXT("4294967295"));
    EXPECT_EQ(Formatted(TEXT("[%s]"), TEXT("text")), TEXT("[text]"));
    EXPECT_EQ(Formatted(TEXT("[%s]"), static_cast<const WCHAR*>(nullptr)), TEXT("[(null)]"));
    EXPECT_EQ(Formatted(TEXT("100%%")), TEXT("100%"));
    EXPECT_EQ(Formatted(TEXT("100%")), TEXT("100%"));
    EXPECT_EQ(Formatted(TEXT("")), TEXT(""));
}

TEST(FormatInto, TextBeyondTheCapacity_FormatInto_TruncatesAndReturnsTheWholeLength) {
    WCHAR buffer[] = {1, 2, 3, 4, 5};
    EXPECT_EQ(FormatInto(buffer, 4, TEXT("%s"), TEXT("abcdef")), 6U);
    EXPECT_EQ(WideString(buffer), TEXT("abc"));
    EXPECT_EQ(buffer[4], 5);
}

TEST(FormatInto, CapacityOf0Or1_FormatInto_WritesNothingOrTheTerminator) {
    WCHAR buffer[] = {7};
    EXPECT_EQ(FormatInto(buffer, 0, TEXT("abc")), 3U);
    EXPECT_EQ(buffer[0], 7);
    EXPECT_EQ(FormatInto(buffer, 1, TEXT("abc")), 3U);
    EXPECT_EQ(buffer[0], 0);
}

}  // namespace
