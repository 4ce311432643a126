// The default logging library: keeps the record that is being written and hands it to the sinks when it ends.

#include <algorithm>
#include <string>
#include <utility>

#include "logging/logging.h"

namespace {

using Text = std::basic_string<WCHAR>;

Text Rendered(const std::string& ascii) {
    return Text(ascii.begin(), ascii.end());
}

class Record final : public ILogRecord {
  public:
    void Begin(int level) { entry_ = {level, {}}; }
    const LogEntry& Entry() const { return entry_; }

    int GetLevel() const override { return entry_.level; }
    ILogRecord& AppendString(const Text& text) override { return Append(LogItemKind::String, text); }
    ILogRecord& AppendText(const WCHAR* text) override {
        return Append(LogItemKind::Text, text != nullptr ? Text(text) : Text());
    }
    ILogRecord& AppendPointer(const void*) override {
        return Append(LogItemKind::Pointer, TEXT("<pointer>"));
    }
    ILogRecord& AppendULong(ULONG value) override {
        return Append(LogItemKind::ULong, Rendered(std::to_string(value)));
    }
    ILogRecord& AppendLong(LONG value) override {
        return Append(LogItemKind::Long, Rendered(std::to_string(value)));
    }
    ILogRecord& AppendInt(INT value) override {
        return Append(LogItemKind::Int, Rendered(std::to_string(value)));
    }
    ILogRecord& AppendChar(WCHAR value) override { return Append(LogItemKind::Char, Text(1, value)); }
    bool IsEmpty() const override { return entry_.items.empty(); }

  private:
    ILogRecord& Append(LogItemKind kind, Text text) {
        entry_.items.push_back({kind, std::move(text)});
        return *this;
    }

    LogEntry entry_{};
};

class Logger final : public ILogger {
  public:
    void AddSink(ILogSink& sink) override {
        if (std::find(sinks_.begin(), sinks_.end(), &sink) == sinks_.end()) sinks_.push_back(&sink);
    }
    void RemoveSink(ILogSink& sink) override {
        sinks_.erase(std::remove(sinks_.begin(), sinks_.end(), &sink), sinks_.end());
    }
    ILogRecord& BeginRecord(int level) override {
        record_.Begin(level);
        return record_;
    }
    void EndRecord() override {
        for (ILogSink* sink : sinks_)
            HandTo(*sink);
    }

  private:
    // A sink that fails disturbs neither the operation that logs nor the other sinks.
    void HandTo(ILogSink& sink) noexcept {
        try {
            sink.Write(record_.Entry());
        } catch (...) {
            return;
        }
    }

    std::vector<ILogSink*> sinks_;
    Record record_;
};

}  // namespace

std::basic_string<WCHAR> LogEntry::Text() const {
    std::basic_string<WCHAR> text;
    for (const LogItem& item : items)
        text += item.text;
    return text;
}

ILogger& CLoggingFactory::GetInstance() {
    // Never destroyed: modules write records until the process is gone.
    static Logger* const logger = new Logger;
    return *logger;
}
