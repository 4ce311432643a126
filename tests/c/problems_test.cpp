// What a call says that cannot be made, and one whose operation failed.

#include <gmock/gmock.h>

#include <thread>

#include "tests/c/interface.h"

namespace {

using testing::Each;
using testing::HasSubstr;

class CProblems : public CInterfaceTest {};

TEST_F(CProblems, RecoveryFilesMissing_Switch_NamesTheResultAndTheRecordThatLedToIt) {
    Open("factory-mbr");
    ASSERT_EQ(kestova_fail(pc_, "PathFileExistsW+=2"), 1);
    EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_NO_RECOVERY_FILES);
    const kestova_problem problem = LastProblem();
    EXPECT_EQ(problem.code, KESTOVA_PROBLEM_FAILED);
    EXPECT_EQ(problem.has_result, 1);
    EXPECT_EQ(problem.result, KESTOVA_SWITCH_NO_RECOVERY_FILES);
    EXPECT_EQ(Utf8(problem.operation), "SetRcvprtActive");
    EXPECT_EQ(Utf8(problem.words),
              "the recovery partition cannot be used: no letter, an unexpected type, or no recovery files");
    EXPECT_THAT(Utf8(problem.record), HasSubstr("GetSystemVolumeIni return False. 3"));
}

TEST_F(CProblems, WellPc_Switch_HasNoProblemAndNoRecord) {
    Open("factory-mbr");
    ASSERT_EQ(kestova_fail(pc_, "PathFileExistsW+=2"), 1);
    ASSERT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_NO_RECOVERY_FILES);
    ASSERT_EQ(kestova_fail(pc_, nullptr), 1);
    EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_DONE);
    const kestova_problem problem = LastProblem();
    EXPECT_EQ(problem.code, KESTOVA_PROBLEM_NONE);
    EXPECT_EQ(problem.result, 0);
    EXPECT_EQ(Utf8(problem.words), "done, or it was active already");
    EXPECT_EQ(Utf8(problem.record), "");
}

TEST_F(CProblems, OperationWithoutResult_Called_HasNone) {
    Open("factory-gpt");
    kestova_remove_recovery_partition(handle_);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_NONE);
    EXPECT_EQ(LastProblem().has_result, 0);
    EXPECT_EQ(Utf8(LastProblem().operation), "RemoveRecoveryPartition");
}

TEST_F(CProblems, NullOrClosedHandle_Called_AnswersTheFailureOfTheOperation) {
    Open("factory-mbr");
    ASSERT_EQ(kestova_close(handle_), 1);
    kestova* const closed = std::exchange(handle_, nullptr);
    for (kestova* const handle : {closed, static_cast<kestova*>(nullptr)}) {
        EXPECT_EQ(kestova_set_rcvprt_active(handle), KESTOVA_SWITCH_NO_ACTIVE_PARTITION);
        const kestova_problem problem = LastProblem();
        EXPECT_EQ(problem.code, KESTOVA_PROBLEM_HANDLE);
        EXPECT_EQ(problem.has_result, 0);
        EXPECT_EQ(Utf8(problem.operation), "SetRcvprtActive");
        EXPECT_EQ(Utf8(problem.words), "the handle is null or closed");
        EXPECT_EQ(kestova_get_drive_letter(handle, 0, 2), KESTOVA_NO_LETTER);
        EXPECT_EQ(kestova_get_first_internal_drive_number(handle), -1);
        EXPECT_EQ(kestova_close(handle), 0);
        EXPECT_EQ(kestova_set_wait(handle, 1), 0);
        EXPECT_EQ(kestova_stop_waiting(handle), 0);
        EXPECT_EQ(kestova_wait(handle, 1), 0);
        EXPECT_EQ(kestova_set_log(handle, nullptr, nullptr), 0);
        EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_HANDLE);
    }
    kestova_problem problem{};
    problem.size = sizeof problem;
    EXPECT_EQ(kestova_last_problem(closed, &problem), 0);
    EXPECT_EQ(problem.code, 0);
}

TEST_F(CProblems, NullOutput_Called_IsRefusedAndNothingIsAsked) {
    Open("factory-gpt");
    Trace();
    int number = 7;
    kestova_char letter = 'Q';
    kestova_char text[4] = {9, 9, 9, 9};
    kestova_drive_info record{7, 7, 'Q'};
    const auto isRefused = [] { return LastProblem().code == KESTOVA_PROBLEM_ARGUMENT; };
    EXPECT_EQ(kestova_get_disk_style(handle_, nullptr), KESTOVA_GET_DISK_STYLE_ASKED);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_active_orvo_boot_partition(handle_, nullptr), 101);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_vista_os_info(handle_, &number, nullptr, &letter), 111);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_vista_os_info(handle_, nullptr, &number, &letter), 111);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_vista_os_info(handle_, &number, &number, nullptr), 111);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_all_encrypt_volume(handle_, nullptr, 4), 0);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_all_encrypt_volume(handle_, text, 0), 0);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_win_drive_letters(handle_, nullptr, 4), 0);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(kestova_get_win_drive_letters(handle_, &record, -1), 0);
    EXPECT_TRUE(isRefused());
    EXPECT_EQ(number, 7);
    EXPECT_EQ(letter, 'Q');
    EXPECT_THAT(text, Each(9));
    EXPECT_EQ(record.disk, 7);
    EXPECT_THAT(Trace(), testing::IsEmpty());
}

TEST_F(CProblems, AnotherThread_Fails_LeavesTheProblemOfThisOne) {
    Open("factory-mbr");
    ASSERT_EQ(kestova_get_active_partition_number(handle_), 2);
    std::thread([] { EXPECT_EQ(kestova_set_active(nullptr, 1), 1); }).join();
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_NONE);
    EXPECT_EQ(Utf8(LastProblem().operation), "GetActivePartitionNumber");
}

TEST_F(CProblems, Handle_Asked_HasWhatEndedOnItLast) {
    Open("factory-mbr");
    std::thread([this] { EXPECT_EQ(kestova_get_active_partition_number(handle_), 2); }).join();
    EXPECT_EQ(Utf8(LastProblem(handle_).operation), "GetActivePartitionNumber");
    EXPECT_EQ(LastProblem(handle_).result, 2);
    EXPECT_EQ(Utf8(LastProblem().operation), "Initialize");
}

// A caller that was built when the record was shorter.
TEST_F(CProblems, ShorterRecord_Asked_WritesNoMoreThanItsSize) {
    EXPECT_EQ(kestova_set_active(nullptr, 1), 1);
    kestova_problem problem{};
    problem.size = 8;
    problem.has_result = 77;
    EXPECT_EQ(kestova_last_problem(nullptr, &problem), 1);
    EXPECT_EQ(problem.size, 8U);
    EXPECT_EQ(problem.code, KESTOVA_PROBLEM_HANDLE);
    EXPECT_EQ(problem.has_result, 77);
    problem.size = 7;
    EXPECT_EQ(kestova_last_problem(nullptr, &problem), 0);
    EXPECT_EQ(kestova_last_problem(nullptr, nullptr), 0);
}

// One that was built when it will be longer.
TEST_F(CProblems, LongerRecord_Asked_WritesWhatThereIs) {
    struct Longer {
        kestova_problem problem;
        int more;
    } longer{{}, 77};
    longer.problem.size = sizeof longer;
    EXPECT_EQ(kestova_last_problem(nullptr, &longer.problem), 1);
    EXPECT_EQ(longer.more, 77);
}

TEST(CVersion, Asked_IsThatOfTheHeaderAndTheProject) {
    EXPECT_EQ(kestova_interface(), unsigned{KESTOVA_INTERFACE});
    EXPECT_STREQ(kestova_version(), KESTOVA_VERSION);
}

}  // namespace
