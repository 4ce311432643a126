#include "tools/kestova/process/kept_calls.h"

#include <linux/capability.h>

#include <iterator>

namespace {

constexpr uint64_t noCapability = 0;
// To make and rename files in folders of any owner, as the one that the program is started by may.
constexpr uint64_t fileCapabilities =
    uint64_t{1} << CAP_DAC_OVERRIDE | uint64_t{1} << CAP_DAC_READ_SEARCH | uint64_t{1} << CAP_FOWNER;

// All work: reading what is open, memory, time, output, the end.
constexpr AllowedCall reading[] = {{"read"},
                                   {"readv"},
                                   {"pread64"},
                                   {"preadv"},
                                   {"write"},
                                   {"writev"},
                                   {"lseek"},
                                   {"_llseek"},
                                   {"close"},
                                   {"fstat"},
                                   {"fstat64"},
                                   {"newfstatat"},
                                   {"fstatat64"},
                                   {"stat"},
                                   {"stat64"},
                                   {"lstat"},
                                   {"lstat64"},
                                   {"statx"},
                                   {"fadvise64"},
                                   {"fcntl"},
                                   {"fcntl64"},
                                   {"ioctl", Only::AskingTerminal},
                                   {"brk"},
                                   {"mmap", Only::WithoutCode},
                                   {"mmap2", Only::WithoutCode},
                                   {"mprotect", Only::WithoutCode},
                                   {"mremap"},
                                   {"munmap"},
                                   {"madvise"},
                                   {"futex"},
                                   {"futex_time64"},
                                   {"rt_sigaction"},
                                   {"rt_sigprocmask"},
                                   {"rt_sigpending"},
                                   {"rt_sigreturn"},
                                   {"sigreturn"},
                                   {"clock_gettime"},
                                   {"clock_gettime64"},
                                   {"clock_getres"},
                                   {"gettimeofday"},
                                   {"time"},
                                   {"getrandom"},
                                   {"getpid"},
                                   {"gettid"},
                                   {"getuid"},
                                   {"geteuid"},
                                   {"getgid"},
                                   {"getegid"},
                                   {"tgkill", Only::OwnProcess},
                                   {"sched_yield"},
                                   {"restart_syscall"},
                                   {"uname"},
                                   {"sysinfo"},
                                   {"prlimit64", Only::OwnProcess},
                                   {"getrlimit"},
                                   {"getcwd"},
                                   {"readlink"},
                                   {"readlinkat"},
                                   {"memfd_create"},
                                   {"openat", Only::Reading},
                                   {"open", Only::Reading},
                                   {"poll"},
                                   {"ppoll"},
                                   {"ppoll_time64"},
                                   {"exit"},
                                   {"exit_group"}};

// Writing images, and the journal beside them, which is made, named and deleted for each change.
constexpr AllowedCall writing[] = {{"pwrite64"},  {"pwritev"},    {"fsync"},    {"fdatasync"},
                                   {"openat"},    {"open"},       {"rename"},   {"renameat"},
                                   {"renameat2"}, {"unlink"},     {"unlinkat"}, {"access"},
                                   {"faccessat"}, {"faccessat2"}, {"statfs"},   {"fstatfs"}};

// Disks of this computer, whose table the kernel then reads again, for those who administer it.
constexpr AllowedCall disks[] = {{"ioctl", Only::RereadingTable}};

// Virtual disks, over the connection to the program that opens them.
constexpr AllowedCall virtualDisks[] = {{"recvfrom"}, {"recv"}, {"sendto"}, {"send"}, {"shutdown"}};

// --save: a new file in a folder that is open.
constexpr AllowedCall saving[] = {{"fsync"},    {"openat"}, {"renameat"}, {"renameat2"},
                                  {"unlinkat"}, {"fchmod"}, {"umask"}};

// Until the files are open.
constexpr AllowedCall opening[] = {
    {"ioctl"},     {"openat"},    {"open"},      {"access"},     {"faccessat"}, {"faccessat2"}, {"flock"},
    {"statfs"},    {"fstatfs"},   {"ftruncate"}, {"getdents64"}, {"mkdir"},     {"mkdirat"},    {"setresuid"},
    {"setresgid"}, {"setgroups"}, {"setuid"},    {"setgid"},     {"capget"},    {"capset"},     {"prctl"},
    {"seccomp"},   {"setrlimit"}, {"sendmsg"},   {"recvmsg"},    {"getsockopt"}};

#ifdef KESTOVA_INSTRUMENTED
// What sanitizers and the measurement of coverage do in the end.
constexpr AllowedCall instrumented[] = {{"openat"},
                                        {"open"},
                                        {"readlink"},
                                        {"mkdir"},
                                        {"access"},
                                        {"getdents64"},
                                        {"clone"},
                                        {"clone3"},
                                        {"ptrace"},
                                        {"wait4"},
                                        {"prctl"},
                                        {"process_vm_readv"},
                                        {"getppid"},
                                        {"getdents"},
                                        {"dup2"},
                                        {"pipe"},
                                        {"nanosleep"},
                                        {"clock_nanosleep"},
                                        {"sched_getaffinity"},
                                        {"sigaltstack"},
                                        {"set_robust_list"},
                                        {"rseq"},
                                        {"kill"},
                                        {"tkill"},
                                        {"mincore"},
                                        {"pipe2"},
                                        {"ftruncate"},
                                        {"mmap"},
                                        {"mprotect"},
                                        {"dup"},
                                        {"socket"}};
#endif

constexpr Kept table[] = {
    {[](const ConfinedWork&) { return true; }, false, noCapability, reading},
    {[](const ConfinedWork& work) { return work.writesImages; }, true, fileCapabilities, writing},
    {[](const ConfinedWork& work) { return work.writesDisks; }, true, uint64_t{1} << CAP_SYS_ADMIN, disks},
    {[](const ConfinedWork& work) { return work.imageBytes > 0; }, false, noCapability, virtualDisks},
    {[](const ConfinedWork& work) { return work.saves; }, true, fileCapabilities, saving},
    {nullptr, true, ~noCapability, opening},
#ifdef KESTOVA_INSTRUMENTED
    {[](const ConfinedWork&) { return true; }, false, noCapability, instrumented},
#endif
};

}  // namespace

std::span<const Kept> KeptByWork() {
    return table;
}

KeptRows RowsAtStart() {
    return (KeptRows{1} << std::size(table)) - 1;
}

KeptRows RowsOf(const ConfinedWork& work) {
    KeptRows rows = 0;
    for (size_t i = 0; i < std::size(table); ++i)
        if (table[i].applies != nullptr && table[i].applies(work)) rows |= KeptRows{1} << i;
    return rows;
}
