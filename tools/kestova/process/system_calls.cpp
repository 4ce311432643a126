#include "tools/kestova/process/system_calls.h"

#include <linux/seccomp.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "tools/kestova/common/errors.h"

namespace {

// Functions that a signal handler may call, only.
void Say(std::string_view text) {
    if (write(STDERR_FILENO, text.data(), text.size()) < 0) return;
}

void SayNumber(unsigned number) {
    char digits[10];
    size_t at = sizeof digits;
    do {
        digits[--at] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0);
    Say({digits + at, sizeof digits - at});
}

void RefuseCall(int, siginfo_t* info, void*) {
    Say("kestova: ended, because it was about to make a system call that it has given up (number ");
    SayNumber(static_cast<unsigned>(info->si_syscall));
    Say(")\n");
    _exit(Failure);
}

void HandleRefusals() {
    struct sigaction action = {};
    action.sa_sigaction = RefuseCall;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSYS, &action, nullptr);
}

// Kernels and sandboxes without filters.
bool AreFiltersMissing(int error) {
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

[[noreturn]] void FailFor(const char* reason) {
    throw Failed(std::string("system calls cannot be given up: ") + reason);
}

}  // namespace

bool FiltersSystemCalls() {
    return !SystemCallFilter(RowsAtStart()).empty();
}

void AllowOnly(std::span<const sock_filter> filter) {
    if (!FiltersSystemCalls()) return;
    if (filter.empty()) FailFor("no filter was made for this work");
    std::vector<sock_filter> instructions(filter.begin(), filter.end());
    for (sock_filter& instruction : instructions)
        if (instruction.k == anyProcess) instruction.k = static_cast<uint32_t>(getpid());
    HandleRefusals();
    sock_fprog program = {static_cast<unsigned short>(instructions.size()), instructions.data()};
    if (syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) != 0 && !AreFiltersMissing(errno))
        FailFor(std::strerror(errno));
}
