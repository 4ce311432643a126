// The interface of the logging library (Logging.dll): where every diagnostic record goes. The recovery
// library uses CLoggingFactory::GetInstance, ILogger::BeginRecord and EndRecord, and the append operations of
// ILogRecord that stand between AppendString and AppendChar. The order of the operations is part of the
// interface.
#pragma once

#include <string>
#include <vector>

#include "platform/windows_api.h"

#if !defined(_WIN32)
#define LOGGING_API
#elif defined(LOGGING_EXPORTS)
#define LOGGING_API __declspec(dllexport)
#else
#define LOGGING_API __declspec(dllimport)
#endif

inline constexpr int LOG_LEVEL_ERROR = 1;  // a failed call, an unexpected value, a rejected argument
inline constexpr int LOG_LEVEL_TRACE = 4;  // start, end and values on the way

// Through which append an item came.
enum class LogItemKind { String, Text, Pointer, ULong, ULongLong, Long, LongLong, Int, Char };

// One appended item, rendered: texts as they stand, int and long signed, unsigned long unsigned, a wide
// character as itself, a pointer as "<pointer>" so that two runs write the same log.
struct LogItem {
    LogItemKind kind;
    std::basic_string<WCHAR> text;
};

// A finished record.
struct LogEntry {
    int level;
    std::vector<LogItem> items;

    // The items one after another; the writer adds no separator.
    std::basic_string<WCHAR> Text() const {
        std::basic_string<WCHAR> text;
        for (const LogItem& item : items)
            text += item.text;
        return text;
    }
};

// Receives every record when it ends, one at a time. What it does must not write a record of its own.
class ILogSink {
  public:
    virtual void Write(const LogEntry& entry) = 0;

  protected:
    ~ILogSink() = default;
};

// Collects one record. Every append answers the same writer, so that appends can be chained. Memory that runs
// out costs the item, not the caller.
class ILogRecord {
  public:
    virtual int GetLevel() const noexcept = 0;
    // A text formatted beforehand.
    virtual ILogRecord& AppendString(const std::basic_string<WCHAR>& text) noexcept = 0;
    // A literal; null counts as empty.
    virtual ILogRecord& AppendText(const WCHAR* text) noexcept = 0;
    virtual ILogRecord& AppendPointer(const void* address) noexcept = 0;
    virtual ILogRecord& AppendULong(ULONG value) noexcept = 0;
    virtual ILogRecord& AppendULongLong(ULONGLONG value) noexcept = 0;
    virtual ILogRecord& AppendLong(LONG value) noexcept = 0;
    virtual ILogRecord& AppendLongLong(LONGLONG value) noexcept = 0;
    virtual ILogRecord& AppendInt(INT value) noexcept = 0;
    virtual ILogRecord& AppendChar(WCHAR value) noexcept = 0;
    virtual bool IsEmpty() const noexcept = 0;

  protected:
    ~ILogRecord() = default;
};

// The process's logger, owned by the logging library. Nothing is thrown, and the caller's last error code
// (GetLastError) stays as it is.
class ILogger {
  public:
    // The sink receives every record, whatever its level, from now on; it must be removed before it dies.
    // Adding it twice is adding it once.
    virtual void AddSink(ILogSink& sink) noexcept = 0;
    virtual void RemoveSink(ILogSink& sink) noexcept = 0;
    // Begins a record; the answer is valid until EndRecord, which hands the record to the sinks. Between the
    // two, other threads wait with records of their own.
    virtual ILogRecord& BeginRecord(int level) noexcept = 0;
    virtual void EndRecord() noexcept = 0;

  protected:
    ~ILogger() = default;
};

class CLoggingFactory {
  public:
    // The one logger of the process; it is there before any module's static objects and stays until the
    // process ends.
    LOGGING_API static ILogger& GetInstance() noexcept;
};
