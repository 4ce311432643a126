// The sink that writes the log file: made by the first record also when memory ran out before, and who may
// take turns with it.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "logging/logging.h"
#include "logging/platform.h"
#include "platform/windows_api.h"
#include "tests/logging/scarce_memory.h"
// The conversion of descriptors, which windows.h leaves out.
#include <sddl.h>

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

TEST(StandardSink, EachAllocationOfTheFirstRecordFails_WriteTheNext_IsWritten) {
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

TEST(StandardSink, FirstRecordWritten_MutexOfTheTurns_IsOpenToAdministratorsAndTheSystemAlone) {
    ReleaseStandardSink();
    WriteRecord(TEXT("not written at level "), 0);
    const HANDLE mutex = OpenMutexW(READ_CONTROL, FALSE, TEXT("Global\\Kestova.Logging"));
    ASSERT_NE(mutex, nullptr);
    BYTE descriptor[1024] = {};
    DWORD size = 0;
    EXPECT_TRUE(
        GetKernelObjectSecurity(mutex, DACL_SECURITY_INFORMATION, descriptor, sizeof(descriptor), &size));
    WCHAR* text = nullptr;
    EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::basic_string<WCHAR>(text), TEXT("D:P(A;;GA;;;BA)(A;;GA;;;SY)"));
    LocalFree(text);
    CloseHandle(mutex);
    ReleaseStandardSink();
}

}  // namespace
