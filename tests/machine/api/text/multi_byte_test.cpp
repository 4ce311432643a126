#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

namespace {

std::string Convert(UINT codePage, const std::u16string& text) {
    char bytes[100];
    const INT size = WideCharToMultiByte(codePage, 0, text.data(), static_cast<INT>(text.size()), bytes,
                                         sizeof bytes, nullptr, nullptr);
    return {bytes, static_cast<size_t>(size)};
}

}  // namespace

TEST(WideCharToMultiByte, AnsiAndOem_ConvertsToTheCodePage) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    EXPECT_EQ(Convert(CP_ACP, u"reg\r\n"), "reg\r\n");
    EXPECT_EQ(Convert(CP_OEMCP, u"reg\r\n"), "reg\r\n");
    EXPECT_EQ(Convert(CP_ACP, u"Üß€"), "\xDC\xDF\x80");
    EXPECT_EQ(Convert(CP_OEMCP, u"Üß\u00A0Çπ"), "\x9A\xE1\xFF\x80\xE3");
    EXPECT_EQ(Convert(CP_OEMCP, u"€"), "?");
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(WideCharToMultiByte, TextWithoutLength_ReturnsTheSizeWithTerminator) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"exit", -1, nullptr, 0, nullptr, nullptr), 5);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"exit", 4, nullptr, 0, nullptr, nullptr), 4);
    char bytes[5] = {'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(WideCharToMultiByte(CP_OEMCP, 0, u"exit", -1, bytes, 5, nullptr, nullptr), 5);
    EXPECT_STREQ(bytes, "exit");
}

TEST(WideCharToMultiByte, InvalidArguments_FailWithTheirError) {
    EmulatedPc pc(machine::FactoryMbr());
    char bytes[2] = {'x', 'x'};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"exit", -1, bytes, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(bytes[0], 'x');
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, nullptr, -1, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"x", 0, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"x", 1, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    FailNext(pc, "WideCharToMultiByte", ERROR_NO_UNICODE_TRANSLATION);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"x", 1, bytes, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
}
