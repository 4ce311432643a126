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

void ProgramTest::ChangeRecoveryVolume(const std::string& command) {
    const std::string volume = " bs=1M count=60 status=none conv=notrunc,sparse";
    const Outcome outcome = Shell("dd if=disk.img of=part skip=1" + volume + " && " + command +
                                  " && dd if=part of=disk.img seek=1" + volume);
    ASSERT_EQ(outcome.status, 0) << command << "\n" << outcome.errors;
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
