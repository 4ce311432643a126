#include "tests/support/shell/shell.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

std::string WithListedPrograms(const std::string& command) {
    return "PATH='" KESTOVA_PROGRAMS "'; export PATH; " + command;
}

std::string OutputOf(const std::string& command) {
    FILE* pipe = popen(WithListedPrograms(command).c_str(), "r");
    if (!pipe) throw std::runtime_error("cannot run " + command);
    std::string output;
    std::array<char, 4096> buffer;
    while (const size_t count = fread(buffer.data(), 1, buffer.size(), pipe))
        output.append(buffer.data(), count);
    EXPECT_EQ(pclose(pipe), 0) << command << "\n" << output;
    return output;
}

int StatusOf(const std::string& command) {
    const int status = std::system(WithListedPrograms(command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
