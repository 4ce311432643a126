#include "diag/log_record.h"

#include <gtest/gtest.h>

namespace {

// Keeps what the library appends, item by item.
class Collector : public ILogSink {
  public:
    Collector() { CLoggingFactory::GetInstance().AddSink(*this); }
    ~Collector() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    std::vector<LogEntry> entries;

  private:
    void Write(const LogEntry& entry) override { entries.push_back(entry); }
};

TEST(LogRecord, EndOfTheExpression_EndsTheRecordWithTheEmptyText) {
    Collector collector;
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("message"));
    ASSERT_EQ(collector.entries.size(), 1U);
    const LogEntry& entry = collector.entries[0];
    EXPECT_EQ(entry.level, LOG_LEVEL_TRACE);
    ASSERT_EQ(entry.items.size(), 2U);
    EXPECT_EQ(entry.items[0].text, TEXT("message"));
    EXPECT_EQ(entry.items[1].kind, LogItemKind::Text);
    EXPECT_EQ(entry.items[1].text, TEXT(""));
}

TEST(LogRecord, EachValue_GoesThroughTheAppendOfItsType) {
    Collector collector;
    LogRecord(LOG_LEVEL_ERROR)
        .String(TEXT("s"))
        .Pointer(&collector)
        .ULong(0xFFFFFFFF)
        .Long(static_cast<LONG>(0x80070057))
        .Int(-1)
        .Char(TEXT('D'));
    ASSERT_EQ(collector.entries.size(), 1U);
    const std::vector<LogItem>& items = collector.entries[0].items;
    const LogItemKind kinds[] = {LogItemKind::String, LogItemKind::Pointer, LogItemKind::ULong,
                                 LogItemKind::Long,   LogItemKind::Int,     LogItemKind::Char,
                                 LogItemKind::Text};
    ASSERT_EQ(items.size(), std::size(kinds));
    for (size_t at = 0; at < std::size(kinds); ++at)
        EXPECT_EQ(items[at].kind, kinds[at]) << at;
    EXPECT_EQ(items[2].text, TEXT("4294967295"));
    EXPECT_EQ(items[3].text, TEXT("-2147024809"));
}

}  // namespace
