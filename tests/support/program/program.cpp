#include "tests/support/program/program.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "tests/support/shell/shell.h"

namespace fs = std::filesystem;

ProgramTest::ProgramTest() {
    std::string name = (fs::temp_directory_path() / "kestova-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder_ = name;
}

ProgramTest::~ProgramTest() {
    std::error_code error;
    fs::remove_all(folder_, error);
}

Outcome ProgramTest::Kestova(const std::string& words, const std::string& input) {
    WriteFile(".input", input);
    return Shell("'" KESTOVA_PROGRAM "' " + words + " <.input");
}

Outcome ProgramTest::Shell(const std::string& command) {
    const int status = StatusOf("cd '" + folder_.string() + "' && { " + command + " ; } >.output 2>.errors");
    EXPECT_NE(status, -1) << command;
    return {status, ReadFile(".output"), ReadFile(".errors")};
}

void ProgramTest::WriteFile(const std::string& name, const std::string& content) {
    std::ofstream(folder_ / name, std::ios::binary) << content;
}

std::string ProgramTest::ReadFile(const std::string& name) {
    std::ifstream file(folder_ / name, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}
