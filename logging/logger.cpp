// The default logging library: holds the record that is being written and passes it to the sinks when it
// ends.

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "logging/logging.h"
#include "logging/platform.h"

namespace {

using Text = std::basic_string<WCHAR>;

template <typename Number>
Text Digits(Number value) {
    const std::string ascii = std::to_string(value);
    return Text(ascii.begin(), ascii.end());
}

class Record final : public ILogRecord {
  public:
    void Begin(int level) {
        entry_.level = level;
        entry_.items.clear();
    }
    const LogEntry& Entry() const { return entry_; }

    int GetLevel() const noexcept override { return entry_.level; }
    ILogRecord& AppendString(const Text& text) noexcept override {
        return Append(LogItemKind::String, [&] { return text; });
    }
    ILogRecord& AppendText(const WCHAR* text) noexcept override {
        return Append(LogItemKind::Text, [=] { return text != nullptr ? Text(text) : Text(); });
    }
    ILogRecord& AppendPointer(const void*) noexcept override {
        return Append(LogItemKind::Pointer, [] { return Text(TEXT("<pointer>")); });
    }
    ILogRecord& AppendULong(ULONG value) noexcept override {
        return Append(LogItemKind::ULong, [=] { return Digits(value); });
    }
    ILogRecord& AppendULongLong(ULONGLONG value) noexcept override {
        return Append(LogItemKind::ULongLong, [=] { return Digits(value); });
    }
    ILogRecord& AppendLong(LONG value) noexcept override {
        return Append(LogItemKind::Long, [=] { return Digits(value); });
    }
    ILogRecord& AppendLongLong(LONGLONG value) noexcept override {
        return Append(LogItemKind::LongLong, [=] { return Digits(value); });
    }
    ILogRecord& AppendInt(INT value) noexcept override {
        return Append(LogItemKind::Int, [=] { return Digits(value); });
    }
    ILogRecord& AppendChar(WCHAR value) noexcept override {
        return Append(LogItemKind::Char, [=] { return Text(1, value); });
    }
    bool IsEmpty() const noexcept override { return entry_.items.empty(); }

  private:
    template <typename Render>
    ILogRecord& Append(LogItemKind kind, const Render& render) noexcept {
        const LastErrorKept kept;
        try {
            entry_.items.push_back({kind, render()});
        } catch (...) {
            return *this;
        }
        return *this;
    }

    LogEntry entry_{};
};

class Logger final : public ILogger {
  public:
    Logger() {
        if (ILogSink* const sink = StandardSink()) sinks_.push_back(sink);
    }

    void AddSink(ILogSink& sink) noexcept override {
        const LastErrorKept kept;
        const std::scoped_lock alone(mutex_);
        if (std::find(sinks_.begin(), sinks_.end(), &sink) == sinks_.end()) sinks_.push_back(&sink);
    }
    void RemoveSink(ILogSink& sink) noexcept override {
        const LastErrorKept kept;
        const std::scoped_lock alone(mutex_);
        sinks_.erase(std::remove(sinks_.begin(), sinks_.end(), &sink), sinks_.end());
    }
    ILogRecord& BeginRecord(int level) noexcept override {
        const LastErrorKept kept;
        mutex_.lock();
        record_.Begin(level);
        return record_;
    }
    void EndRecord() noexcept override {
        const LastErrorKept kept;
        for (ILogSink* sink : sinks_)
            HandTo(*sink);
        mutex_.unlock();
    }

  private:
    // An exception from a sink affects neither the operation that logs nor the other sinks.
    void HandTo(ILogSink& sink) noexcept {
        try {
            sink.Write(record_.Entry());
        } catch (...) {
            return;
        }
    }

    std::recursive_mutex mutex_;  // held from BeginRecord to EndRecord
    std::vector<ILogSink*> sinks_;
    Record record_;
};

}  // namespace

ILogger& CLoggingFactory::GetInstance() noexcept {
    const LastErrorKept kept;
    // Never destroyed: modules write records until the process ends.
    alignas(Logger) static std::byte place[sizeof(Logger)];
    static Logger* const logger = new (place) Logger;
    return *logger;
}
