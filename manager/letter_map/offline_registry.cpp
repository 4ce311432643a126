// Loads and unloads the SYSTEM hive of the installed Windows with `reg`, in a batch file that the command
// interpreter of Windows PE runs.

#include <cstring>

#include "base/drive_letter.h"
#include "base/format.h"
#include "base/owners.h"
#include "base/wide_string.h"
#include "manager/kestova.h"
#include "platform/windows_api.h"

namespace {

constexpr const WCHAR* batchFile = TEXT("X:\\LoadRegistry.bat");  // Windows PE runs from X:
constexpr size_t batchCapacity = 1024;                            // units, far more than a command needs
constexpr size_t mostBytesPerUnit = 3;                            // of UTF-8, which may be the ANSI code page
constexpr DWORD longestRun = 10'000;                              // milliseconds
constexpr int attempts = 3;
constexpr DWORD pause = 300;  // milliseconds, after every failed attempt

enum BatchResult : int { BATCH_ENDED = 0, BATCH_FAILED = 1, BATCH_WITHOUT_PROCESS = 2 };

// The length of the text in the code page of the command interpreter; 0 if it cannot be converted. Only the
// length of the ANSI text is used of the buffer, so a text that is longer in the OEM code page fails as well.
size_t ToOemCodePage(const WCHAR* text, char* bytes, size_t capacity) {
    const int size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0 || static_cast<size_t>(size) > capacity) return 0;
    return WideCharToMultiByte(CP_OEMCP, 0, text, -1, bytes, size, nullptr, nullptr) != 0 ? std::strlen(bytes)
                                                                                          : 0;
}

// Needs no memory but the stack: the hive is unloaded, and the file deleted, when there is none.
bool WriteBatch(const WCHAR* command) {
    const FileHandle file(
        CreateFileW(batchFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return false;
    WCHAR text[batchCapacity];
    if (FormatInto(text, batchCapacity, TEXT("%s\r\nexit\r\n"), command) >= batchCapacity) return false;
    char bytes[mostBytesPerUnit * batchCapacity];
    const DWORD size = static_cast<DWORD>(ToOemCodePage(text, bytes, sizeof bytes));
    DWORD written = 0;
    return size > 0 && WriteFile(file.Get(), bytes, size, &written, nullptr) && written == size;
}

// Only whether the command ends in time matters; its exit code is ignored.
BatchResult RunBatch() {
    SHELLEXECUTEINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = TEXT("open");
    info.lpFile = batchFile;
    info.nShow = SW_HIDE;
    if (!ShellExecuteExW(&info)) return BATCH_FAILED;
    const ProcessHandle process(info.hProcess);
    if (!process) return BATCH_WITHOUT_PROCESS;
    return WaitForSingleObject(process.Get(), longestRun) == WAIT_OBJECT_0 ? BATCH_ENDED : BATCH_FAILED;
}

template <typename Attempt>
bool Retry(Attempt succeeds) {
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (succeeds()) return true;
        Sleep(pause);
    }
    return false;
}

}  // namespace

int Kestova::LoadRegistry(const WCHAR* command) {
    const bool written = command != nullptr && WriteBatch(command);
    const BatchResult result = written ? RunBatch() : BATCH_FAILED;
    if (PathFileExistsW(batchFile)) DeleteFileW(batchFile);
    return result;
}

int Kestova::LoadWindowsRegistry() {
    const WCHAR letter = GetOSVolume();
    if (letter == noLetter) return FALSE;
    const WideString command =
        StringFormat(TEXT("reg load HKLM\\TEMSYSTEM %c:\\Windows\\System32\\Config\\SYSTEM"), letter);
    return Retry([&] { return LoadRegistry(command.c_str()) == BATCH_ENDED; });
}

int Kestova::UnloadWindowsRegistry() {
    return Retry([&] { return LoadRegistry(TEXT("reg unload HKLM\\TEMSYSTEM")) == BATCH_ENDED; });
}
