#include "logging/windows/log_file.h"

#include <utility>

#include "logging/log_line.h"
#include "platform/windows_api.h"

namespace {

constexpr LONGLONG largest = 1024LL * 1024;
constexpr DWORD longestWait = 2000;  // ms

// One mutex for the programs of all users.
HANDLE MakeTurn() {
    SECURITY_DESCRIPTOR everyone;
    InitializeSecurityDescriptor(&everyone, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&everyone, TRUE, nullptr, FALSE);
    SECURITY_ATTRIBUTES attributes = {sizeof(attributes), &everyone, FALSE};
    return CreateMutexW(&attributes, FALSE, TEXT("Global\\Kestova.Logging"));
}

// Holds the mutex for its scope. After a time-out, the next ones try without waiting until one succeeds.
class Turn {
  public:
    Turn(HANDLE mutex, DWORD& patience) : mutex_(mutex) {
        const DWORD answer = mutex != nullptr ? WaitForSingleObject(mutex, patience) : WAIT_FAILED;
        has_ = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
        patience = has_ ? longestWait : 0;
    }
    ~Turn() {
        if (has_) ReleaseMutex(mutex_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    bool Has() const { return has_; }

  private:
    HANDLE mutex_;
    bool has_;
};

// Suppresses the system's message box for a missing disk.
class NoMessageBoxes {
  public:
    NoMessageBoxes() { SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before_); }
    ~NoMessageBoxes() { SetThreadErrorMode(before_, nullptr); }
    NoMessageBoxes(const NoMessageBoxes&) = delete;
    NoMessageBoxes& operator=(const NoMessageBoxes&) = delete;

  private:
    DWORD before_ = 0;
};

// A handle for appending only: the system places every write at the end of the file, whatever other programs
// write.
class AppendedFile {
  public:
    explicit AppendedFile(const WCHAR* path)
        : handle_(CreateFileW(path, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~AppendedFile() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    }
    AppendedFile(const AppendedFile&) = delete;
    AppendedFile& operator=(const AppendedFile&) = delete;

    bool HoldsAsWell(const std::string& line) const {
        LARGE_INTEGER size{};
        return !GetFileSizeEx(handle_, &size) || size.QuadPart == 0 ||
               size.QuadPart + static_cast<LONGLONG>(line.size()) <= largest;
    }
    void Append(const std::string& line) {
        DWORD written = 0;
        WriteFile(handle_, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    }

  private:
    HANDLE handle_;
};

LogStamp Now() {
    LogStamp stamp{{}, GetCurrentProcessId(), GetCurrentThreadId()};
    GetSystemTime(&stamp.time);
    return stamp;
}

}  // namespace

LogFile::LogFile(std::basic_string<WCHAR> path, int highestLevel)
    : path_(std::move(path)),
      older_(path_ + TEXT(".old")),
      highestLevel_(highestLevel),
      turn_(MakeTurn()),
      patience_(longestWait) {}

LogFile::~LogFile() {
    if (turn_ != nullptr) CloseHandle(turn_);
}

void LogFile::Write(const LogEntry& entry) {
    if (entry.level > highestLevel_) return;
    const NoMessageBoxes quiet;
    const Turn turn(turn_, patience_);
    Append(LogLine(Now(), entry), turn.Has());
}

void LogFile::Append(const std::string& line, bool mayRename) {
    {
        AppendedFile file(path_.c_str());
        if (!mayRename || file.HoldsAsWell(line)) return file.Append(line);
    }
    // While another program prevents the rename, nothing more is written.
    if (!MoveFileExW(path_.c_str(), older_.c_str(), MOVEFILE_REPLACE_EXISTING)) return;
    AppendedFile(path_.c_str()).Append(line);
}
