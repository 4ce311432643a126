#include <malloc.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>

#include "tools/kestova/process/program_start.h"

namespace {

// A short command asks the system for memory once, and gives none back before it ends: each page that is had
// again costs as much as a hundred small blocks.
void KeepMemory() {
#ifdef __GLIBC__
    constexpr int mebibyte = 1 << 20;
    mallopt(M_TOP_PAD, mebibyte);
    mallopt(M_TRIM_THRESHOLD, 64 * mebibyte);
    mallopt(M_MMAP_THRESHOLD, mebibyte);
#endif
}

}  // namespace

std::vector<std::string> StartProgram(int count, char** words) {
    KeepMemory();
    // A closed pipe must not end the process in the middle of an operation.
    std::signal(SIGPIPE, SIG_IGN);
    return {words + 1, words + count};
}

bool IsOutputAbandoned() {
    pollfd output = {.fd = STDOUT_FILENO, .events = 0, .revents = 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}
