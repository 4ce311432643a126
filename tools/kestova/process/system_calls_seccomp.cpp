#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <seccomp.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/process/system_calls.h"

namespace {

using Filter = std::unique_ptr<void, decltype(&seccomp_release)>;

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

// Whether none of these bits is set in an argument.
scmp_arg_cmp Without(unsigned argument, int bits) {
    return {argument, SCMP_CMP_MASKED_EQ, static_cast<scmp_datum_t>(bits), 0};
}

scmp_arg_cmp With(unsigned argument, scmp_datum_t value) {
    return {argument, SCMP_CMP_EQ, value, 0};
}

// Each of them allows the call.
std::vector<scmp_arg_cmp> Conditions(int call, Only only) {
    switch (only) {
        case Only::Any:
            break;
        case Only::Reading:
            return {Without(call == SCMP_SYS(openat) ? 2 : 1, O_ACCMODE | O_CREAT | O_TRUNC)};
        case Only::WithoutCode:
            return {Without(2, PROT_EXEC)};
        case Only::AskingTerminal:
            return {With(1, TCGETS), With(1, TCGETS2), With(1, TIOCGWINSZ)};
        case Only::RereadingTable:
            return {With(1, BLKRRPART)};
        case Only::OwnProcess:
            // prlimit64 has 0 for it.
            return {With(0, call == SCMP_SYS(prlimit64) ? 0 : static_cast<scmp_datum_t>(getpid()))};
    }
    return {};
}

// A call that is allowed already, with more arguments, is no failure.
int WithoutDuplicate(int error) {
    return error == -EEXIST ? 0 : error;
}

int Allow(scmp_filter_ctx filter, int call, Only only) {
    if (only == Only::Any)
        return WithoutDuplicate(seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 0, nullptr));
    for (const scmp_arg_cmp& condition : Conditions(call, only)) {
        const int error =
            WithoutDuplicate(seccomp_rule_add_array(filter, SCMP_ACT_ALLOW, call, 1, &condition));
        if (error != 0) return error;
    }
    return 0;
}

// Kernels and sandboxes without filters.
bool AreFiltersMissing(int error) {
    return error == -EINVAL || error == -ENOSYS || error == -EFAULT || error == -EOPNOTSUPP;
}

}  // namespace

bool FiltersSystemCalls() {
    return true;
}

void AllowOnly(const std::vector<AllowedCall>& calls) {
    const auto check = [](int error) {
        if (error != 0)
            throw Failed(std::string("system calls cannot be given up: ") + std::strerror(-error));
    };
    const Filter filter(seccomp_init(SCMP_ACT_TRAP), seccomp_release);
    if (!filter) check(-ENOMEM);
    // The kernel's own error, which says whether it has filters at all.
    check(seccomp_attr_set(filter.get(), SCMP_FLTATR_API_SYSRAWRC, 1));
    for (const AllowedCall& allowed : calls) {
        const int call = seccomp_syscall_resolve_name(allowed.name);
        if (call >= 0) check(Allow(filter.get(), call, allowed.only));
    }
    HandleRefusals();
    const int error = seccomp_load(filter.get());
    if (!AreFiltersMissing(error)) check(error);
}
