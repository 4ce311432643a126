// A record as a line of the log file.
#pragma once

#include <string>

#include "logging/logging.h"

// When and where a record was written.
struct LogStamp {
    SYSTEMTIME time;  // UTC
    DWORD process;
    DWORD thread;
};

// "2026-11-21T08:15:30.042Z 1234 5678 TRACE text", in UTF-8, ending with CR and LF. A level without a name is
// written as its number. Line breaks in the text are written as "\r" and "\n", so that a record is one line,
// NUL as "\0", so that the file is text, and an unpaired surrogate as U+FFFD.
std::string LogLine(const LogStamp& stamp, const LogEntry& entry);

// The highest level that is written, from a setting of digits; 0 writes nothing. Every level if the setting
// is empty or not a number.
int HighestLevel(const std::basic_string<WCHAR>& setting);
