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

// "2026-11-21T08:15:30.042Z 1234 5678 TRACE text", in UTF-8, with CR and LF at the end. A level without a
// name is its number. Line breaks in the text are written "\r" and "\n", so that a record is one line, and a
// NUL "\0", so that the file is text; half a surrogate pair is written U+FFFD.
std::string LogLine(const LogStamp& stamp, const LogEntry& entry);

// The highest level that is written: the digits of the setting, from 0 (nothing) on. Without a setting, and
// with one that is no number, every level is.
int HighestLevel(const std::basic_string<WCHAR>& setting);
