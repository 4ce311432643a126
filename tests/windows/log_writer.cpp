// Writes records as the recovery library does, for the test of the log file.
//
//     log_writer NAME COUNT LENGTH     is ready, and writes records when its input has a line or ends
//     log_writer stuck                 is stuck in its turn at the log until its input ends
//     log_writer alone                 the same, and no other program can open the mutex of the turns
//     log_writer limited WORD...       starts itself with the other words and without an administrator's
//     rights
//
// Each record is the name, a blank, its number from 1 on, a blank and LENGTH times "x"; every tenth is an
// error. Ends with 0 when every record left the thread's last error code as it was.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "logging/logging.h"
#include "platform/windows_api.h"
// The conversion of descriptors, which windows.h leaves out.
#include <sddl.h>

namespace {

// Has the mutex of the turns until the input ends; without access, nobody else can open it.
int StayStuck(const WCHAR* access) {
    SECURITY_ATTRIBUTES attributes = {sizeof(attributes), nullptr, FALSE};
    ConvertStringSecurityDescriptorToSecurityDescriptorW(access, SDDL_REVISION_1,
                                                         &attributes.lpSecurityDescriptor, nullptr);
    HANDLE turn = CreateMutexW(&attributes, TRUE, TEXT("Global\\Kestova.Logging"));
    // The system closes the handles of a program a moment after its end.
    while (turn != nullptr && GetLastError() == ERROR_ALREADY_EXISTS) {
        CloseHandle(turn);
        Sleep(1);
        turn = CreateMutexW(&attributes, TRUE, TEXT("Global\\Kestova.Logging"));
    }
    if (turn == nullptr) return 5;
    std::puts("stuck");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    ReleaseMutex(turn);
    CloseHandle(turn);
    LocalFree(attributes.lpSecurityDescriptor);
    return 0;
}

// The token that the same administrator has before elevation.
HANDLE LimitedToken() {
    HANDLE own = nullptr;
    HANDLE limited = nullptr;
    TOKEN_LINKED_TOKEN linked{};
    DWORD size = 0;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &own) ||
        !GetTokenInformation(own, TokenLinkedToken, &linked, sizeof(linked), &size))
        return nullptr;
    DuplicateTokenEx(linked.LinkedToken, TOKEN_ALL_ACCESS, nullptr, SecurityImpersonation, TokenPrimary,
                     &limited);
    CloseHandle(linked.LinkedToken);
    CloseHandle(own);
    return limited;
}

int StartLimited(int count, char** words) {
    std::string line = "log_writer";
    for (int word = 2; word < count; ++word)
        line += std::string(" ") + words[word];
    std::basic_string<WCHAR> wide(line.begin(), line.end());
    WCHAR program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const HANDLE token = LimitedToken();
    STARTUPINFOW start = {};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process = {};
    if (token == nullptr || !CreateProcessAsUserW(token, program, wide.data(), nullptr, nullptr, TRUE, 0,
                                                  nullptr, nullptr, &start, &process))
        return 3;
    DWORD status = 4;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    CloseHandle(token);
    return static_cast<int>(status);
}

}  // namespace

int main(int count, char** words) {
    if (count == 2 && std::string(words[1]) == "stuck") return StayStuck(TEXT("D:P(A;;GA;;;WD)"));
    if (count == 2 && std::string(words[1]) == "alone") return StayStuck(TEXT("D:P"));
    if (count > 2 && std::string(words[1]) == "limited") return StartLimited(count, words);
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
