#include "diag/failure_record.h"

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/support/transcript.h"

namespace {

// A PC whose last call failed with error 5.
struct AfterFailure {
    machine::EmulatedPc pc{machine::FactoryMbr()};
    AfterFailure() { SetLastError(ERROR_ACCESS_DENIED); }
    std::string Records() const { return Transcript(pc.journal); }
};

TEST(LogFailure, AfterAFailure_EachCodes_FollowTheText) {
    const struct {
        LoggedCodes codes;
        const char* record;
    } rows[] = {
        {LoggedCodes::None, "1 failed \n"},
        {LoggedCodes::Result, "1 failed {long -2}\n"},
        {LoggedCodes::LastError, "1 failed {ulong 5}\n"},
        {LoggedCodes::LabelledLastError, "1 failed  GetLastError = {ulong 5}\n"},
        {LoggedCodes::ResultAndLastError, "1 failed {long -2} GetLastError = {ulong 5}\n"},
    };
    for (const auto& row : rows) {
        const AfterFailure failure;
        EXPECT_EQ(LogFailure(LOG_LEVEL_ERROR, {TEXT("failed "), row.codes}, -2), -2);
        EXPECT_EQ(failure.Records(), row.record);
    }
}

TEST(LogFailure, AfterAFailure_LabelOfItsOwn_ReplacesTheUsualOne) {
    const AfterFailure failure;
    LogFailure(LOG_LEVEL_TRACE, {TEXT("failed "), LoggedCodes::ResultAndLastError, TEXT("error: ")}, -2);
    EXPECT_EQ(failure.Records(), "4 failed {long -2}error: {ulong 5}\n");
}

TEST(LogFailure, LastErrorReadBefore_LogFailure_RecordsItInsteadOfTheLatest) {
    const AfterFailure failure;
    EXPECT_EQ(LogFailure(LOG_LEVEL_ERROR, {TEXT("failed "), LoggedCodes::LastError}, 3, 7), 3);
    EXPECT_EQ(failure.Records(), "1 failed {ulong 7}\n");
}

TEST(LogFailure, NoText_LogFailure_WritesNoRecordAndReturnsTheResult) {
    const AfterFailure failure;
    EXPECT_EQ(LogFailure(LOG_LEVEL_ERROR, FailureText{}, -2), -2);
    EXPECT_EQ(failure.Records(), "");
}

TEST(LogFailure, TextAlone_LogFailure_WritesItAndReturnsTheResult) {
    const AfterFailure failure;
    EXPECT_EQ(LogFailure(LOG_LEVEL_TRACE, TEXT("failed"), 105), 105);
    EXPECT_EQ(failure.Records(), "4 failed\n");
}

}  // namespace
