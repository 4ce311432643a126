// One record at a time: while a thread writes one, every other thread waits that begins a record or changes
// the sinks.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "logging/logging.h"

namespace {

constexpr int turns =
    200;  // that another thread is given; only one that does not wait for the lock uses them

class Collector : public ILogSink {
  public:
    void Write(const LogEntry& entry) override { texts.push_back(entry.Text()); }
    std::vector<std::basic_string<WCHAR>> texts;
};

// Whether another thread could do that while this one was writing a record.
bool PassesWhileARecordIsWritten(const std::function<void()>& action) {
    ILogger& logger = CLoggingFactory::GetInstance();
    std::atomic<bool> started = false;
    std::atomic<bool> done = false;
    ILogRecord& record = logger.BeginRecord(LOG_LEVEL_TRACE).AppendChar(TEXT('A'));
    std::thread other([&] {
        started = true;
        action();
        done = true;
    });
    while (!started)
        std::this_thread::yield();
    for (int turn = 0; turn < turns && !done; ++turn)
        std::this_thread::yield();
    const bool passed = done;
    record.AppendChar(TEXT('Z'));
    logger.EndRecord();
    other.join();
    return passed;
}

using Texts = std::vector<std::basic_string<WCHAR>>;

}  // namespace

TEST(OtherThread, BeginsARecord_WaitsForTheEndOfTheFirst) {
    ILogger& logger = CLoggingFactory::GetInstance();
    Collector sink;
    logger.AddSink(sink);
    EXPECT_FALSE(PassesWhileARecordIsWritten([&] {
        logger.BeginRecord(LOG_LEVEL_TRACE).AppendChar(TEXT('B'));
        logger.EndRecord();
    }));
    EXPECT_EQ(sink.texts, (Texts{TEXT("AZ"), TEXT("B")}));
    logger.RemoveSink(sink);
}

TEST(OtherThread, AddsASink_WaitsForTheEndOfTheRecord) {
    ILogger& logger = CLoggingFactory::GetInstance();
    Collector sink;
    EXPECT_FALSE(PassesWhileARecordIsWritten([&] { logger.AddSink(sink); }));
    EXPECT_EQ(sink.texts, Texts());
    logger.RemoveSink(sink);
}

TEST(OtherThread, RemovesASink_WaitsForTheEndOfTheRecord) {
    ILogger& logger = CLoggingFactory::GetInstance();
    Collector sink;
    logger.AddSink(sink);
    EXPECT_FALSE(PassesWhileARecordIsWritten([&] { logger.RemoveSink(sink); }));
    EXPECT_EQ(sink.texts, (Texts{TEXT("AZ")}));
}
