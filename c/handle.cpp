#include "c/handle.h"

#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include "base/com_apartment.h"

namespace c_interface {

namespace {

thread_local bool isOnThreadOfAny = false;

}  // namespace

bool Handle::IsOnThreadOfAny() {
    return isOnThreadOfAny;
}

Handle::Handle() {
    Locked lock(mutex_);
    thread_ = std::thread([this] { Work(); });
    changed_.wait(lock, [this] { return isOpen_ || isClosing_; });
    if (isOpen_) return;
    lock.unlock();
    thread_.join();
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
}

Handle::~Handle() {
    {
        const Locked lock(mutex_);
        isClosing_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void Handle::Work() {
    isOnThreadOfAny = true;
    { const Locked started(mutex_); }  // the thread's own name is stored
    try {
        const ComApartment com;
        if (SUCCEEDED(com.Result())) {
            Kestova object;
            CLoggingFactory::GetInstance().AddSink(*this);
            RunJobs(object);
            CLoggingFactory::GetInstance().RemoveSink(*this);
        }
    } catch (...) {
        // It is not open, which is all that its maker is told.
    }
    const Locked lock(mutex_);
    isClosing_ = true;
    changed_.notify_all();
}

void Handle::RunJobs(Kestova& object) {
    Locked lock(mutex_);
    isOpen_ = true;
    changed_.notify_all();
    while (true) {
        changed_.wait(lock, [this] { return job_ != nullptr || isClosing_; });
        if (job_ == nullptr) return;
        logOfCall_ = log_;
        logContextOfCall_ = logContext_;
        lock.unlock();
        const kestova_problem problem = RunJob(*job_, object);
        lock.lock();
        ended_ = problem;
        job_->problem = problem;
        job_->hasEnded = true;
        job_ = nullptr;
        isAbandoned_ = false;
        changed_.notify_all();
    }
}

kestova_problem Handle::RunJob(Job& job, Kestova& object) noexcept {
    lastError_.clear();
    try {
        Problem problem = job.Run(object);
        problem.record = lastError_;
        return Shown(problem);
    } catch (...) {
        Problem problem = Caught();
        problem.operation = job.Name();
        return Shown(problem);
    }
}

template <typename Condition>
bool Handle::Await(Locked& lock, const std::optional<Clock::time_point>& until, const Condition& condition) {
    const auto ends = [&, before = stops_] { return condition() || stops_ != before; };
    if (until) {
        changed_.wait_until(lock, *until, ends);
    } else {
        changed_.wait(lock, ends);
    }
    return condition();
}

kestova_problem Handle::Run(const std::shared_ptr<Job>& job) {
    const kestova_problem busy = Shown({.code = KESTOVA_PROBLEM_BUSY, .operation = job->Name()});
    if (IsOnThreadOfAny()) return busy;
    Locked lock(mutex_);
    std::optional<Clock::time_point> until;
    if (limit_.count() > 0) until = Clock::now() + limit_;
    if (!Await(lock, until, [this] { return job_ == nullptr || isAbandoned_; }) || isAbandoned_) return busy;
    job_ = job;
    changed_.notify_all();
    if (Await(lock, until, [&] { return job->hasEnded; })) return job->problem;
    isAbandoned_ = true;
    changed_.notify_all();
    return Shown({.code = KESTOVA_PROBLEM_STOPPED, .operation = job->Name()});
}

void Handle::SetWait(std::chrono::milliseconds limit) {
    const Locked lock(mutex_);
    limit_ = limit;
}

void Handle::StopWaiting() {
    const Locked lock(mutex_);
    ++stops_;
    changed_.notify_all();
}

bool Handle::WaitUntilFree(std::chrono::milliseconds limit) {
    Locked lock(mutex_);
    return Await(lock, Clock::now() + limit, [this] { return job_ == nullptr; });
}

void Handle::SetLog(kestova_log_function function, void* context) {
    const Locked lock(mutex_);
    log_ = function;
    logContext_ = context;
}

kestova_problem Handle::LastEnded() {
    const Locked lock(mutex_);
    return ended_;
}

void Handle::Write(const LogEntry& entry) {
    if (!IsOwnThread()) return;
    const std::basic_string<WCHAR> text = entry.Text();
    if (entry.level == LOG_LEVEL_ERROR) lastError_ = text;
    if (logOfCall_ == nullptr) return;
    std::vector<kestova_char> units(text.begin(), text.end());
    units.push_back(0);
    logOfCall_(logContextOfCall_, entry.level, units.data());
}

namespace {

// Not freed when the program ends: Windows has ended the threads of handles by then, for which closing them
// would wait.
struct OpenHandles {
    std::mutex mutex;
    std::map<const kestova*, std::shared_ptr<Handle>> handles;
};

OpenHandles& AllOpen() {
    static OpenHandles& all = *new OpenHandles;
    return all;
}

}  // namespace

kestova* Open() {
    const auto handle = std::make_shared<Handle>();
    auto* const name = reinterpret_cast<kestova*>(handle.get());
    const std::scoped_lock lock(AllOpen().mutex);
    AllOpen().handles.emplace(name, handle);
    return name;
}

std::shared_ptr<Handle> Find(const kestova* handle, std::string_view operation) {
    const std::scoped_lock lock(AllOpen().mutex);
    const auto found = AllOpen().handles.find(handle);
    if (found == AllOpen().handles.end())
        throw Refusal{{.code = KESTOVA_PROBLEM_HANDLE, .operation = operation}};
    return found->second;
}

void Close(const kestova* handle) {
    const std::shared_ptr<Handle> closed = Find(handle);  // destroyed without the lock: it may wait for long
    const std::scoped_lock lock(AllOpen().mutex);
    AllOpen().handles.erase(handle);
}

bool AnyOpen() {
    const std::scoped_lock lock(AllOpen().mutex);
    return !AllOpen().handles.empty();
}

}  // namespace c_interface
