// The log file on disk.
#pragma once

#include <string>

#include "logging/logging.h"

// Appends a line for every record up to a level. The file is opened for each line, so that it, or its disk,
// can be copied, deleted or removed at any time. A line that cannot be written is dropped without notice.
//
// Before a line would make the file larger than 1 MiB, the file is renamed to its name with ".old" appended,
// and replaces the file of that name. A mutex serialises the programs that write the same file. Each append
// is atomic without it: a program that times out waiting for the mutex still appends, but renames nothing.
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
    HANDLE turn_;  // null if the mutex could not be created
    DWORD patience_;
};
