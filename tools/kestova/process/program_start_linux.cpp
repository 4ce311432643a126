#include <csignal>

#include "tools/kestova/process/program_start.h"

std::vector<std::string> StartProgram(int count, char** words) {
    // A closed pipe must not end the process in the middle of an operation.
    std::signal(SIGPIPE, SIG_IGN);
    return {words + 1, words + count};
}
