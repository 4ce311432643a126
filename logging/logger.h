// The default logger: holds the record that is being written and passes it to the sinks when it ends. The
// platform's part owns the only one.
#pragma once

#include <cstddef>
#include <vector>

#include "logging/lock.h"
#include "logging/logging.h"

class LogRecordInMemory final : public ILogRecord {
  public:
    void Begin(int level);
    const LogEntry& Entry() const { return entry_; }

    int GetLevel() const noexcept override { return entry_.level; }
    ILogRecord& AppendString(const std::basic_string<WCHAR>& text) noexcept override;
    ILogRecord& AppendText(const WCHAR* text) noexcept override;
    ILogRecord& AppendPointer(const void* address) noexcept override;
    ILogRecord& AppendULong(ULONG value) noexcept override;
    ILogRecord& AppendULongLong(ULONGLONG value) noexcept override;
    ILogRecord& AppendLong(LONG value) noexcept override;
    ILogRecord& AppendLongLong(LONGLONG value) noexcept override;
    ILogRecord& AppendInt(INT value) noexcept override;
    ILogRecord& AppendChar(WCHAR value) noexcept override;
    bool IsEmpty() const noexcept override { return entry_.items.empty(); }

  private:
    template <typename Render>
    ILogRecord& Append(LogItemKind kind, const Render& render) noexcept;

    LogEntry entry_{};
};

class Logger final : public ILogger {
  public:
    void AddSink(ILogSink& sink) noexcept override;
    void RemoveSink(ILogSink& sink) noexcept override;
    ILogRecord& BeginRecord(int level) noexcept override;
    void EndRecord() noexcept override;

  private:
    void PassToSinks() noexcept;
    void PassTo(ILogSink& sink) noexcept;

    Lock lock_;  // held from BeginRecord to EndRecord
    // A sink that is removed while a record is passed leaves a null until the end of that.
    std::vector<ILogSink*> sinks_;
    int passing_ = 0;
    LogRecordInMemory record_;
};
