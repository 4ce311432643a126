// Threads, waiting, and the log function, which holds a call where a test wants it.

#include <gmock/gmock.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "tests/c/interface.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr unsigned int forever = 600'000;  // milliseconds; no test waits so long

// A door in the log function: the first record, or one after it, waits there until it is opened.
class Door {
  public:
    int before = 0;  // records that pass it before it is closed

    static void KESTOVA_CALL Pass(void* door, int, const kestova_char*) { static_cast<Door*>(door)->Wait(); }

    // Returns when somebody stands before it.
    void AwaitSomebody() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isSomebodyThere_; });
    }
    void Open() {
        const std::scoped_lock lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }

  private:
    void Wait() {
        std::unique_lock lock(mutex_);
        if (before-- > 0) return;
        isSomebodyThere_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return isOpen_; });
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isSomebodyThere_ = false;
    bool isOpen_ = false;
};

class CWaiting : public CInterfaceTest {
  protected:
    CWaiting() { Open("factory-mbr"); }

    void CloseDoor() { EXPECT_EQ(kestova_set_log(handle_, Door::Pass, &door_), 1); }

    Door door_;
};

TEST_F(CWaiting, CallerToldToStop_Switch_RunsToItsEndAndTheHandleIsBusyUntilThen) {
    CloseDoor();
    std::thread caller([this] {
        EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_NO_ACTIVE_PARTITION);
        EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_STOPPED);
        EXPECT_EQ(LastProblem().has_result, 0);
    });
    door_.AwaitSomebody();
    EXPECT_EQ(kestova_stop_waiting(handle_), 1);
    caller.join();

    EXPECT_EQ(kestova_get_active_partition_number(handle_), -1);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_BUSY);
    EXPECT_EQ(kestova_wait(handle_, 1), 0);
    EXPECT_EQ(Utf8(LastProblem(handle_).operation), "Initialize");

    door_.Open();
    EXPECT_EQ(kestova_wait(handle_, forever), 1);
    const kestova_problem ended = LastProblem(handle_);
    EXPECT_EQ(Utf8(ended.operation), "SetRcvprtActive");
    EXPECT_EQ(ended.code, KESTOVA_PROBLEM_NONE);
    EXPECT_EQ(ended.result, KESTOVA_SWITCH_DONE);
    EXPECT_EQ(kestova_get_active_partition_number(handle_), 1);
}

TEST_F(CWaiting, WaitLimitPassed_Question_LeavesTheCallersOutputAlone) {
    door_.before = 1;  // the operation has begun, and has set its output to unknown
    CloseDoor();
    ASSERT_EQ(kestova_set_wait(handle_, 1), 1);
    int style = 77;
    EXPECT_EQ(kestova_get_disk_style(handle_, &style), KESTOVA_GET_DISK_STYLE_ASKED);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_STOPPED);
    door_.Open();
    ASSERT_EQ(kestova_wait(handle_, forever), 1);
    EXPECT_EQ(style, 77);

    ASSERT_EQ(kestova_set_wait(handle_, 0), 1);
    EXPECT_EQ(kestova_get_disk_style(handle_, &style), KESTOVA_GET_DISK_STYLE_ASKED);
    EXPECT_EQ(style, KESTOVA_STYLE_MBR);
}

TEST_F(CWaiting, SecondCaller_ToldToStop_HasNotBegun) {
    CloseDoor();
    std::thread first([this] { kestova_get_active_partition_number(handle_); });
    door_.AwaitSomebody();
    ASSERT_EQ(kestova_set_wait(handle_, 1), 1);
    EXPECT_EQ(kestova_set_active(handle_, 1), 1);
    EXPECT_EQ(LastProblem().code, KESTOVA_PROBLEM_BUSY);
    door_.Open();
    first.join();
    EXPECT_EQ(kestova_set_wait(handle_, 0), 1);
    EXPECT_EQ(kestova_get_active_partition_number(handle_), 2);
}

TEST_F(CWaiting, BusyHandle_Closed_IsDestroyedAfterTheCall) {
    CloseDoor();
    ASSERT_EQ(kestova_set_wait(handle_, 1), 1);
    kestova_set_rcvprt_active(handle_);
    ASSERT_EQ(LastProblem().code, KESTOVA_PROBLEM_STOPPED);
    std::thread opener([this] { door_.Open(); });
    EXPECT_EQ(kestova_close(std::exchange(handle_, nullptr)), 1);
    opener.join();
    EXPECT_THAT(Trace(), Contains(HasSubstr("SetRcvprtActive\t\tEnd. Return 0")));
}

// Each record that the library wrote, in order, and nothing of another handle.
class CLog : public CInterfaceTest {
  protected:
    static void KESTOVA_CALL Keep(void* log, int level, const kestova_char* text) {
        static_cast<std::vector<std::string>*>(log)->push_back(std::to_string(level) + " " + Utf8(text));
    }
};

TEST_F(CLog, TwoHandles_Switch_GivesEachItsOwnRecords) {
    Open("factory-mbr");
    kestova* const other = kestova_open();
    std::vector<std::string> ofHandle;
    std::vector<std::string> ofOther;
    ASSERT_EQ(kestova_set_log(handle_, Keep, &ofHandle), 1);
    ASSERT_EQ(kestova_set_log(other, Keep, &ofOther), 1);
    EXPECT_EQ(kestova_is_dynamic(other), 0);
    EXPECT_FALSE(ofOther.empty());
    ofOther.clear();
    Trace();
    EXPECT_EQ(kestova_set_rcvprt_active(handle_), KESTOVA_SWITCH_DONE);
    std::vector<std::string> written;
    for (const std::string& line : Trace()) {
        if (line.starts_with("log ")) written.push_back(line.substr(4, 1) + line.substr(6));
    }
    EXPECT_EQ(ofHandle, written);
    EXPECT_FALSE(written.empty());
    EXPECT_TRUE(ofOther.empty());

    ofHandle.clear();
    ASSERT_EQ(kestova_set_log(handle_, nullptr, nullptr), 1);
    EXPECT_EQ(kestova_is_dynamic(handle_), 0);
    EXPECT_TRUE(ofHandle.empty());
    EXPECT_EQ(kestova_close(other), 1);
}

// The answers of calls that a log function makes.
struct Answers {
    kestova* handle;
    std::vector<int> answers;
};

void KESTOVA_CALL CallBack(void* context, int, const kestova_char*) {
    auto& [handle, answers] = *static_cast<Answers*>(context);
    if (!answers.empty()) return;
    answers = {kestova_set_active(handle, 1), LastProblem().code, kestova_close(handle), LastProblem().code,
               kestova_open() != nullptr,     LastProblem().code};
}

// Any of them would wait for records that wait for the log function's end.
TEST_F(CLog, LogFunction_CallsItsOwnOrAnotherHandle_IsRefused) {
    Open("factory-mbr");
    kestova* const other = kestova_open();
    for (kestova* const called : {handle_, other}) {
        Answers answers{called, {}};
        ASSERT_EQ(kestova_set_log(handle_, CallBack, &answers), 1);
        EXPECT_EQ(kestova_get_active_partition_number(handle_), 2);
        EXPECT_THAT(answers.answers,
                    ElementsAre(1, KESTOVA_PROBLEM_BUSY, 0, KESTOVA_PROBLEM_BUSY, 0, KESTOVA_PROBLEM_BUSY));
    }
    ASSERT_EQ(kestova_set_log(handle_, nullptr, nullptr), 1);
    EXPECT_EQ(kestova_close(other), 1);
}

class CThreads : public CInterfaceTest {};

TEST_F(CThreads, ManyThreads_OnOneHandle_EachHasItsOwnAnswer) {
    Open("factory-mbr");
    std::vector<std::thread> threads;
    for (int partition = 1; partition <= 4; ++partition) {
        threads.emplace_back([this, partition] {
            const kestova_char expected[] = {0, '0', 'C', 'D', '0'};
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(kestova_get_drive_letter(handle_, 0, partition), expected[partition]) << partition;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(CThreads, ManyHandles_EachOnItsThread_TranslateLettersOneAfterTheOther) {
    Open("winpe-media");
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([] {
            kestova* const handle = kestova_open();
            EXPECT_EQ(kestova_initialize(handle, 0), 1);
            for (int turn = 0; turn < 5; ++turn) {
                kestova_drive_info records[26] = {};
                EXPECT_EQ(kestova_get_win_drive_letters(handle, records, 26), 1);
                EXPECT_EQ(records[0].letter, 'C');
            }
            EXPECT_EQ(kestova_close(handle), 1);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    int running = 0;
    for (const std::string& line : Trace()) {
        if (line.find("GetWinDriveLetters\t\tStart") != std::string::npos) ++running;
        if (line.find("GetWinDriveLetters\t\tEnd") != std::string::npos) --running;
        EXPECT_LE(running, 1);
    }
    EXPECT_EQ(running, 0);
}

}  // namespace
