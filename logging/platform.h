// What the logging library asks of where it runs. windows/ answers with a log file; memory/ keeps nothing of
// its own, and the sinks that are added have the records.
#pragma once

#include "logging/logging.h"

// The calling thread's last error code, which the records of a failed call must not change.
DWORD LastErrorCode();
void SetLastErrorCode(DWORD code);

// Keeps the code over its life.
class LastErrorKept {
  public:
    LastErrorKept() : code_(LastErrorCode()) {}
    ~LastErrorKept() { SetLastErrorCode(code_); }
    LastErrorKept(const LastErrorKept&) = delete;
    LastErrorKept& operator=(const LastErrorKept&) = delete;

  private:
    DWORD code_;
};

// The sink that the logger begins with, never destroyed; null without one.
ILogSink* StandardSink() noexcept;
