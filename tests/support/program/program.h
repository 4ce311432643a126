// Runs the built kestova program in a temporary folder.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

// The result of a run.
struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

class ProgramTest : public testing::Test {
  protected:
    // Runs the program with these words, as typed in a shell, in the test's folder.
    Outcome Kestova(const std::string& words, const std::string& input = "");
    // Runs any shell command there.
    Outcome Shell(const std::string& command);

    // Runs a command on the recovery volume of the factory disk "disk.img", which is then a file named part,
    // and puts it back.
    void ChangeRecoveryVolume(const std::string& command);

    void WriteFile(const std::string& name, const std::string& content);
    std::string ReadFile(const std::string& name);
    const std::filesystem::path& Folder() const { return folder_.Path(); }

  private:
    TemporaryFolder folder_;
};
