// The first record of a process, which makes the log file's sink, when memory runs out.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "logging/logging.h"
#include "logging/platform.h"
#include "tests/logging/scarce_memory.h"

namespace {

void WriteRecord(const WCHAR* text, int number) {
    CLoggingFactory::GetInstance().BeginRecord(LOG_LEVEL_TRACE).AppendText(text).AppendInt(number);
    CLoggingFactory::GetInstance().EndRecord();
}

std::string LogBesideProgram() {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string path = program;
    return path.substr(0, path.find_last_of('\\') + 1) + "Kestova.log";
}

// Every allocation from one on fails, once and for all: the record is lost, the next one is written.
TEST(FirstRecord, EachAllocationFails_NextRecordIsWritten) {
    const std::string path = LogBesideProgram();
    SetEnvironmentVariableW(TEXT("KESTOVA_LOG_LEVEL"), nullptr);
    for (const auto lack : {ScarceMemory::Lack::Once, ScarceMemory::Lack::FromThenOn}) {
        bool failed = true;
        int number = 0;
        while (failed) {
            std::remove(path.c_str());
            ReleaseStandardSink();
            {
                const ScarceMemory memory(++number, lack);
                SetLastError(4321);
                WriteRecord(TEXT("scarce "), number);
                EXPECT_EQ(GetLastError(), 4321U);
                failed = memory.HasFailed();
            }
            WriteRecord(TEXT("next "), number);
            std::ifstream file(path, std::ios::binary);
            const std::string log(std::istreambuf_iterator<char>(file), {});
            EXPECT_TRUE(log.ends_with(" TRACE next " + std::to_string(number) + "\r\n")) << log;
        }
        EXPECT_GT(number, 5);
    }
    std::remove(path.c_str());
    ReleaseStandardSink();
    SetEnvironmentVariableW(TEXT("KESTOVA_LOG_LEVEL"), TEXT("0"));
}

}  // namespace
