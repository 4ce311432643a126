// Loads and unloads the SYSTEM hive of the installed Windows with `reg`, in a batch file that the command
// interpreter of Windows PE runs.

#include <string>

#include "base/drive_letter.h"
#include "base/owners.h"
#include "base/wide_string.h"
#include "manager/kestova.h"

namespace {

constexpr const WCHAR* batchFile = TEXT("X:\\LoadRegistry.bat");  // Windows PE runs from X:
constexpr DWORD longestRun = 10'000;                              // milliseconds
constexpr int attempts = 3;
constexpr DWORD pause = 300;  // milliseconds, after every failed attempt

enum BatchResult : int { BATCH_ENDED = 0, BATCH_FAILED = 1, BATCH_WITHOUT_PROCESS = 2 };

// The text in the code page of the command interpreter; empty if it cannot be converted. The buffer has the
// length of the ANSI text, so a text that is longer in the OEM code page is empty as well.
std::string InOemCodePage(const WideString& text) {
    const int size = WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string bytes(static_cast<size_t>(size), '\0');
    if (WideCharToMultiByte(CP_OEMCP, 0, text.c_str(), -1, bytes.data(), size, nullptr, nullptr) == 0)
        return {};
    bytes.resize(bytes.find('\0'));
    return bytes;
}

bool WriteBatch(const WCHAR* command) {
    const FileHandle file(
        CreateFileW(batchFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return false;
    WideString text = command;
    text += TEXT("\r\nexit\r\n");
    const std::string bytes = InOemCodePage(text);
    DWORD written = 0;
    return !bytes.empty() &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
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
