#include "machine/journal/journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "diag/log_record.h"
#include "machine/api/call/call.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"

using machine::CallRecord;
using machine::EmulatedPc;
using machine::Journal;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(Journal, CallsAndRecords_AreKeptInOrder) {
    EmulatedPc pc(machine::FactoryMbr());
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("before"));
    Sleep(300);
    LogRecord(LOG_LEVEL_ERROR).Text(TEXT("after"));

    const std::vector<machine::JournalEntry>& entries = pc.journal.Entries();
    ASSERT_THAT(entries, SizeIs(3));
    EXPECT_EQ(std::get<LogEntry>(entries[0]).Text(), TEXT("before"));
    EXPECT_EQ(std::get<CallRecord>(entries[1]).call, "Sleep");
    EXPECT_EQ(std::get<LogEntry>(entries[2]).level, LOG_LEVEL_ERROR);
}

TEST(Journal, CallsAndRecords_CanBeFilteredByNameAndKind) {
    EmulatedPc pc(machine::FactoryMbr());
    Sleep(1);
    GetDriveTypeW(TEXT("C:\\"));
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("a record"));

    EXPECT_THAT(pc.journal.Calls(), SizeIs(2));
    EXPECT_THAT(pc.journal.Calls("GetDriveTypeW"), SizeIs(1));
    EXPECT_THAT(pc.journal.Records(), SizeIs(1));
}

TEST(Journal, Call_RecordsArgumentsResultAndInjection) {
    EmulatedPc pc(machine::FactoryMbr());
    pc.faults.Arm({.call = "GetDriveTypeW", .nth = 2, .code = DRIVE_REMOTE});
    GetDriveTypeW(TEXT("C:\\"));
    GetDriveTypeW(TEXT("C:\\"));

    const std::vector<CallRecord> calls = pc.journal.Calls();
    ASSERT_THAT(calls, SizeIs(2));
    EXPECT_THAT(calls[0].arguments, ElementsAre("C:\\"));
    EXPECT_EQ(calls[0].result, "3");
    EXPECT_FALSE(calls[0].injected);
    EXPECT_EQ(calls[1].result, "4");
    EXPECT_TRUE(calls[1].injected);
}

TEST(Journal, Call_KeepsTheCodeOfAFailureOnly) {
    EmulatedPc pc(machine::FactoryMbr());
    SetLastError(ERROR_GEN_FAILURE);
    PathFileExistsW(TEXT("C:\\Windows"));
    PathFileExistsW(TEXT("C:\\nothing"));
    pc.faults.Arm({.call = "CreateFileW", .code = ERROR_ACCESS_DENIED});
    CreateFileW(TEXT("\\\\.\\C:"), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    HKEY key = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, TEXT("nothing"), 0, KEY_READ, &key);
    pc.faults.Arm({.call = "CoInitializeEx", .code = static_cast<uint32_t>(E_OUTOFMEMORY)});
    CoInitializeEx(nullptr, 0);
    GetDriveTypeW(TEXT("Q:\\"));

    std::vector<uint32_t> codes;
    for (const CallRecord& call : pc.journal.Calls())
        codes.push_back(call.code);
    EXPECT_THAT(codes, ElementsAre(0, ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_FILE_NOT_FOUND,
                                   static_cast<uint32_t>(E_OUTOFMEMORY), 0));
}

TEST(Journal, Taken_IsEmpty) {
    Journal journal;
    journal.Add(CallRecord{"Sleep", {"1"}, ""});
    EXPECT_THAT(journal.Take(), SizeIs(1));
    EXPECT_THAT(journal.Entries(), IsEmpty());
    EXPECT_THAT(journal.Take(), IsEmpty());
}

TEST(Journal, Cleared_IsEmpty) {
    Journal journal;
    journal.Add(CallRecord{"Sleep", {"1"}, ""});
    journal.Clear();
    EXPECT_THAT(journal.Entries(), IsEmpty());
}

TEST(Journal, PointersAndCodes_AreShownWithoutAddresses) {
    using machine::FailsWith;
    int thing = 0;
    EXPECT_EQ(machine::ResultText(FailsWith::NullAndLastError, &thing), "<pointer>");
    EXPECT_EQ(machine::ResultText(FailsWith::NullAndLastError, static_cast<int*>(nullptr)), "null");
    EXPECT_EQ(machine::ResultText(FailsWith::InvalidHandle, INVALID_HANDLE_VALUE), "INVALID_HANDLE_VALUE");
    EXPECT_EQ(machine::ResultText(FailsWith::Hresult, static_cast<int>(0x80004005)), "0x80004005");
    EXPECT_EQ(machine::ResultText(FailsWith::Status, 234), "234");
}
