// A handle of the C interface: an object of the class on a thread of its own.
#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "c/problem.h"
#include "logging/logging.h"
#include "manager/kestova.h"

namespace c_interface {

// One call of an operation. It belongs to the caller and to the thread that makes it: the one who needs it
// longer keeps it.
class Job {
  public:
    explicit Job(const char* operation) : operation_(operation) {}
    virtual ~Job() = default;
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    const char* Name() const { return operation_; }
    // Makes the call, on the handle's thread, and says what became of it. May throw.
    virtual Problem Run(Kestova& object) = 0;

    bool hasEnded = false;
    kestova_problem problem{};

  private:
    const char* operation_;
};

class Handle final : private ILogSink {
  public:
    // Starts the thread and makes the object. Throws std::system_error if that fails.
    Handle();
    // Waits for the call that is running.
    ~Handle();
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    // Runs the job when its turn has come, and waits for its end. BUSY: it was not begun. STOPPED: it runs
    // on, and nobody waits for it.
    kestova_problem Run(const std::shared_ptr<Job>& job);

    void SetWait(std::chrono::milliseconds limit);
    void StopWaiting();
    // Whether no call is running then.
    bool WaitUntilFree(std::chrono::milliseconds limit);
    void SetLog(kestova_log_function function, void* context);
    kestova_problem LastEnded();
    // Whether the calling thread is that of any handle, and so runs a log function. Records of other handles
    // wait for its end: a call that waits for one of them would never end.
    static bool IsOnThreadOfAny();

  private:
    using Clock = std::chrono::steady_clock;
    using Locked = std::unique_lock<std::mutex>;

    bool IsOwnThread() const { return std::this_thread::get_id() == thread_.get_id(); }
    void Write(const LogEntry& entry) override;
    void Work();
    void RunJobs(Kestova& object);
    kestova_problem RunJob(Job& job, Kestova& object) noexcept;
    // Waits for that, until the time, or until the callers are told to stop. Whether it came true.
    template <typename Condition>
    bool Await(Locked& lock, const std::optional<Clock::time_point>& until, const Condition& condition);

    std::mutex mutex_;  // of all that follows
    std::condition_variable changed_;
    std::chrono::milliseconds limit_{0};
    std::shared_ptr<Job> job_;  // null if the handle is free
    bool isAbandoned_ = false;  // nobody waits for the job
    uint64_t stops_ = 0;        // how often callers were told to stop
    bool isOpen_ = false;       // the object is made
    bool isClosing_ = false;
    kestova_problem ended_{};  // the last job that did
    kestova_log_function log_ = nullptr;
    void* logContext_ = nullptr;

    // Of the running call, on the handle's thread alone.
    kestova_log_function logOfCall_ = nullptr;
    void* logContextOfCall_ = nullptr;
    std::basic_string<WCHAR> lastError_;

    std::thread thread_;  // the last member: it uses the others
};

// Makes a handle that Find finds.
kestova* Open();
// Throws Refusal, for the operation, if it is not open.
std::shared_ptr<Handle> Find(const kestova* handle, std::string_view operation = {});
// Destroys it when nobody uses it any more.
void Close(const kestova* handle);
bool AnyOpen();

}  // namespace c_interface
