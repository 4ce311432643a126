// Tests and scripts find other programs by the table packages.txt alone.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

TEST(Programs, TestsAndScripts_NameNoProgramByAFixedPath) {
    const fs::path sources = KESTOVA_SOURCE_FOLDER;
    for (const char* const top : {"tests", "tools"}) {
        for (const auto& entry : fs::recursive_directory_iterator(sources / top)) {
            if (!entry.is_regular_file() || entry.path().filename() == "programs_test.cpp") continue;
            std::ifstream lines(entry.path(), std::ios::binary);
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with("#!")) continue;
                for (const char* const fixed : {"/usr/bin/", "/usr/sbin", "/sbin/"})
                    EXPECT_EQ(line.find(fixed), std::string::npos) << entry.path() << ": " << line;
            }
        }
    }
}
