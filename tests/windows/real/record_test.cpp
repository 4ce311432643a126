// The library as it ships, recorded on the system and both services, and run again without them.

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

#include "base/utf.h"
#include "logging/logging.h"
#include "manager/kestova.h"
#include "tests/windows/real/landscape.h"
#include "tests/windows/real/services.h"
#include "tools/kestova/recording/recorded_library.h"
#include "tools/kestova/recording/recorder.h"
#include "tools/kestova/recording/replay.h"

namespace {

constexpr ULONGLONG MiB = 1024ULL * 1024;

// One SATA disk: 1 the hidden recovery partition, which is E:, 2 Windows, active, which is C:.
TestPc OneDisk() {
    TestPc pc;
    pc.disks = {{0,
                 500'000 * MiB,
                 VDS_BUS_TYPE_SATA,
                 {{1, MiB, 20'000 * MiB, 0x27, false, TEXT('E'), TEXT("Recovery")},
                  {2, 20'001 * MiB, 400'000 * MiB, 0x07, true, TEXT('C'), TEXT("Windows")}}}};
    return pc;
}

// Puts the log between the calls.
class LogOnTape : private ILogSink {
  public:
    explicit LogOnTape(Tape& tape) : tape_(tape) { CLoggingFactory::GetInstance().AddSink(*this); }
    ~LogOnTape() { CLoggingFactory::GetInstance().RemoveSink(*this); }
    LogOnTape(const LogOnTape&) = delete;
    LogOnTape& operator=(const LogOnTape&) = delete;

  private:
    void Write(const LogEntry& entry) override {
        tape_.Add({{"level", entry.level}, {"text", ToUtf8(entry.Text())}});
    }

    Tape& tape_;
};

std::vector<int> ResultsOn(Tape& tape) {
    const LogOnTape log(tape);
    const RecordedLibrary library(tape);
    Kestova kestova;
    return {kestova.Initialize(false),         kestova.GetFirstInternalDriveNumber(),
            kestova.SetRcvprtActive(),         kestova.GetActivePartitionNumber(),
            kestova.IsEFIBootSystem(),         kestova.SetSystemActive(),
            kestova.GetActivePartitionNumber()};
}

TEST(RecordedWindows, SwitchThereAndBack_ReplayedOnAnEmptyPc_IsAsItWas) {
    EmptyDrives();
    MakeRecoveryFiles("E:");
    std::ostringstream lines;
    std::vector<int> results;
    {
        const Services services{OneDisk()};
        Recorder recorder(lines, "test", "");
        results = ResultsOn(recorder);
        EXPECT_EQ(results[2], 0);
        EXPECT_EQ(results[3], 1);
        EXPECT_EQ(results[5], 0);
    }
    EmptyDrives();
    std::istringstream recording(lines.str());
    Replay replay(recording, "recording");
    EXPECT_EQ(ResultsOn(replay), results);
    EXPECT_EQ(replay.Problem(), "");
    EXPECT_GT(replay.Calls(), 100U);
    EXPECT_FALSE(std::filesystem::exists("E:/SystemVolume.ini"));
}

}  // namespace
