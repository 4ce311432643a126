// Writes records as the recovery library does, for the test of the log file.
//
//     log_writer NAME COUNT LENGTH     is ready, and writes records when its input has a line or ends
//     log_writer stuck                 is stuck in its turn at the log until its input ends
//
// Each record is the name, a blank, its number from 1 on, a blank and LENGTH times "x"; every tenth is an
// error. Ends with 0 when every record left the thread's last error code as it was.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "logging/logging.h"

namespace {

int StayStuck() {
    const HANDLE turn = CreateMutexW(nullptr, TRUE, TEXT("Global\\Kestova.Logging"));
    std::puts("stuck");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    ReleaseMutex(turn);
    CloseHandle(turn);
    return 0;
}

}  // namespace

int main(int count, char** words) {
    if (count == 2 && std::string(words[1]) == "stuck") return StayStuck();
    if (count != 4) return 2;
    const std::string ascii = words[1];
    const std::basic_string<WCHAR> name(ascii.begin(), ascii.end());
    const std::basic_string<WCHAR> filling(std::strtoul(words[3], nullptr, 10), TEXT('x'));
    const int records = std::atoi(words[2]);
    std::puts("ready");
    std::fflush(stdout);
    std::getchar();
    for (int record = 1; record <= records; ++record) {
        SetLastError(4321);
        CLoggingFactory::GetInstance()
            .BeginRecord(record % 10 == 0 ? LOG_LEVEL_ERROR : LOG_LEVEL_TRACE)
            .AppendString(name)
            .AppendChar(TEXT(' '))
            .AppendInt(record)
            .AppendText(TEXT(" "))
            .AppendString(filling)
            .AppendText(TEXT(""));
        CLoggingFactory::GetInstance().EndRecord();
        if (GetLastError() != 4321) return 1;
    }
    std::printf("%s wrote %d\n", words[1], records);
    return 0;
}
