// The interface of the logging library (Logging.dll), which receives every diagnostic record. The recovery
// library calls CLoggingFactory::GetInstance, ILogger::BeginRecord and EndRecord, and the append operations
// of ILogRecord from AppendString to AppendChar. The order of the virtual functions is part of the interface.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#if !defined(_WIN32)
#define LOGGING_API
#elif defined(LOGGING_EXPORTS)
#define LOGGING_API __declspec(dllexport)
#else
#define LOGGING_API __declspec(dllimport)
#endif

inline constexpr int LOG_LEVEL_ERROR = 1;  // a failed call, an unexpected value, a rejected argument
inline constexpr int LOG_LEVEL_TRACE = 4;  // start, end and values on the way

// The append operation that added an item.
enum class LogItemKind { String, Text, Pointer, ULong, ULongLong, Long, LongLong, Int, Char };

// One appended item as text: strings and wide characters unchanged, int and long signed, unsigned long
// unsigned, a pointer as "<pointer>" so that two runs write the same log.
struct LogItem {
    LogItemKind kind;
    std::basic_string<WCHAR> text;
};

// A finished record.
struct LogEntry {
    int level;
    std::vector<LogItem> items;

    // The items, concatenated without separators.
    std::basic_string<WCHAR> Text() const {
        std::basic_string<WCHAR> text;
        for (const LogItem& item : items)
            text += item.text;
        return text;
    }
};

// Receives every record when it ends, one at a time, in the order in which the sinks were added. Write must
// not write records itself. It may add and remove sinks, itself too: one that is removed receives nothing
// from then on, not even the same record; one that is added receives the records from the next one on. An
// exception from Write ends there; nobody sees it.
class ILogSink {
  public:
    virtual void Write(const LogEntry& entry) = 0;

  protected:
    ~ILogSink() = default;
};

// Collects one record. Every append returns the record itself, so that appends can be chained. If memory runs
// out, the item is dropped and the caller is not disturbed.
class ILogRecord {
  public:
    virtual int GetLevel() const noexcept = 0;
    // A text that was formatted before.
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

// The logger of the process, owned by the logging library. No operation throws or changes the caller's last
// error code (GetLastError).
class ILogger {
  public:
    // From now on the sink receives every record of every level. Remove it before it is destroyed. Adding it
    // again has no effect, nor has adding it when memory runs out. While another thread writes a record, this
    // and RemoveSink wait for its end.
    virtual void AddSink(ILogSink& sink) noexcept = 0;
    // From now on the sink is not called. Removing one that was not added has no effect.
    virtual void RemoveSink(ILogSink& sink) noexcept = 0;
    // Begins a record; the reference is valid until EndRecord, which passes the record to the sinks. In
    // between, other threads block in BeginRecord.
    virtual ILogRecord& BeginRecord(int level) noexcept = 0;
    virtual void EndRecord() noexcept = 0;

  protected:
    ~ILogger() = default;
};

class CLoggingFactory {
  public:
    // The only logger of the process. It exists before any module's static objects are constructed, and until
    // the process ends.
    LOGGING_API static ILogger& GetInstance() noexcept;
};
