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
enum class LogItemKind { String, Text, Pointer, ULong, Long, Int, Char };

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
    LOGGING_API std::basic_string<WCHAR> Text() const;
};

// Receives every record when it ends. What it does must not write a record of its own.
class ILogSink {
  public:
    virtual void Write(const LogEntry& entry) = 0;

  protected:
    ~ILogSink() = default;
};

// Collects one record. Every operation answers the same writer, so that appends can be chained.
class ILogRecord {
  public:
    virtual int GetLevel() const = 0;
    virtual ILogRecord& AppendString(
        const std::basic_string<WCHAR>& text) = 0;          // a text formatted beforehand
    virtual ILogRecord& AppendText(const WCHAR* text) = 0;  // a literal; null counts as empty
    virtual ILogRecord& AppendPointer(const void* address) = 0;
    virtual ILogRecord& AppendULong(ULONG value) = 0;
    virtual ILogRecord& AppendLong(LONG value) = 0;
    virtual ILogRecord& AppendInt(INT value) = 0;
    virtual ILogRecord& AppendChar(WCHAR value) = 0;
    virtual bool IsEmpty() const = 0;

  protected:
    ~ILogRecord() = default;
};

// The process's logger, owned by the logging library.
class ILogger {
  public:
    // The sink receives every record from now on; it must be removed before it dies. Adding it twice is
    // adding it once.
    virtual void AddSink(ILogSink& sink) = 0;
    virtual void RemoveSink(ILogSink& sink) = 0;
    // Begins a record; the answer is valid until EndRecord, which hands the record to the sinks.
    virtual ILogRecord& BeginRecord(int level) = 0;
    virtual void EndRecord() = 0;

  protected:
    ~ILogger() = default;
};

class CLoggingFactory {
  public:
    // The one logger of the process; it is there before any module's static objects and stays until the
    // process ends.
    LOGGING_API static ILogger& GetInstance();
};
