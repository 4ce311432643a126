#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

namespace {

constexpr const WCHAR* file = u"D:\\new.txt";

HANDLE Create(DWORD access = GENERIC_WRITE) {
    return CreateFileW(file, access, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// The content of the file; nothing if it does not exist.
std::optional<std::string> Content(EmulatedPc& pc) {
    const auto* const entry = pc.facts.disks[0].partitions[2].volume->files.Find("new.txt");
    return entry != nullptr ? std::optional(entry->content) : std::nullopt;
}

BOOL Write(HANDLE handle, std::string_view bytes, DWORD* written) {
    return WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), written, nullptr);
}

// Reads the file in pieces of that size up to the end.
std::vector<std::string> ReadPieces(HANDLE handle, DWORD size) {
    std::vector<std::string> pieces;
    for (;;) {
        std::string piece(size, '\0');
        DWORD count = 99;
        EXPECT_TRUE(ReadFile(handle, piece.data(), size, &count, nullptr));
        if (count == 0) return pieces;
        pieces.push_back(piece.substr(0, count));
    }
}

EmulatedPc PcWithFile() {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[2].volume->files.PutFile("new.txt", "seven b");
    return EmulatedPc(std::move(facts));
}

}  // namespace

TEST(ReadFile, RepeatedReads_ContinueAtThePosition) {
    EmulatedPc pc = PcWithFile();
    const HANDLE handle = OpenShared(file);
    EXPECT_THAT(ReadPieces(handle, 4), testing::ElementsAre("seve", "n b"));
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_THAT(pc.journal.Calls("ReadFile")[0].arguments, testing::ElementsAre("D:\\new.txt", "4"));
    ExpectCleanLedger(pc);
}

TEST(ReadFile, WrongHandleOrAccess_FailsWithItsError) {
    EmulatedPc pc = PcWithFile();
    char bytes[1];
    DWORD count = 9;
    EXPECT_FALSE(ReadFile(nullptr, bytes, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(count, 0u);
    const HANDLE writing = Create();
    EXPECT_FALSE(ReadFile(writing, bytes, 1, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    FailNext(pc, "ReadFile", ERROR_CRC);
    EXPECT_FALSE(ReadFile(writing, bytes, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CRC});
    CloseHandle(writing);
    ExpectCleanLedger(pc);
}

TEST(WriteFile, RepeatedWrites_ContinueAtThePosition) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    const HANDLE handle = Create();
    EXPECT_EQ(Content(pc), "");
    DWORD written = 9;
    EXPECT_TRUE(Write(handle, "one\r\n", &written));
    EXPECT_EQ(written, 5u);
    EXPECT_TRUE(Write(handle, std::string_view("\0two", 4), nullptr));
    EXPECT_TRUE(Write(handle, "", &written));
    EXPECT_EQ(written, 0u);
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_EQ(Content(pc), std::string("one\r\n\0two", 9));
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_THAT(pc.journal.Calls("WriteFile")[0].arguments, testing::ElementsAre("D:\\new.txt", "5"));
    ExpectCleanLedger(pc);
}

TEST(WriteFile, WrongHandleOrAccess_FailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    DWORD written = 9;
    EXPECT_FALSE(Write(nullptr, "x", &written));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(written, 0u);
    const HANDLE reading = Create(GENERIC_READ);
    EXPECT_FALSE(Write(reading, "x", nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    const HANDLE volume = OpenShared(u"\\\\.\\C:");
    EXPECT_FALSE(Write(volume, "x", nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_SUPPORTED});
    const HANDLE gone = Create();
    EXPECT_TRUE(DeleteFileW(file));
    EXPECT_FALSE(Write(gone, "x", nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    for (const HANDLE handle : {reading, volume, gone})
        CloseHandle(handle);
    ExpectCleanLedger(pc);
}

TEST(WriteFile, FaultBeforeOrAfterEffect_WritesNothingOrEverything) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(machine::FactoryMbr());
        const HANDLE handle = Create();
        FailNext(pc, "WriteFile", ERROR_DISK_FULL, afterEffect);
        EXPECT_FALSE(Write(handle, "x", nullptr));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
        EXPECT_EQ(Content(pc), afterEffect ? "x" : "");
        CloseHandle(handle);
    }
}

TEST(CreateFile, CreateAlwaysOnExistingFile_TruncatesIt) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.disks[0].partitions[2].volume->files.PutFile("New.txt", "old");
    EXPECT_TRUE(CloseHandle(Create()));
    EXPECT_EQ(Content(pc), "");
}

TEST(CreateFile, FaultAfterEffect_CreatesTheFileWithoutAHandle) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(machine::FactoryMbr());
        FailNext(pc, "CreateFileW", ERROR_ACCESS_DENIED, afterEffect);
        EXPECT_EQ(Create(), INVALID_HANDLE_VALUE);
        EXPECT_EQ(Content(pc).has_value(), afterEffect);
        ExpectCleanLedger(pc);
    }
}
