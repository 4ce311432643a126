#include <gtest/gtest.h>

#include <thread>

#include "logging/logging.h"

namespace {

class Collector final : public ILogSink {
  public:
    void Write(const LogEntry& entry) override { entries.push_back(entry); }
    std::vector<LogEntry> entries;
};

class LoggerTest : public testing::Test {
  protected:
    LoggerTest() { logger_.AddSink(sink_); }
    ~LoggerTest() override { logger_.RemoveSink(sink_); }

    ILogger& logger_ = CLoggingFactory::GetInstance();
    Collector sink_;
};

TEST_F(LoggerTest, TwoCalls_ReturnOneLogger) {
    EXPECT_EQ(&CLoggingFactory::GetInstance(), &logger_);
}

TEST_F(LoggerTest, EachKindOfValue_IsRendered) {
    logger_.BeginRecord(LOG_LEVEL_ERROR)
        .AppendString(TEXT("formatted "))
        .AppendText(TEXT("literal "))
        .AppendLong(static_cast<LONG>(0x80070057))
        .AppendText(TEXT(" "))
        .AppendULong(0x80070057)
        .AppendText(TEXT(" "))
        .AppendInt(-1)
        .AppendText(TEXT(" "))
        .AppendChar(TEXT('C'))
        .AppendText(TEXT(" "))
        .AppendPointer(&sink_)
        .AppendText(nullptr);
    logger_.EndRecord();
    ASSERT_EQ(sink_.entries.size(), 1U);
    EXPECT_EQ(sink_.entries[0].level, LOG_LEVEL_ERROR);
    EXPECT_EQ(sink_.entries[0].Text(), TEXT("formatted literal -2147024809 2147942487 -1 C <pointer>"));
    const LogItemKind kinds[] = {LogItemKind::String, LogItemKind::Text,    LogItemKind::Long,
                                 LogItemKind::Text,   LogItemKind::ULong,   LogItemKind::Text,
                                 LogItemKind::Int,    LogItemKind::Text,    LogItemKind::Char,
                                 LogItemKind::Text,   LogItemKind::Pointer, LogItemKind::Text};
    ASSERT_EQ(sink_.entries[0].items.size(), std::size(kinds));
    for (size_t at = 0; at < std::size(kinds); ++at)
        EXPECT_EQ(sink_.entries[0].items[at].kind, kinds[at]) << at;
}

TEST_F(LoggerTest, NumbersOf64Bits_AreRendered) {
    logger_.BeginRecord(LOG_LEVEL_TRACE)
        .AppendULongLong(18446744073709551615ULL)
        .AppendText(TEXT(" "))
        .AppendLongLong(-9223372036854775807LL);
    logger_.EndRecord();
    ASSERT_EQ(sink_.entries.size(), 1U);
    EXPECT_EQ(sink_.entries[0].Text(), TEXT("18446744073709551615 -9223372036854775807"));
    EXPECT_EQ(sink_.entries[0].items[0].kind, LogItemKind::ULongLong);
    EXPECT_EQ(sink_.entries[0].items[2].kind, LogItemKind::LongLong);
}

TEST_F(LoggerTest, TwoThreads_HaveRecordsOfTheirOwn) {
    const auto write = [this](WCHAR name) {
        for (int record = 0; record < 500; ++record) {
            logger_.BeginRecord(LOG_LEVEL_TRACE).AppendChar(name).AppendChar(name).AppendChar(name);
            logger_.EndRecord();
        }
    };
    std::thread other(write, TEXT('B'));
    write(TEXT('A'));
    other.join();
    int records[2] = {};
    for (const LogEntry& entry : sink_.entries) {
        const std::basic_string<WCHAR> text = entry.Text();
        ASSERT_TRUE(text == TEXT("AAA") || text == TEXT("BBB"));
        ++records[text == TEXT("BBB") ? 1 : 0];
    }
    EXPECT_EQ(records[0], 500);
    EXPECT_EQ(records[1], 500);
}

TEST_F(LoggerTest, FormattedMessage_ReadsAsTheSameLiteral) {
    logger_.BeginRecord(LOG_LEVEL_TRACE).AppendString(TEXT("same"));
    logger_.EndRecord();
    logger_.BeginRecord(LOG_LEVEL_TRACE).AppendText(TEXT("same"));
    logger_.EndRecord();
    ASSERT_EQ(sink_.entries.size(), 2U);
    EXPECT_EQ(sink_.entries[0].Text(), sink_.entries[1].Text());
}

TEST_F(LoggerTest, Record_ReturnsItsLevelAndWhetherItIsEmpty) {
    ILogRecord& record = logger_.BeginRecord(LOG_LEVEL_TRACE);
    EXPECT_EQ(record.GetLevel(), LOG_LEVEL_TRACE);
    EXPECT_TRUE(record.IsEmpty());
    EXPECT_FALSE(record.AppendText(TEXT("")).IsEmpty());
    logger_.EndRecord();
}

TEST_F(LoggerTest, SecondRecord_StartsEmpty) {
    logger_.BeginRecord(LOG_LEVEL_ERROR).AppendText(TEXT("first"));
    logger_.EndRecord();
    logger_.BeginRecord(LOG_LEVEL_TRACE).AppendText(TEXT("second"));
    logger_.EndRecord();
    ASSERT_EQ(sink_.entries.size(), 2U);
    EXPECT_EQ(sink_.entries[1].Text(), TEXT("second"));
    EXPECT_EQ(sink_.entries[1].level, LOG_LEVEL_TRACE);
}

TEST_F(LoggerTest, SinkAddedTwice_IsWrittenOnce) {
    logger_.AddSink(sink_);
    logger_.BeginRecord(LOG_LEVEL_TRACE);
    logger_.EndRecord();
    EXPECT_EQ(sink_.entries.size(), 1U);
}

// Removes itself, or another sink, or adds one, when a record comes.
class ChangingSink final : public ILogSink {
  public:
    void Write(const LogEntry&) override {
        ++records;
        if (removed != nullptr) CLoggingFactory::GetInstance().RemoveSink(*removed);
        for (ILogSink* const sink : added)
            CLoggingFactory::GetInstance().AddSink(*sink);
    }
    ILogSink* removed = nullptr;
    std::vector<ILogSink*> added;
    int records = 0;
};

class SinksTest : public LoggerTest {
  protected:
    void WriteRecords(int count) {
        for (int record = 0; record < count; ++record) {
            logger_.BeginRecord(LOG_LEVEL_TRACE);
            logger_.EndRecord();
        }
    }
};

TEST_F(SinksTest, SinkRemovesItselfInWrite_OthersReceiveThatRecordAndItNoMore) {
    ChangingSink first;
    Collector last;
    first.removed = &first;
    logger_.RemoveSink(sink_);
    logger_.AddSink(first);
    logger_.AddSink(sink_);
    logger_.AddSink(last);
    WriteRecords(3);
    logger_.RemoveSink(last);
    EXPECT_EQ(first.records, 1);
    EXPECT_EQ(sink_.entries.size(), 3U);
    EXPECT_EQ(last.entries.size(), 3U);
}

TEST_F(SinksTest, SinkRemovesALaterOneInWrite_ThatOneDoesNotReceiveTheRecord) {
    ChangingSink changing;
    Collector last;
    changing.removed = &sink_;
    logger_.RemoveSink(sink_);
    logger_.AddSink(changing);
    logger_.AddSink(sink_);
    logger_.AddSink(last);
    WriteRecords(2);
    logger_.RemoveSink(changing);
    logger_.RemoveSink(last);
    EXPECT_TRUE(sink_.entries.empty());
    EXPECT_EQ(last.entries.size(), 2U);
}

TEST_F(SinksTest, SinkAddsManyInWrite_TheyReceiveTheNextRecordAndEveryOtherOnceEach) {
    ChangingSink changing;
    std::vector<Collector> added(100);
    for (Collector& sink : added)
        changing.added.push_back(&sink);
    logger_.RemoveSink(sink_);
    logger_.AddSink(changing);
    logger_.AddSink(sink_);
    WriteRecords(2);
    logger_.RemoveSink(changing);
    for (Collector& sink : added) {
        EXPECT_EQ(sink.entries.size(), 1U);
        logger_.RemoveSink(sink);
    }
    EXPECT_EQ(changing.records, 2);
    EXPECT_EQ(sink_.entries.size(), 2U);
}

TEST_F(SinksTest, SinkRemovesAndAddsItselfInWrite_ReceivesEveryRecordOnce) {
    ChangingSink changing;
    changing.removed = &changing;
    changing.added = {&changing};
    logger_.AddSink(changing);
    WriteRecords(3);
    logger_.RemoveSink(changing);
    EXPECT_EQ(changing.records, 3);
}

// Writes a record itself when the first one comes, after it has removed another sink.
class WritingSink final : public ILogSink {
  public:
    explicit WritingSink(ILogSink& removed) : removed_(removed) {}
    void Write(const LogEntry&) override {
        if (++records != 1) return;
        ILogger& logger = CLoggingFactory::GetInstance();
        logger.RemoveSink(removed_);
        logger.BeginRecord(LOG_LEVEL_TRACE);
        logger.EndRecord();
    }
    int records = 0;

  private:
    ILogSink& removed_;
};

// Against the contract of a sink, but no reason to crash or to call another one twice.
TEST_F(SinksTest, SinkWritesARecordInWrite_LaterOneReceivesBothRecordsOnce) {
    WritingSink writing(sink_);
    Collector last;
    logger_.RemoveSink(sink_);
    logger_.AddSink(writing);
    logger_.AddSink(sink_);
    logger_.AddSink(last);
    WriteRecords(1);
    logger_.RemoveSink(writing);
    logger_.RemoveSink(last);
    EXPECT_EQ(writing.records, 2);
    EXPECT_TRUE(sink_.entries.empty());
    EXPECT_EQ(last.entries.size(), 2U);
}

class FailingSink : public ILogSink {
  public:
    void Write(const LogEntry&) override { throw 1; }
};

TEST_F(LoggerTest, FailingSink_DisturbsNoOther) {
    FailingSink failing;
    logger_.RemoveSink(sink_);
    logger_.AddSink(failing);
    logger_.AddSink(sink_);
    logger_.BeginRecord(LOG_LEVEL_TRACE);
    EXPECT_NO_THROW(logger_.EndRecord());
    logger_.RemoveSink(failing);
    EXPECT_EQ(sink_.entries.size(), 1U);
}

TEST_F(LoggerTest, RemovedSink_IsNotWritten) {
    logger_.RemoveSink(sink_);
    logger_.BeginRecord(LOG_LEVEL_TRACE);
    logger_.EndRecord();
    EXPECT_TRUE(sink_.entries.empty());
}

}  // namespace
