#include "tests/windows/real/log.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <utility>

void Log::Write(const LogEntry& entry) {
    text_ += std::to_string(entry.level) + ' ';
    for (const LogItem& item : entry.items)
        for (const WCHAR unit : item.text)
            text_ += static_cast<char>(unit);
    text_ += '\n';
}

void Log::Expect(const std::string& name) {
    const std::string written = std::exchange(text_, std::string());
    const std::string path = KESTOVA_TRANSCRIPTS "/" + name + ".txt";
    if (std::getenv("KESTOVA_RECORD") != nullptr) {
        std::ofstream(path, std::ios::binary) << written;
        return;
    }
    std::ifstream file(path, std::ios::binary);
    ASSERT_TRUE(file) << path;
    EXPECT_EQ(written, std::string(std::istreambuf_iterator<char>(file), {}));
}
