// What the logging library needs from its platform. windows/ writes a log file; memory/ stores nothing, and
// only the sinks that a program adds receive the records.
#pragma once

#include "logging/logging.h"

// The calling thread's last error code, which writing a record must not change.
DWORD LastErrorCode();
void SetLastErrorCode(DWORD code);

// Restores the code at the end of its scope.
class LastErrorKept {
  public:
    LastErrorKept() : code_(LastErrorCode()) {}
    ~LastErrorKept() { SetLastErrorCode(code_); }
    LastErrorKept(const LastErrorKept&) = delete;
    LastErrorKept& operator=(const LastErrorKept&) = delete;

  private:
    DWORD code_;
};

// The sink that receives every record before those that programs add; the logger asks for it at each record,
// and never twice at once. Null if there is none, or if memory ran out when it was made: the next record
// makes it.
ILogSink* StandardSink() noexcept;
// Frees it, if it was made.
void ReleaseStandardSink() noexcept;
