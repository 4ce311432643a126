#include "logging/windows/log_file.h"

#include <utility>

#include "logging/log_line.h"
#include "logging/windows/appended_file.h"
#include "platform/windows_api.h"

namespace {

using Use = AppendedFile::Use;

constexpr ULONGLONG largest = 1024ULL * 1024;

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

bool IsFullFor(const AppendedFile& file, const std::string& line) {
    return file.Size() != 0 && file.Size() + line.size() > largest;
}

LogStamp Now() {
    LogStamp stamp{{}, GetCurrentProcessId(), GetCurrentThreadId()};
    GetSystemTime(&stamp.time);
    return stamp;
}

}  // namespace

LogFile::LogFile(std::basic_string<WCHAR> path, int highestLevel)
    : path_(std::move(path)), older_(path_ + TEXT(".old")), highestLevel_(highestLevel) {}

void LogFile::Write(const LogEntry& entry) {
    if (entry.level > highestLevel_) return;
    const NoMessageBoxes quiet;
    const Turn turn(turns_);
    Append(LogLine(Now(), entry));
}

void LogFile::Append(const std::string& line) {
    {
        AppendedFile file(path_, Use::Append);
        if (!file.IsOpen()) return;
        if (!IsFullFor(file, line)) return file.Append(line);
    }
    {
        // Another program may have renamed the full one by now: then this is the new one, and stays.
        AppendedFile file(path_, Use::Rename);
        if (file.IsOpen() && IsFullFor(file, line)) file.RenameTo(older_);
    }
    // Still full while another program prevents the rename: then nothing is written.
    AppendedFile file(path_, Use::Append);
    if (file.IsOpen() && !IsFullFor(file, line)) file.Append(line);
}
