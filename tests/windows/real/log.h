// The log of the library in this process, and what it should be.
#pragma once

#include <string>

#include "logging/logging.h"

// Keeps every record while it lives, a line each: level and text.
class Log : private ILogSink {
  public:
    Log() { CLoggingFactory::GetInstance().AddSink(*this); }
    ~Log() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    // Compares what was written since the last time with transcripts/NAME.txt. KESTOVA_RECORD=1 in the
    // environment writes the file instead: read what it wrote as critically as code.
    void Expect(const std::string& name);
    void Forget() { text_.clear(); }

  private:
    void Write(const LogEntry& entry) override;

    std::string text_;
};
