#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

TEST(PathFileExists, FilesFoldersAndDrives_Exist) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    for (const WCHAR* const path : {TEXT("D:"), TEXT("C:\\"), TEXT("c:\\windows\\SYSTEM32"),
                                    TEXT("C:\\Windows\\System32\\winload.exe")}) {
        EXPECT_TRUE(PathFileExistsW(path)) << ToUtf8(path);
    }
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_FALSE(PathFileExistsW(TEXT("C:\\none")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(PathFileExistsW(TEXT("Q:")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_FALSE(PathFileExistsW(nullptr));
    FailNext(pc, "PathFileExistsW", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(PathFileExistsW(TEXT("C:\\")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(PathAppend, EveryKindOfPath_JoinsAsThePlatformDoes) {
    const struct {
        std::u16string path;
        const WCHAR* more;
        std::string joined;
    } rows[] = {
        {u"C:", u"foo", "C:\\foo"},
        {u"C:", u"\\foo", "C:\\foo"},
        {u"C:\\x", u"..\\foo", "C:\\foo"},
        {u"C:\\x", u"D:\\q", "D:\\q"},
        {u"", u"foo", "foo"},
        {u"C:\\", u"foo", "C:\\foo"},
        {u"C:\\x\\", u".\\foo", "C:\\x\\foo"},
        {u"C:\\", u"..\\..\\foo", "C:\\foo"},
        {u"C:\\x", u"\\\\server\\share", "\\\\server\\share"},
        {u"C:\\x", u"", "C:\\x"},
        {u"C:\\x", u"..", "C:\\"},
    };
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    for (const auto& row : rows) {
        WCHAR path[MAX_PATH] = {};
        row.path.copy(path, MAX_PATH);
        EXPECT_TRUE(PathAppendW(path, row.more));
        EXPECT_EQ(ToUtf8(path), row.joined);
    }
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(PathAppend, NullTooLongOrFault_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR path[MAX_PATH] = u"C:\\x";
    EXPECT_FALSE(PathAppendW(nullptr, TEXT("foo")));
    EXPECT_FALSE(PathAppendW(path, nullptr));
    FailNext(pc, "PathAppendW", 0);
    EXPECT_FALSE(PathAppendW(path, TEXT("foo")));
    EXPECT_EQ(ToUtf8(path), "C:\\x");
    pc.faults.Disarm();
    const std::u16string fits(MAX_PATH - 6, u'a');
    EXPECT_TRUE(PathAppendW(path, fits.c_str()));
    EXPECT_FALSE(PathAppendW(path, TEXT("b")));
    EXPECT_EQ(path[0], 0);
}

TEST(PathRemoveFileSpec, EveryKindOfPath_RemovesTheLastPartButNotTheRoot) {
    const struct {
        std::u16string path;
        BOOL cut;
        std::string rest;
    } rows[] = {
        {u"C:\\dir\\a.exe", TRUE, "C:\\dir"},
        {u"C:\\a.exe", TRUE, "C:\\"},
        {u"C:\\", FALSE, "C:\\"},
        {u"C:\\dir\\", TRUE, "C:\\dir"},
        {u"a.exe", TRUE, ""},
        {u"", FALSE, ""},
        {u"\\a.exe", TRUE, "\\"},
        {u"\\\\server\\share\\a", TRUE, "\\\\server\\share"},
    };
    EmulatedPc pc(machine::FactoryMbr());
    for (const auto& row : rows) {
        WCHAR path[MAX_PATH] = {};
        row.path.copy(path, MAX_PATH);
        EXPECT_EQ(PathRemoveFileSpecW(path), row.cut) << ToUtf8(row.path.c_str());
        EXPECT_EQ(ToUtf8(path), row.rest);
    }
    EXPECT_FALSE(PathRemoveFileSpecW(nullptr));
}
