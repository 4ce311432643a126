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
#include "tools/kestova/process/kept_calls.h"
#include "tools/kestova/process/system_calls.h"

namespace {

// --- giving up ---

void Check(bool done, const char* what) {
    if (!done) throw Failed(std::string(what) + " cannot be given up: " + std::strerror(errno));
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
    AllowOnly(SystemCallFilter(RowsAtStart()));
}

void ConfineTo(const ConfinedWork& work) {
    LimitTimeAndMemory(work);
    const KeptRows rows = RowsOf(work);
    bool keepsUser = false;
    uint64_t capabilities = 0;
    ForEachRow(rows, [&](const Kept& row) {
        keepsUser = keepsUser || row.keepsUser;
        capabilities |= row.capabilities;
    });
    if (!keepsUser) BecomeSudoUser();
    KeepCapabilities(capabilities);
    AllowOnly(SystemCallFilter(rows));
}
