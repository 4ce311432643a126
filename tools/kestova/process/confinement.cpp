#include "tools/kestova/process/confinement.h"

#include <grp.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "tools/kestova/common/errors.h"
#include "tools/kestova/process/system_calls.h"

namespace {

// --- what each kind of work keeps ---

constexpr uint64_t noCapability = 0;
// To make and rename files in folders of any owner, as the one that the program is started by may.
constexpr uint64_t fileCapabilities =
    uint64_t{1} << CAP_DAC_OVERRIDE | uint64_t{1} << CAP_DAC_READ_SEARCH | uint64_t{1} << CAP_FOWNER;

struct Kept {
    bool (*applies)(const ConfinedWork& work);  // null: only until the files are open
    bool keepsUser;                             // started by sudo, it stays root
    uint64_t capabilities;                      // of root
    std::vector<AllowedCall> calls;
};

const std::vector<Kept>& KeptByWork() {
    static const std::vector<Kept> rows = {
        // All work: reading what is open, memory, time, output, the end.
        {[](const ConfinedWork&) { return true; },
         false,
         noCapability,
         {{"read"},
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
          {"exit_group"}}},
        // Writing images, and the journal beside them, which is made, named and deleted for each change.
        {[](const ConfinedWork& work) { return work.writesImages; },
         true,
         fileCapabilities,
         {{"pwrite64"},
          {"pwritev"},
          {"fsync"},
          {"fdatasync"},
          {"openat"},
          {"open"},
          {"rename"},
          {"renameat"},
          {"renameat2"},
          {"unlink"},
          {"unlinkat"},
          {"access"},
          {"faccessat"},
          {"faccessat2"},
          {"statfs"},
          {"fstatfs"}}},
        // Disks of this computer, whose table the kernel then reads again, for those who administer it.
        {[](const ConfinedWork& work) { return work.writesDisks; },
         true,
         uint64_t{1} << CAP_SYS_ADMIN,
         {{"ioctl", Only::RereadingTable}}},
        // Virtual disks, over the connection to the program that opens them.
        {[](const ConfinedWork& work) { return work.imageBytes > 0; },
         false,
         noCapability,
         {{"recvfrom"}, {"recv"}, {"sendto"}, {"send"}, {"shutdown"}}},
        // --save: a new file in a folder that is open.
        {[](const ConfinedWork& work) { return work.saves; },
         true,
         fileCapabilities,
         {{"fsync"}, {"openat"}, {"renameat"}, {"renameat2"}, {"unlinkat"}, {"fchmod"}, {"umask"}}},
        // Until the files are open.
        {nullptr, true, ~noCapability, {{"ioctl"},     {"openat"},     {"open"},       {"access"},
                                        {"faccessat"}, {"faccessat2"}, {"flock"},      {"statfs"},
                                        {"fstatfs"},   {"ftruncate"},  {"getdents64"}, {"setresuid"},
                                        {"setresgid"}, {"setgroups"},  {"setuid"},     {"setgid"},
                                        {"capget"},    {"capset"},     {"prctl"},      {"seccomp"},
                                        {"setrlimit"}, {"sendmsg"},    {"recvmsg"},    {"getsockopt"}}},
#ifdef KESTOVA_INSTRUMENTED
        // What sanitizers and the measurement of coverage do in the end.
        {[](const ConfinedWork&) { return true; },
         false,
         noCapability,
         {{"openat"},
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
          {"socket"}}},
#endif
    };
    return rows;
}

// --- giving up ---

void Check(bool done, const char* what) {
    if (!done) throw Failed(std::string(what) + " cannot be given up: " + std::strerror(errno));
}

struct Sums {
    bool keepsUser = false;
    uint64_t capabilities = noCapability;
    std::vector<AllowedCall> calls;
};

template <typename Applies>
Sums KeptBy(Applies applies) {
    Sums sums;
    for (const Kept& row : KeptByWork()) {
        if (!applies(row)) continue;
        sums.keepsUser = sums.keepsUser || row.keepsUser;
        sums.capabilities |= row.capabilities;
        sums.calls.insert(sums.calls.end(), row.calls.begin(), row.calls.end());
    }
    return sums;
}

std::optional<id_t> Id(const char* variable) {
    const char* const text = std::getenv(variable);
    if (text == nullptr) return std::nullopt;
    id_t id = 0;
    const char* const end = text + std::strlen(text);
    const auto [rest, error] = std::from_chars(text, end, id);
    if (error != std::errc() || rest != end || id == 0) return std::nullopt;
    return id;
}

// Back to the user who started the program through sudo.
void BecomeSudoUser() {
    const auto user = Id("SUDO_UID");
    const auto group = Id("SUDO_GID");
    if (geteuid() != 0 || !user || !group) return;
    Check(setgroups(0, nullptr) == 0 && setresgid(*group, *group, *group) == 0 &&
              setresuid(*user, *user, *user) == 0,
          "the user root");
}

void KeepCapabilities(uint64_t kept) {
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3] = {};
    Check(syscall(SYS_capget, &header, data) == 0, "the capabilities");
    for (unsigned half = 0; half < _LINUX_CAPABILITY_U32S_3; ++half) {
        const auto bits = static_cast<uint32_t>(kept >> (32 * half));
        data[half].effective &= bits;
        data[half].permitted &= bits;
        data[half].inheritable = 0;
    }
    Check(syscall(SYS_capset, &header, data) == 0, "the capabilities");
}

// --- limits ---

// A lower limit that the program already has stays.
void Limit(int resource, rlim_t most, rlim_t atLast) {
    rlimit limit = {};
    if (getrlimit(static_cast<__rlimit_resource_t>(resource), &limit) != 0) return;
    limit.rlim_max = std::min(limit.rlim_max, atLast);
    limit.rlim_cur = std::min({limit.rlim_cur, most, limit.rlim_max});
    setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

void EndOverTime(int) {
    constexpr std::string_view text =
        "kestova: ended, because it took more processor time than images of this size need\n";
    if (write(STDERR_FILENO, text.data(), text.size()) < 0) _exit(Failure);
    _exit(Failure);
}

// Many times what honest work was seen to take.
void LimitTimeAndMemory(const ConfinedWork& work) {
    constexpr uint64_t gibibyte = uint64_t{1} << 30;
    // A virtual disk can claim any size.
    const uint64_t imageBytes = std::min(work.imageBytes, 65536 * gibibyte);
    const uint64_t size = imageBytes / gibibyte + 1;
    const rlim_t seconds = 300 + 10 * size + work.operations;
    signal(SIGXCPU, EndOverTime);
    // A change of an image is not interrupted, so it has time to be completed.
    Limit(RLIMIT_CPU, seconds, seconds + 60);
#ifndef KESTOVA_INSTRUMENTED
    const rlim_t bytes = 4 * gibibyte + 2 * imageBytes;
    Limit(RLIMIT_AS, bytes, bytes);
#endif
}

}  // namespace

void ConfineAtStart() {
    Check(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0, "new privileges");
    // The second is for systems on which a program receives the dumps.
    Limit(RLIMIT_CORE, 0, 0);
    Check(prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0, "core dumps");
    AllowOnly(KeptBy([](const Kept&) { return true; }).calls);
}

void ConfineTo(const ConfinedWork& work) {
    LimitTimeAndMemory(work);
    const Sums kept = KeptBy([&](const Kept& row) { return row.applies != nullptr && row.applies(work); });
    if (!kept.keepsUser) BecomeSudoUser();
    KeepCapabilities(kept.capabilities);
    AllowOnly(kept.calls);
}
