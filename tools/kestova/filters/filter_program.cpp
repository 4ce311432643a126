#include "tools/kestova/filters/filter_program.h"

#include <asm/ioctls.h>
#include <asm/termbits.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <seccomp.h>
#include <sys/mman.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "tools/kestova/process/system_calls.h"

namespace {

using Filter = std::unique_ptr<void, decltype(&seccomp_release)>;

// libseccomp answers with negative numbers of errors.
void Check(int answer) {
    if (answer < 0) throw std::system_error(-answer, std::generic_category(), "the filter of system calls");
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
            return {With(0, call == SCMP_SYS(prlimit64) ? 0 : anyProcess)};
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

// What libseccomp writes into a file.
std::vector<sock_filter> Instructions(scmp_filter_ctx filter) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);
    if (!file) Check(-errno);
    Check(seccomp_export_bpf(filter, fileno(file.get())));
    std::rewind(file.get());
    std::vector<sock_filter> instructions;
    for (sock_filter one = {}; std::fread(&one, sizeof one, 1, file.get()) == 1;)
        instructions.push_back(one);
    return instructions;
}

}  // namespace

std::vector<sock_filter> FilterProgram(std::span<const AllowedCall> calls) {
    const Filter filter(seccomp_init(SCMP_ACT_TRAP), seccomp_release);
    if (!filter) Check(-ENOMEM);
    // A search by halves instead of one call after the other.
    Check(seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2));
    for (const AllowedCall& allowed : calls) {
        const int call = seccomp_syscall_resolve_name(allowed.name);
        if (call >= 0) Check(Allow(filter.get(), call, allowed.only));
    }
    return Instructions(filter.get());
}
