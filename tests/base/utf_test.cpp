#include "base/utf.h"

#include <gtest/gtest.h>

TEST(Utf, ValidText_ConvertBothWays_ReturnsTheSameText) {
    const struct {
        std::string utf8;
        std::u16string wide;
    } rows[] = {
        {"", u""},
        {"C:\\Windows", u"C:\\Windows"},
        {"Wiederherstellung \xC3\xBC", u"Wiederherstellung \u00FC"},
        {"\xE5\xBE\xA9\xE5\x85\x83", u"\u5FA9\u5143"},
        {"\xF0\x9F\x92\xBE", u"\U0001F4BE"},
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ToWide(row.utf8), row.wide);
        EXPECT_EQ(ToUtf8(std::u16string_view(row.wide)), row.utf8);
    }
}

TEST(Utf, InvalidText_ConvertEitherWay_ReturnsAQuestionMark) {
    EXPECT_EQ(ToWide("\xFF"), u"?");
    EXPECT_EQ(ToWide("C\xC3"), u"?");
    EXPECT_EQ(ToUtf8(std::u16string_view(u"\xD800x")), "?");
    EXPECT_EQ(ToUtf8(std::u16string_view(u"C\xD800")), "?");
}

TEST(Utf, NullText_ToUtf8_ReturnsTheEmptyText) {
    EXPECT_EQ(ToUtf8(nullptr), "");
}
