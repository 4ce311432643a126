// A diagnostic record as one expression: LogRecord(LOG_LEVEL_TRACE).Text(TEXT("... bRet = ")).Int(bRet);
#pragma once

#include "base/wide_string.h"
#include "logging/logging.h"

// Begins a record when it is constructed, and ends it at the end of the expression with the empty text that
// closes every record. The logger is fetched both times and not kept. Allocates nothing.
class LogRecord {
  public:
    explicit LogRecord(int level) : writer_(CLoggingFactory::GetInstance().BeginRecord(level)) {}
    ~LogRecord() {
        writer_.AppendText(TEXT(""));
        CLoggingFactory::GetInstance().EndRecord();
    }
    LogRecord(const LogRecord&) = delete;
    LogRecord& operator=(const LogRecord&) = delete;

    // A literal (a message or a label), or a string value.
    LogRecord& Text(const WCHAR* text) {
        writer_.AppendText(text);
        return *this;
    }
    // A message that was formatted before.
    LogRecord& String(const WideString& text) {
        writer_.AppendString(text);
        return *this;
    }
    LogRecord& Pointer(const void* address) {
        writer_.AppendPointer(address);
        return *this;
    }
    // GetLastError codes, sizes.
    LogRecord& ULong(ULONG value) {
        writer_.AppendULong(value);
        return *this;
    }
    // HRESULT codes.
    LogRecord& Long(LONG value) {
        writer_.AppendLong(value);
        return *this;
    }
    // BOOL results, disk and partition numbers, flags of one byte.
    LogRecord& Int(INT value) {
        writer_.AppendInt(value);
        return *this;
    }
    // Drive letters.
    LogRecord& Char(WCHAR value) {
        writer_.AppendChar(value);
        return *this;
    }

  private:
    ILogRecord& writer_;
};
