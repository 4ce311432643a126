#include <csignal>

#include "tools/kestova/command_line/program_start.h"

std::vector<std::string> StartProgram(int count, char** words) {
    // A reader that goes away must not end an operation halfway.
    std::signal(SIGPIPE, SIG_IGN);
    return {words + 1, words + count};
}
