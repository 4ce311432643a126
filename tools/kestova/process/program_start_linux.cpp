#include <poll.h>
#include <unistd.h>

#include <csignal>

#include "tools/kestova/process/program_start.h"

std::vector<std::string> StartProgram(int count, char** words) {
    // A closed pipe must not end the process in the middle of an operation.
    std::signal(SIGPIPE, SIG_IGN);
    return {words + 1, words + count};
}

bool IsOutputAbandoned() {
    pollfd output = {.fd = STDOUT_FILENO, .events = 0, .revents = 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}
