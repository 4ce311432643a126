// The log file on disk.
#pragma once

#include <string>

#include "logging/logging.h"
#include "logging/windows/turn.h"

// Appends a line for every record up to a level. The file is opened for each line, so that it, or its disk,
// can be copied, deleted or removed at any time. A line that cannot be written is dropped without notice, and
// so is one for anything but a plain file.
//
// Before a line would make the file larger than 1 MiB, the file is renamed to its name with ".old" appended,
// and replaces the file of that name. Programs that write the same file take turns. Each append and rename is
// safe without them: the file that is renamed is the one that was found full. Only the bound is then exceeded
// by the lines that several programs append at the same moment.
class LogFile final : public ILogSink {
  public:
    LogFile(std::basic_string<WCHAR> path, int highestLevel);

    void Write(const LogEntry& entry) override;

  private:
    void Append(const std::string& line);

    std::basic_string<WCHAR> path_;
    std::basic_string<WCHAR> older_;
    int highestLevel_;
    Turns turns_;
};
