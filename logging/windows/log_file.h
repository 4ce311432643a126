// The log file on disk.
#pragma once

#include <string>

#include "logging/logging.h"

// Appends a line for every record up to a level. The file is opened for each line, so that it can be copied,
// deleted or gone with its disk at any time, and a line that cannot be written is lost without a word.
//
// A line that would make the file larger than 1 MiB first renames it, with ".old" behind its name, in place
// of the one that has this name. Programs that write the same file take turns by a mutex; each append is
// whole without it, so that who waits in vain for a program that is stuck writes all the same, and renames
// nothing.
class LogFile final : public ILogSink {
  public:
    LogFile(std::basic_string<WCHAR> path, int highestLevel);
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    void Write(const LogEntry& entry) override;

  private:
    void Append(const std::string& line, bool mayRename);

    std::basic_string<WCHAR> path_;
    std::basic_string<WCHAR> older_;
    int highestLevel_;
    HANDLE turn_;  // null when the mutex could not be made
    DWORD patience_;
};
