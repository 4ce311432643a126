#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;
using testing::ElementsAre;
using testing::Pair;

TEST(CreateFile, VolumesDisksFilesAndFolders_Open) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(staleError);
    for (const WCHAR* const name :
         {TEXT("\\\\.\\C:"), TEXT("\\\\?\\d:"), TEXT("\\\\.\\PhysicalDrive0"), TEXT("\\\\.\\PHYSICALDRIVE0"),
          TEXT("\\\\?\\PhysicalDrive0"), TEXT("C:\\Windows\\System32\\winload.exe")}) {
        const HANDLE handle = OpenShared(name);
        ASSERT_NE(handle, INVALID_HANDLE_VALUE) << ToUtf8(name);
        EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("file handle", 1)));
        EXPECT_TRUE(CloseHandle(handle));
    }
    const HANDLE folder = CreateFileW(TEXT("C:\\Windows"), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    EXPECT_TRUE(CloseHandle(folder));
    EXPECT_EQ(GetLastError(), staleError);
    ExpectCleanLedger(pc);
}

TEST(CreateFile, InvalidNameOrArguments_FailsWithItsError) {
    machine::Pc facts = machine::FactoryMbr();
    facts.disks[0].partitions[2].volume->openError = ERROR_ACCESS_DENIED;
    EmulatedPc pc(facts);
    const struct {
        const WCHAR* name;
        DWORD share;
        DWORD disposition;
        DWORD error;
    } rows[] = {
        {TEXT("\\\\.\\Q:"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("\\\\.\\PhysicalDrive7"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("\\\\.\\PhysicalDrive"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("\\\\.\\PhysicalDrive0x"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("\\\\.\\D:"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_ACCESS_DENIED},
        {TEXT("\\\\.\\C:"), FILE_SHARE_READ, OPEN_EXISTING, ERROR_SHARING_VIOLATION},
        {TEXT("\\\\.\\C:"), FILE_SHARE_WRITE, CREATE_NEW, ERROR_INVALID_PARAMETER},
        {TEXT("C:\\none.txt"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {TEXT("C:\\none\\none.txt"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_PATH_NOT_FOUND},
        {TEXT("C:\\Windows"), FILE_SHARE_WRITE, OPEN_EXISTING, ERROR_ACCESS_DENIED},
        {TEXT("C:\\new.txt"), FILE_SHARE_WRITE, OPEN_ALWAYS, ERROR_NOT_SUPPORTED},
        {TEXT("C:\\none\\new.txt"), FILE_SHARE_WRITE, CREATE_ALWAYS, ERROR_PATH_NOT_FOUND},
        {TEXT("Q:\\new.txt"), FILE_SHARE_WRITE, CREATE_ALWAYS, ERROR_PATH_NOT_FOUND},
        {TEXT("C:\\Windows"), FILE_SHARE_WRITE, CREATE_ALWAYS, ERROR_ACCESS_DENIED},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CreateFileW(row.name, GENERIC_READ, row.share, nullptr, row.disposition, 0, nullptr),
                  INVALID_HANDLE_VALUE)
            << ToUtf8(row.name);
        EXPECT_EQ(GetLastError(), row.error) << ToUtf8(row.name);
    }
    ExpectCleanLedger(pc);
}

TEST(CreateFile, Fault_OpensNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    FailNext(pc, "CreateFileW", ERROR_SHARING_VIOLATION, true);
    EXPECT_EQ(OpenShared(TEXT("\\\\.\\C:")), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    ExpectCleanLedger(pc);
}

TEST(CreateFile, AnyFile_JournalsHowItWasOpened) {
    EmulatedPc pc(machine::FactoryMbr());
    CloseHandle(OpenShared(TEXT("\\\\.\\C:")));
    const auto calls = pc.journal.Calls();
    EXPECT_THAT(calls[0].arguments, ElementsAre("\\\\.\\C:", "0xc0000000", "0x00000003", "OPEN_EXISTING"));
    EXPECT_EQ(calls[0].result, "<pointer>");
    EXPECT_THAT(calls[1].arguments, ElementsAre("\\\\.\\C:"));
}

TEST(CloseHandle, ClosedHandle_SecondCloseIsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    const HANDLE handle = OpenShared(TEXT("\\\\.\\C:"));
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_THAT(pc.ledger.Violations(), ElementsAre("file handle closed that is not open"));
    EXPECT_THAT(pc.ledger.Outstanding(), testing::IsEmpty());
}

TEST(CloseHandle, InvalidHandleValue_IsAViolation) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_FALSE(CloseHandle(INVALID_HANDLE_VALUE));
    EXPECT_THAT(pc.ledger.Violations(), testing::SizeIs(1));
}

TEST(CloseHandle, FaultBeforeOrAfterEffect_KeepsOrClosesTheHandle) {
    EmulatedPc pc(machine::FactoryMbr());
    const HANDLE handle = OpenShared(TEXT("\\\\.\\C:"));
    FailNext(pc, "CloseHandle", ERROR_GEN_FAILURE);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_THAT(pc.ledger.Outstanding(), ElementsAre(Pair("file handle", 1)));
    pc.faults.Disarm();
    FailNext(pc, "CloseHandle", ERROR_GEN_FAILURE, true);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_GEN_FAILURE});
    ExpectCleanLedger(pc);
}

TEST(DeleteFile, ExistingOrMissingFile_DeletesOrFailsWithItsError) {
    EmulatedPc pc(machine::FactoryMbr());
    machine::FileTree& files = pc.facts.disks[0].partitions[2].volume->files;
    files.PutFile("SystemVolume.ini", "[System]\r\n");
    SetLastError(staleError);
    EXPECT_TRUE(DeleteFileW(TEXT("D:\\systemvolume.INI")));
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_TRUE(files.IsEmpty());
    EXPECT_FALSE(DeleteFileW(TEXT("D:\\SystemVolume.ini")));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(DeleteFile, FaultBeforeOrAfterEffect_KeepsOrDeletesTheFile) {
    for (const bool afterEffect : {false, true}) {
        EmulatedPc pc(machine::FactoryMbr());
        machine::FileTree& files = pc.facts.disks[0].partitions[2].volume->files;
        files.PutFile("SystemVolume.ini", "[System]\r\n");
        FailNext(pc, "DeleteFileW", ERROR_WRITE_PROTECT, afterEffect);
        EXPECT_FALSE(DeleteFileW(TEXT("D:\\SystemVolume.ini")));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_WRITE_PROTECT});
        EXPECT_EQ(files.IsEmpty(), afterEffect);
    }
}
