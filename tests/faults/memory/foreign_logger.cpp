#include "tests/faults/memory/foreign_logger.h"

#include "diag/module.h"
#include "logging/logging.h"

namespace {

class ForeignRecord final : public ILogRecord {
  public:
    int GetLevel() const noexcept override { return level; }
    ILogRecord& AppendString(const std::basic_string<WCHAR>& text) noexcept override {
        return Append(!text.empty());
    }
    ILogRecord& AppendText(const WCHAR* text) noexcept override {
        if (text == nullptr) ++Received().nullTexts;
        return Append(text != nullptr && *text != 0);
    }
    ILogRecord& AppendPointer(const void*) noexcept override { return Append(true); }
    ILogRecord& AppendULong(ULONG) noexcept override { return Append(true); }
    ILogRecord& AppendULongLong(ULONGLONG) noexcept override { return Append(true); }
    ILogRecord& AppendLong(LONG) noexcept override { return Append(true); }
    ILogRecord& AppendLongLong(LONGLONG) noexcept override { return Append(true); }
    ILogRecord& AppendInt(INT) noexcept override { return Append(true); }
    ILogRecord& AppendChar(WCHAR) noexcept override { return Append(true); }
    bool IsEmpty() const noexcept override { return !hasText; }

    int level = 0;
    bool hasText = false;

  private:
    ILogRecord& Append(bool isText) {
        hasText = hasText || isText;
        return *this;
    }
};

class ForeignLogger final : public ILogger {
  public:
    void AddSink(ILogSink&) noexcept override {}
    void RemoveSink(ILogSink&) noexcept override {}
    ILogRecord& BeginRecord(int level) noexcept override {
        record_.level = level;
        record_.hasText = false;
        return record_;
    }
    void EndRecord() noexcept override {
        ++Received().count;
        if (record_.IsEmpty()) ++Received().withoutText;
        if (ModuleContext::IsCurrent()) ++Received().ofCurrentModule;
    }

  private:
    ForeignRecord record_;
};

}  // namespace

ReceivedRecords& Received() {
    static ReceivedRecords received;
    return received;
}

ILogger& CLoggingFactory::GetInstance() noexcept {
    static ForeignLogger logger;
    return logger;
}
