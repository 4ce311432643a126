#include "machine/api/files/profile_text.h"
#include "machine/facts/volume_files.h"
#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using machine::ProfileText;

namespace {

constexpr const WCHAR* iniPath = u"D:\\test.ini";

machine::FileTree& DataFiles(EmulatedPc& pc) {
    return pc.facts.disks[0].partitions[2].volume->files;
}

machine::Pc PcWithIni(std::string content) {
    machine::Pc pc = machine::FactoryMbr();
    pc.disks[0].partitions[2].volume->files.PutFile("test.ini", std::move(content));
    return pc;
}

std::string IniContent(EmulatedPc& pc) {
    const machine::FileTree::Entry* const entry = DataFiles(pc).Find("test.ini");
    return entry != nullptr ? entry->content : "<none>";
}

// The result of reading with the default "none".
std::string Read(const WCHAR* section, const WCHAR* key) {
    WCHAR value[260];
    const INT length = GetPrivateProfileStringW(section, key, TEXT("none"), value, 260, iniPath);
    return ToUtf8(std::u16string_view(value, static_cast<size_t>(length)));
}

constexpr const char* sample =
    "; comment=1\r\n[System]\r\nActive = 2 \r\n;hidden=1\r\nEmpty=\r\nBare\r\nActive=9\r\n"
    "Quoted=\"  a;b=c \"\r\nSingle='x'\r\nLone=\"x\r\nTwice=\"\"in\"\"\r\n\r\n[ Tail ] ; more\nkey=\tvalue\t\r"
    "[system]\r\nLate=1\r\n";

}  // namespace

TEST(GetPrivateProfileString, CaseBlanksAndQuotes_FollowThePlatformsRules) {
    const struct {
        const WCHAR* section;
        const WCHAR* key;
        const char* value;
    } rows[] = {
        {u"System", u"Active", "2"},        {u"SYSTEM", u" active ", "2"},   {u"System", u"Empty", ""},
        {u"System", u"Bare", "none"},       {u"System", u"None", "none"},    {u"None", u"Active", "none"},
        {u"System", u"hidden", "none"},     {u"System", u";hidden", "none"}, {u"System", u"Late", "none"},
        {u"System", u"Quoted", "  a;b=c "}, {u"System", u"Single", "x"},     {u"System", u"Lone", "\"x"},
        {u"System", u"Twice", "\"in\""},    {u"tail", u"KEY", "value"},      {u"System", u"", "none"},
    };
    EmulatedPc pc(PcWithIni(sample));
    SetLastError(staleError);
    for (const auto& row : rows)
        EXPECT_EQ(Read(row.section, row.key), row.value) << ToUtf8(row.key);
    EXPECT_EQ(GetLastError(), staleError);
}

// Each is asked for in a call of its own, as a search does.
TEST(GetPrivateProfileString, AsManyKeysAsAFileHolds_AreFoundOneByOne) {
    std::string content = "[OrderIndex]\r\n";
    int count = 0;
    while (content.size() < 65'500)
        content += "DeviceID" + std::to_string(++count) + "=Z\r\n";
    const EmulatedPc pc(PcWithIni(content));
    for (int number = 1; number <= count; ++number)
        ASSERT_EQ(Read(u"OrderIndex", ToWide("DeviceID" + std::to_string(number)).c_str()), "Z");
    EXPECT_EQ(Read(u"OrderIndex", ToWide("DeviceID" + std::to_string(count + 1)).c_str()), "none");
}

TEST(GetPrivateProfileString, FileOfAnotherContentThanBefore_IsReadAfresh) {
    EmulatedPc pc(PcWithIni("[System]\r\nActive=2\r\n"));
    EXPECT_EQ(Read(u"System", u"Active"), "2");
    DataFiles(pc).PutFile("test.ini", "[System]\r\nActive=3\r\n");
    EXPECT_EQ(Read(u"System", u"Active"), "3");
    DataFiles(pc).PutFile("test.ini", "\xEF\xBB\xBF[System]\r\nActive=4\r\n");
    EXPECT_EQ(Read(u"System", u"Active"), "none");
    pc.facts.switches.profilesSkipUtf8Mark = true;
    EXPECT_EQ(Read(u"System", u"Active"), "4");
}

TEST(ProfileFile, LongerThanItsBound_IsNotReadAndNotChanged) {
    const std::string content = "[System]\r\nActive=2\r\n;" + std::string(65'536, '-');
    EmulatedPc pc(PcWithIni(content));
    EXPECT_EQ(Read(u"System", u"Active"), "none");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_TOO_LARGE});
    EXPECT_FALSE(WritePrivateProfileStringW(u"System", u"Active", u"3", iniPath));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_TOO_LARGE});
    EXPECT_EQ(IniContent(pc), content);
}

TEST(GetPrivateProfileString, MissingFile_ReturnsTheDefaultWithoutTrailingBlanks) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR value[20];
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", u" x  ", value, 20, iniPath), 2);
    EXPECT_EQ(ToUtf8(value), " x");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 20, iniPath), 0);
    EXPECT_EQ(value[0], 0);
}

TEST(GetPrivateProfileString, ShortBuffer_TruncatesTheValue) {
    EmulatedPc pc(PcWithIni("[a]\r\nb=value\r\n"));
    WCHAR value[6] = u"-----";
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 0, iniPath), 0);
    EXPECT_EQ(value[0], u'-');
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 1, iniPath), 0);
    EXPECT_EQ(value[0], 0);
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 5, iniPath), 4);
    EXPECT_EQ(ToUtf8(value), "valu");
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 6, iniPath), 5);
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"c", u"default", value, 4, iniPath), 3);
    EXPECT_EQ(ToUtf8(value), "def");
}

TEST(GetPrivateProfileString, NullSectionOrKey_ListsTheNames) {
    EmulatedPc pc(PcWithIni("[a]\r\nx=1\r\n;c=1\r\ny=2\r\n[bc]\r\n"));
    WCHAR names[6];
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, names, 6, iniPath), 5);
    EXPECT_EQ(std::u16string_view(names, 6), std::u16string_view(u"a\0bc\0\0", 6));
    EXPECT_EQ(GetPrivateProfileStringW(u"a", nullptr, nullptr, names, 6, iniPath), 4);
    EXPECT_EQ(std::u16string_view(names, 5), std::u16string_view(u"x\0y\0\0", 5));
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, names, 5, iniPath), 3);
    EXPECT_EQ(std::u16string_view(names, 5), std::u16string_view(u"a\0b\0\0", 5));
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, names, 1, iniPath), 0);
}

TEST(GetPrivateProfileString, RelativeName_IsInTheWindowsDirectory) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].partitions[1].volume->files.PutFile("Windows/win.ini", "[a]\r\nb=c\r\n");
    WCHAR value[10];
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 10, u"win.ini"), 1);
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", nullptr, value, 10, nullptr), 1);
}

TEST(GetPrivateProfileString, Utf16AndAnsi_AreDecoded) {
    const std::string utf16("\xFF\xFE[\0a\0]\0\n\0b\0=\0\x29\x59", 16);
    EmulatedPc pc(PcWithIni(utf16));
    EXPECT_EQ(Read(u"a", u"b"), "\xE5\xA4\xA9");
    DataFiles(pc).PutFile("test.ini", "[a]\nb=\x80\xE4\n");
    EXPECT_EQ(Read(u"a", u"b"), "\xE2\x82\xAC\xC3\xA4");
}

TEST(GetPrivateProfileString, Utf8Mark_SpoilsTheFirstSectionUnlessSkipped) {
    EmulatedPc pc(PcWithIni("\xEF\xBB\xBF[a]\r\nb=c\r\n"));
    EXPECT_EQ(Read(u"a", u"b"), "none");
    pc.facts.switches.profilesSkipUtf8Mark = true;
    EXPECT_EQ(Read(u"a", u"b"), "c");
    EXPECT_TRUE(WritePrivateProfileStringW(u"a", u"b", u"d", iniPath));
    EXPECT_EQ(IniContent(pc), "\xEF\xBB\xBF[a]\r\nb=d\r\n");
}

TEST(GetPrivateProfileString, Fault_ReturnsNothing) {
    EmulatedPc pc(PcWithIni("[a]\r\nb=c\r\n"));
    WCHAR value[10] = u"old";
    FailNext(pc, "GetPrivateProfileStringW", ERROR_READ_FAULT);
    EXPECT_EQ(GetPrivateProfileStringW(u"a", u"b", u"none", value, 10, iniPath), 0);
    EXPECT_EQ(value[0], 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_READ_FAULT});
}

TEST(WritePrivateProfileString, ExistingFile_ChangesOneLineAndKeepsTheOthers) {
    const struct {
        const char* before;
        const WCHAR* section;
        const WCHAR* key;
        const WCHAR* value;
        const char* after;
    } rows[] = {
        {"", u"System", u"Active", u"2", "[System]\r\nActive=2\r\n"},
        {"[system]\r\nACTIVE = 3\r\n", u"System", u"Active", u"2", "[system]\r\nACTIVE=2\r\n"},
        {"; a\n[System]\nx=1\n\n[Next]\ny=2", u"System", u"Active", u"2",
         "; a\n[System]\nx=1\nActive=2\r\n\n[Next]\ny=2"},
        {"[Next]\r\ny=2", u"System", u"Active", u" \t2 ", "[Next]\r\ny=2\r\n[System]\r\nActive=2 \r\n"},
        {"[System]", u"System", u"Active", u"2", "[System]\r\nActive=2\r\n"},
        {"[System]\r\nActive\r\n", u"System", u"Active", u"2", "[System]\r\nActive=2\r\n"},
        {"[System]\r\nActive=1\r\nx=1\r\n", u"System", u"active", nullptr, "[System]\r\nx=1\r\n"},
        {"[System]\r\nx=1\r\n", u"System", u"Active", nullptr, "[System]\r\nx=1\r\n"},
        {"[a]\r\n[System]\r\nx=1\r\n[b]\r\n", u"System", nullptr, nullptr, "[a]\r\n[b]\r\n"},
        {"[a]\r\n", u"System", nullptr, nullptr, "[a]\r\n"},
        {"[a]\r\n\x81=\x80\r\n", u"a", u"k", u"\u20AC\u5929", "[a]\r\n\x81=\x80\r\nk=\x80?\r\n"},
    };
    for (const auto& row : rows) {
        EmulatedPc pc(PcWithIni(row.before));
        SetLastError(staleError);
        EXPECT_TRUE(WritePrivateProfileStringW(row.section, row.key, row.value, iniPath));
        EXPECT_EQ(GetLastError(), staleError);
        EXPECT_EQ(IniContent(pc), row.after);
    }
}

TEST(WritePrivateProfileString, MissingFile_IsCreated) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_TRUE(WritePrivateProfileStringW(u"System", u"Active", u"2", iniPath));
    EXPECT_EQ(IniContent(pc), "[System]\r\nActive=2\r\n");
}

TEST(WritePrivateProfileString, MissingFile_RemovingCreatesNone) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_TRUE(WritePrivateProfileStringW(u"System", u"Active", nullptr, iniPath));
    EXPECT_EQ(IniContent(pc), "<none>");
}

TEST(WritePrivateProfileString, Utf16File_StaysUtf16) {
    EmulatedPc pc(PcWithIni(std::string("\xFF\xFE[\0a\0]\0", 8)));
    EXPECT_TRUE(WritePrivateProfileStringW(u"a", u"b", u"\u5929", iniPath));
    EXPECT_EQ(IniContent(pc), std::string("\xFF\xFE[\0a\0]\0\r\0\n\0b\0=\0\x29\x59\r\0\n\0", 22));
}

TEST(WritePrivateProfileString, InvalidFolderMediumOrSection_FailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_FALSE(WritePrivateProfileStringW(u"a", u"b", u"c", u"D:\\none\\test.ini"));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_FALSE(WritePrivateProfileStringW(nullptr, u"b", u"c", iniPath));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    SetLastError(staleError);
    EXPECT_FALSE(WritePrivateProfileStringW(nullptr, nullptr, nullptr, iniPath));
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_EQ(IniContent(pc), "<none>");
}

TEST(WritePrivateProfileString, FaultBeforeOrAfterEffect_WritesNothingOrTheValue) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(machine::FactoryMbr());
        FailNext(pc, "WritePrivateProfileStringW", ERROR_WRITE_FAULT, afterEffect);
        EXPECT_FALSE(WritePrivateProfileStringW(u"System", u"Active", u"2", iniPath));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_WRITE_FAULT});
        EXPECT_EQ(IniContent(pc), afterEffect ? "[System]\r\nActive=2\r\n" : "<none>");
    }
}

TEST(ProfileText, AnyBytes_AreReturnedUnchanged) {
    std::string everyByte;
    for (int value = 0; value < 256; ++value)
        everyByte += static_cast<char>(value);
    for (const std::string& bytes :
         {everyByte, std::string(sample), std::string("\n\r\r\n\n"), std::string()})
        EXPECT_EQ(ProfileText(bytes).Bytes(), bytes);
}
