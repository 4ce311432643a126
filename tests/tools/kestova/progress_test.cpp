// The line that shows how far something is, by a clock of the test.

#include <gmock/gmock.h>

#include <sstream>

#include "tests/support/program/program.h"
#include "tools/kestova/common/progress.h"

namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

constexpr uint64_t mebibyte = uint64_t{1} << 20;

std::string NumberText(uint64_t number) {
    return std::to_string(number);
}

class ProgressOnATerminal : public testing::Test {
  protected:
    ProgressPlace Place(size_t columns = 80) {
        return {.terminal = &terminal_, .columns = columns, .now = [this] { return now_; }};
    }
    void Wait(int time) { now_ += milliseconds(time); }
    // What was written since the last call.
    std::string Written() {
        std::string written = terminal_.str();
        terminal_.str("");
        return written;
    }

  private:
    milliseconds now_{12345};
    std::ostringstream terminal_;
};

TEST_F(ProgressOnATerminal, HashOfFourGibibytes_IsShownAfterASecondAndClearedAtTheEnd) {
    {
        Progress progress(Place(), "Hashing", 4096 * mebibyte, SizeText);
        Wait(999);
        progress.Add(256 * mebibyte);
        EXPECT_EQ(Written(), "");

        Wait(1001);
        progress.Add(768 * mebibyte);
        EXPECT_EQ(Written(), "\r\033[KHashing: 1.0 GiB of 4.0 GiB (25%), 512.0 MiB/s, 7 s left");
    }
    EXPECT_EQ(Written(), "\r\033[K");
}

TEST_F(ProgressOnATerminal, ManySmallSteps_ReplaceTheLineFiveTimesASecond) {
    Progress progress(Place(), "Running", 1000, NumberText);
    Wait(1000);
    std::string lines;
    for (int step = 0; step < 100; ++step) {
        progress.Add(1);
        lines += Written();
        Wait(10);
    }
    EXPECT_EQ(std::ranges::count(lines, '\r'), 5);
    EXPECT_THAT(lines, HasSubstr("\r\033[KRunning: 81 of 1000 (8%), 45/s, 21 s left"));
}

TEST_F(ProgressOnATerminal, ShorterThanASecond_ShowsNothing) {
    {
        Progress progress(Place(), "Hashing", mebibyte, SizeText);
        Wait(500);
        progress.Add(mebibyte);
    }
    EXPECT_EQ(Written(), "");
}

TEST_F(ProgressOnATerminal, LongAndNarrow_CountsMinutesAndFitsTheLine) {
    Progress progress(Place(40), "Running", 1000, NumberText);
    Wait(10000);
    progress.Add(100);
    EXPECT_EQ(Written(), "\r\033[KRunning: 100 of 1000 (10%), 10/s, 2 mi…");
}

TEST_F(ProgressOnATerminal, MoreThanTheTotal_HasNoShare) {
    Progress progress(Place(), "Hashing", mebibyte, SizeText);
    Wait(1000);
    progress.Add(2 * mebibyte);
    EXPECT_EQ(Written(), "\r\033[KHashing: 2.0 MiB of 1.0 MiB");
}

TEST_F(ProgressOnATerminal, HiddenForAMessage_ComesBack) {
    Progress progress(Place(), "Running", 10, NumberText);
    Wait(1000);
    progress.Add(1);
    Written();

    progress.Hide();
    EXPECT_EQ(Written(), "\r\033[K");
    progress.Hide();
    EXPECT_EQ(Written(), "");

    Wait(1000);
    progress.Add(1);
    EXPECT_THAT(Written(), HasSubstr("Running: 2 of 10 (20%)"));
}

// Not even the clock is there.
TEST(Progress, WithoutATerminal_IsNotShown) {
    Progress progress({}, "Hashing", mebibyte, SizeText);
    EXPECT_NO_THROW(progress.Add(mebibyte));
    EXPECT_NO_THROW(progress.Hide());
}

}  // namespace
