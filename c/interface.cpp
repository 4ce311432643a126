// Handles, problems, waiting and the log, as the interface has them.

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "c/handle.h"
#include "c/start.h"

using namespace c_interface;
using std::chrono::milliseconds;

namespace {

void RefuseLogFunctions() {
    if (Handle::IsOnThreadOfAny()) throw Refusal{{.code = KESTOVA_PROBLEM_BUSY}};
}

}  // namespace

kestova* KESTOVA_CALL kestova_open(void) {
    return Attempt<kestova*>(nullptr, [] {
        RefuseLogFunctions();
        EnsureSystem();
        return Open();
    });
}

int KESTOVA_CALL kestova_close(kestova* handle) {
    return Attempt(0, [&] {
        RefuseLogFunctions();
        Close(handle);
        return 1;
    });
}

int KESTOVA_CALL kestova_last_problem(kestova* handle, kestova_problem* problem) {
    constexpr unsigned int least = offsetof(kestova_problem, code) + sizeof problem->code;
    if (problem == nullptr || problem->size < least) return 0;
    kestova_problem last = LastProblem();
    try {
        if (handle != nullptr) last = Find(handle)->LastEnded();
    } catch (...) {
        return 0;
    }
    last.size = problem->size;
    std::memcpy(problem, &last, std::min<size_t>(last.size, sizeof last));
    return 1;
}

int KESTOVA_CALL kestova_set_wait(kestova* handle, unsigned int limit) {
    return Attempt(0, [&] {
        Find(handle)->SetWait(milliseconds(limit));
        return 1;
    });
}

int KESTOVA_CALL kestova_stop_waiting(kestova* handle) {
    return Attempt(0, [&] {
        Find(handle)->StopWaiting();
        return 1;
    });
}

int KESTOVA_CALL kestova_wait(kestova* handle, unsigned int limit) {
    return Attempt(0, [&] { return Find(handle)->WaitUntilFree(milliseconds(limit)) ? 1 : 0; });
}

int KESTOVA_CALL kestova_set_log(kestova* handle, kestova_log_function function, void* context) {
    return Attempt(0, [&] {
        Find(handle)->SetLog(function, context);
        return 1;
    });
}

const char* KESTOVA_CALL kestova_version(void) {
    return KESTOVA_VERSION;
}

unsigned int KESTOVA_CALL kestova_interface(void) {
    return KESTOVA_INTERFACE;
}
