#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <map>
#include <string_view>
#include <vector>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/transfer.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/process/interruption.h"
#include "tools/kestova/survey/workers.h"

namespace {

using machine::Descriptor;
using Clock = std::chrono::steady_clock;

// More than this is no answer, and would fill the memory.
constexpr size_t largestAnswer = size_t{64} << 20;

struct Worker {
    size_t task = 0;
    pid_t process = -1;
    Descriptor answering = {};
    Clock::time_point until = {};
    std::string answer = {};
    const char* ended = nullptr;  // why this program ended it; null unless it did
};

// An answer is a whole line, so that a part of one is noticed.
[[noreturn]] void Work(const std::function<std::string(size_t)>& work, size_t task,
                       const Descriptor& answering, pid_t program, bool mayBeEnded) {
    const int null = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(null, STDIN_FILENO);  // nobody is there to be asked
    setpgid(0, 0);             // a terminal's signals are for the program that waits
    ForgetInterruption();
    if (mayBeEnded) prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != program) _exit(Failure);  // it ended before that
    try {
        _exit(machine::WriteAll(answering.Number(), work(task)) ? Done : Failure);
    } catch (...) {
        _exit(Failure);
    }
}

std::string HowItEnded(int status) {
    if (WIFSIGNALED(status))
        return "its worker was ended by signal " + std::to_string(WTERMSIG(status)) + " (" +
               strsignal(WTERMSIG(status)) + ")";
    return "its worker ended with status " + std::to_string(WEXITSTATUS(status)) + " before it had answered";
}

class Pool {
  public:
    Pool(size_t tasks, const WorkerLimits& limits, const std::function<std::string(size_t)>& work,
         const std::function<void(size_t, const WorkerEnd&)>& take)
        : tasks_(tasks), limits_(limits), work_(work), take_(take) {}
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    void Run();

  private:
    bool MayStart() const;
    void Start();
    void Wait();
    bool Read(Worker& worker);
    void EndLate();
    void End(Worker& worker);
    void TakeInOrder();

    size_t tasks_;
    const WorkerLimits& limits_;
    const std::function<std::string(size_t)>& work_;
    const std::function<void(size_t, const WorkerEnd&)>& take_;
    std::vector<Worker> workers_;
    size_t started_ = 0;
    size_t taken_ = 0;
    std::map<size_t, WorkerEnd> waiting_;  // for the end of an earlier task
};

// A change of an image comes to its end.
Pool::~Pool() {
    for (const Worker& worker : workers_) {
        if (limits_.mayBeEnded) kill(worker.process, SIGKILL);
        waitpid(worker.process, nullptr, 0);
    }
}

bool Pool::MayStart() const {
    constexpr size_t aheadOfEachWorker = 16;
    return started_ < tasks_ && workers_.size() < limits_.atOnce &&
           started_ < taken_ + limits_.atOnce * aheadOfEachWorker;
}

void Pool::Start() {
    std::array<int, 2> ends = {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw Failed(std::string("no worker can be started: ") + strerror(errno));
    Worker worker{.task = started_, .answering = Descriptor(ends[0]), .until = Clock::now() + limits_.time};
    const Descriptor answering(ends[1]);
    const pid_t program = getpid();
    worker.process = fork();
    if (worker.process < 0) throw Failed(std::string("no worker can be started: ") + strerror(errno));
    if (worker.process == 0) Work(work_, worker.task, answering, program, limits_.mayBeEnded);
    workers_.push_back(std::move(worker));
    ++started_;
}

// False at the end of what it writes.
bool Pool::Read(Worker& worker) {
    std::array<char, 65536> bytes;
    const ssize_t count = read(worker.answering.Number(), bytes.data(), bytes.size());
    if (count <= 0) return count < 0 && errno == EINTR;
    worker.answer.append(bytes.data(), static_cast<size_t>(count));
    if (worker.answer.size() <= largestAnswer) return true;
    worker.ended = "its answer is larger than 64 MiB";
    return false;
}

// What it has not written by then it never writes.
void Pool::End(Worker& worker) {
    kill(worker.process, SIGKILL);
    int status = 0;
    waitpid(worker.process, &status, 0);
    WorkerEnd end;
    if (worker.ended != nullptr) {
        end.problem = worker.ended;
    } else if (worker.answer.ends_with('\n')) {
        end.answer = std::move(worker.answer);
    } else {
        end.problem = HowItEnded(status);
    }
    waiting_.emplace(worker.task, std::move(end));
    worker.process = -1;
}

void Pool::EndLate() {
    const Clock::time_point now = Clock::now();
    for (Worker& worker : workers_) {
        if (now < worker.until) continue;
        worker.ended = limits_.mayBeEnded
                           ? "its worker took longer than --time-limit allows"
                           : "its worker took longer than --time-limit allows; if it left a journal, "
                             "`kestova recover` takes back what it was changing, or finishes it";
        End(worker);
    }
}

// For an answer, the end of a worker, its time, or a signal to this program, which does not end the waiting.
void Pool::Wait() {
    constexpr int milliseconds = 100;
    std::vector<pollfd> polled;
    for (const Worker& worker : workers_)
        polled.push_back({.fd = worker.answering.Number(), .events = POLLIN, .revents = 0});
    poll(polled.data(), polled.size(), milliseconds);
    for (size_t i = 0; i < polled.size(); ++i) {
        if (polled[i].revents != 0 && !Read(workers_[i])) End(workers_[i]);
    }
    std::erase_if(workers_, [](const Worker& worker) { return worker.process < 0; });
    EndLate();
    std::erase_if(workers_, [](const Worker& worker) { return worker.process < 0; });
}

void Pool::TakeInOrder() {
    for (auto next = waiting_.begin(); next != waiting_.end() && next->first == taken_;
         next = waiting_.begin()) {
        const WorkerEnd end = std::move(next->second);
        waiting_.erase(next);
        take_(taken_++, end);
    }
}

void Pool::Run() {
    while (taken_ < tasks_) {
        StopIfInterrupted();
        while (MayStart())
            Start();
        Wait();
        TakeInOrder();
    }
}

}  // namespace

void RequireWorkers() {}

void RunInWorkers(size_t tasks, const WorkerLimits& limits, const std::function<std::string(size_t)>& work,
                  const std::function<void(size_t, const WorkerEnd&)>& take) {
    Pool(tasks, limits, work, take).Run();
}
