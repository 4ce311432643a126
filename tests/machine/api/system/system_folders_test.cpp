#include "tests/machine/api/win32_pc.h"

using machine::EmulatedPc;

TEST(GetWindowsDirectory, AnyBuffer_ReturnsFolderOrSize) {
    EmulatedPc pc(machine::WinPeTwoDisks());
    WCHAR folder[11] = {};
    SetLastError(staleError);
    EXPECT_EQ(GetWindowsDirectoryW(folder, 11), 10u);
    EXPECT_EQ(ToUtf8(folder), "X:\\Windows");
    EXPECT_EQ(GetWindowsDirectoryW(folder, 10), 11u);
    EXPECT_EQ(GetWindowsDirectoryW(nullptr, 0), 11u);
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(GetWindowsDirectory, Fault_ReturnsZeroAndTheError) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR folder[MAX_PATH] = {};
    FailNext(pc, "GetWindowsDirectoryW", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(GetWindowsDirectoryW(folder, MAX_PATH), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
    EXPECT_EQ(folder[0], 0);
}

TEST(GetModuleFileName, NullModule_ReturnsTheHostApplication) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.host.path = "C:\\R.exe";
    WCHAR path[MAX_PATH];
    SetLastError(staleError);
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, MAX_PATH), 8u);
    EXPECT_EQ(ToUtf8(path), "C:\\R.exe");
    EXPECT_EQ(GetLastError(), staleError);
}

TEST(GetModuleFileName, ShortBuffer_TruncatesAndFails) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.facts.host.path = "C:\\R.exe";
    WCHAR path[8];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 8), 8u);
    EXPECT_EQ(ToUtf8(path), "C:\\R.ex");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(GetModuleFileNameW(nullptr, nullptr, 0), 0u);
}

TEST(GetModuleFileName, OtherModuleOrFault_Fails) {
    EmulatedPc pc(machine::FactoryMbr());
    WCHAR path[MAX_PATH];
    EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(path), path, MAX_PATH), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
    FailNext(pc, "GetModuleFileNameW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, MAX_PATH), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(GetFirmwareEnvironmentVariable, BiosAndUefi_FailWithTheirError) {
    const struct {
        machine::FirmwareKind kind;
        std::optional<uint32_t> fact;
        DWORD error;
    } rows[] = {
        {machine::FirmwareKind::Bios, std::nullopt, ERROR_INVALID_FUNCTION},
        {machine::FirmwareKind::Uefi, std::nullopt, ERROR_NOACCESS},
        {machine::FirmwareKind::Uefi, ERROR_PRIVILEGE_NOT_HELD, ERROR_PRIVILEGE_NOT_HELD},
    };
    for (const auto& row : rows) {
        machine::Pc facts = machine::FactoryMbr();
        facts.firmware = {row.kind, row.fact};
        EmulatedPc pc(facts);
        char buffer[1000];
        EXPECT_EQ(GetFirmwareEnvironmentVariableW(TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"),
                                                  buffer, 1000),
                  0u);
        EXPECT_EQ(GetLastError(), row.error);
    }
}

TEST(GetFirmwareEnvironmentVariable, ErrorZeroInFacts_ReadsOneByte) {
    machine::Pc facts = machine::FactoryGpt();
    facts.firmware.error = 0;
    EmulatedPc pc(facts);
    char read = 1;
    SetLastError(staleError);
    EXPECT_EQ(GetFirmwareEnvironmentVariableW(TEXT(""), TEXT("{}"), &read, 1), 1u);
    EXPECT_EQ(read, 0);
    EXPECT_EQ(GetLastError(), staleError);
    EXPECT_EQ(GetFirmwareEnvironmentVariableW(TEXT(""), TEXT("{}"), nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    FailNext(pc, "GetFirmwareEnvironmentVariableW", ERROR_NOACCESS);
    EXPECT_EQ(GetFirmwareEnvironmentVariableW(TEXT(""), TEXT("{}"), &read, 1), 0u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NOACCESS});
}

TEST(Sleep, AnyTime_AdvancesOnlyTheClock) {
    EmulatedPc pc(machine::FactoryMbr());
    Sleep(300);
    Sleep(19000);
    EXPECT_EQ(pc.clockMilliseconds, 19300u);
    EXPECT_THAT(pc.journal.Calls("Sleep")[0].arguments, testing::ElementsAre("300"));
}

TEST(LastError, SetAndGet_KeepsTheValueAndJournalsNothing) {
    EmulatedPc pc(machine::FactoryMbr());
    EXPECT_EQ(GetLastError(), 0u);
    SetLastError(998);
    EXPECT_EQ(GetLastError(), 998u);
    EXPECT_THAT(pc.journal.Entries(), testing::IsEmpty());
}
