// The built kestova program as a test runs it, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

// What a run left behind.
struct Outcome {
    int status = -1;
    std::string output;
    std::string errors;
};

class ProgramTest : public testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    // Runs the program with these words, as one would type them for a shell, in the test's folder.
    Outcome Kestova(const std::string& words, const std::string& input = "");
    // Runs any command there.
    Outcome Shell(const std::string& command);

    void WriteFile(const std::string& name, const std::string& content);
    std::string ReadFile(const std::string& name);
    const std::filesystem::path& Folder() const { return folder_; }

  private:
    std::filesystem::path folder_;
};
