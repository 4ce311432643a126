// The logger when memory runs out: an item, a line or a sink is lost, and nothing else.

#include <gtest/gtest.h>

#include <array>
#include <string_view>

#include "logging/logging.h"
#include "tests/logging/scarce_memory.h"

namespace {

// Needs no memory itself.
class LastText final : public ILogSink {
  public:
    void Write(const LogEntry& entry) override {
        length_ = 0;
        ++records;
        for (const LogItem& item : entry.items)
            for (const WCHAR unit : item.text)
                if (length_ < text_.size()) text_[length_++] = unit;
    }
    std::basic_string_view<WCHAR> Text() const { return {text_.data(), length_}; }
    int records = 0;

  private:
    std::array<WCHAR, 256> text_{};
    size_t length_ = 0;
};

constexpr std::basic_string_view<WCHAR> whole = TEXT(
    "a text that fits into no string of itself 18446744073709551615 -9223372036854775807 4 5 6 7 8 <pointer>");

void WriteRecord(const std::basic_string<WCHAR>& text) {
    CLoggingFactory::GetInstance()
        .BeginRecord(LOG_LEVEL_TRACE)
        .AppendString(text)
        .AppendULongLong(18446744073709551615ULL)
        .AppendText(TEXT(" "))
        .AppendLongLong(-9223372036854775807LL)
        .AppendText(TEXT(" 4 "))
        .AppendULong(5)
        .AppendText(TEXT(" "))
        .AppendLong(6)
        .AppendText(TEXT(" "))
        .AppendInt(7)
        .AppendChar(TEXT(' '))
        .AppendText(TEXT("8 "))
        .AppendPointer(nullptr);
    CLoggingFactory::GetInstance().EndRecord();
}

class ScarceMemoryTest : public testing::TestWithParam<ScarceMemory::Lack> {};

TEST_P(ScarceMemoryTest, EachAllocationOfARecordFails_RecordIsPassedAndTheNextIsWhole) {
    ILogger& logger = CLoggingFactory::GetInstance();
    const std::basic_string<WCHAR> text = TEXT("a text that fits into no string of itself ");
    LastText sink;
    logger.AddSink(sink);
    bool failed = true;
    int number = 0;
    while (failed) {
        {
            const ScarceMemory memory(++number, GetParam());
            WriteRecord(text);
            failed = memory.HasFailed();
        }
        EXPECT_EQ(sink.Text() == whole, !failed) << number;
        WriteRecord(text);
        EXPECT_EQ(sink.Text(), whole) << number;
        EXPECT_EQ(sink.records, 2 * number);
    }
    logger.RemoveSink(sink);
    EXPECT_GT(number, 4);
}

TEST_P(ScarceMemoryTest, EachAllocationOfAddingSinksFails_SinksThatWereAddedAreWritten) {
    ILogger& logger = CLoggingFactory::GetInstance();
    bool failed = true;
    int number = 0;
    while (failed) {
        std::array<LastText, 100> sinks;
        {
            const ScarceMemory memory(++number, GetParam());
            for (LastText& sink : sinks)
                logger.AddSink(sink);
            failed = memory.HasFailed();
        }
        for (LastText& sink : sinks)
            logger.AddSink(sink);
        WriteRecord(std::basic_string<WCHAR>());
        for (LastText& sink : sinks) {
            EXPECT_EQ(sink.records, 1);
            logger.RemoveSink(sink);
        }
    }
}

// A sink that itself runs out of memory is a sink that throws.
class CopyingSink final : public ILogSink {
  public:
    void Write(const LogEntry& entry) override { copies.push_back(entry); }
    std::vector<LogEntry> copies;
};

TEST_P(ScarceMemoryTest, EachAllocationOfASinkFails_OtherSinksReceiveTheRecord) {
    ILogger& logger = CLoggingFactory::GetInstance();
    LastText last;
    bool failed = true;
    int number = 0;
    while (failed) {
        CopyingSink copying;
        logger.AddSink(copying);
        logger.AddSink(last);
        {
            const ScarceMemory memory(++number, GetParam());
            WriteRecord(std::basic_string<WCHAR>());
            failed = memory.HasFailed();
        }
        EXPECT_EQ(last.records, number);
        logger.RemoveSink(copying);
        logger.RemoveSink(last);
    }
    EXPECT_GT(number, 1);
}

INSTANTIATE_TEST_SUITE_P(Lacks, ScarceMemoryTest,
                         testing::Values(ScarceMemory::Lack::Once, ScarceMemory::Lack::FromThenOn),
                         testing::PrintToStringParamName());

}  // namespace
