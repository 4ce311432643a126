#include "tests/support/program/program.h"

#include <fstream>
#include <sstream>

#include "tests/support/shell/shell.h"

Outcome ProgramTest::Kestova(const std::string& words, const std::string& input) {
    WriteFile(".input", input);
    return Shell("'" KESTOVA_PROGRAM "' " + words + " <.input");
}

Outcome ProgramTest::Shell(const std::string& command) {
    const int status = StatusOf("cd '" + Folder().string() + "' && { " + command + " ; } >.output 2>.errors");
    EXPECT_NE(status, -1) << command;
    return {status, ReadFile(".output"), ReadFile(".errors")};
}

void ProgramTest::WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(Folder() / name, std::ios::binary) << content;
}

std::string ProgramTest::ReadFile(const std::string& name) {
    std::ifstream file(Folder() / name, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}
