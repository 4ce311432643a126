// A PC started from a disk that the program has switched: which partition starts is what its firmware, which
// is not ours, and the boot code on the disk make of the table.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"

namespace {

using testing::HasSubstr;

class Start : public ProgramTest {
  protected:
    explicit Start(const std::string& format = "raw") : format_(format) {
        EXPECT_EQ(Shell("qemu-img convert -f raw -O " + format +
                        " " KESTOVA_TEST_IMAGES "/startable-mbr.img disk.img")
                      .status,
                  0);
    }

    // What the PC says until it stops by itself.
    std::string Started() {
        const Outcome outcome = Shell(KESTOVA_SOURCE_FOLDER "/tests/images/start " + format_ + " disk.img");
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return outcome.output;
    }

  private:
    const std::string format_;
};

class StartFrom : public Start, public testing::WithParamInterface<const char*> {
  protected:
    StartFrom() : Start(GetParam()) {}
};

TEST_P(StartFrom, SwitchedToRecoveryAndBack_EachTime_TheActivePartitionStarts) {
    EXPECT_EQ(Started(), "Windows starts\n");

    ASSERT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    EXPECT_EQ(Started(), "Recovery starts\n");

    ASSERT_EQ(Kestova("--image disk.img boot system").status, 0);
    EXPECT_EQ(Started(), "Windows starts\n");
}

TEST_P(StartFrom, SwitchedToRecoveryAndUndone_WindowsStarts) {
    ASSERT_EQ(Kestova("--image disk.img --backup before boot recovery").status, 0);
    ASSERT_EQ(Kestova("--image disk.img undo before").status, 0);

    EXPECT_EQ(Started(), "Windows starts\n");
}

INSTANTIATE_TEST_SUITE_P(Each, StartFrom, testing::Values("raw", "qcow2"),
                         [](const auto& tested) { return std::string(tested.param); });

TEST_F(Start, BootCodeOnTheVolumes_StatusAndNtfsinfo_ReadThemAsEver) {
    const Outcome status = Kestova("--image disk.img status");
    EXPECT_EQ(status.status, 0);
    EXPECT_EQ(status.errors, "");
    EXPECT_THAT(status.output, HasSubstr("NTFS         clean      -     recovery: type\n"));
    EXPECT_THAT(status.output, HasSubstr("NTFS         clean      -     installed Windows: contents\n"));

    ChangeRecoveryVolume("ntfsinfo --mft part >info && ntfsfix --no-action part >fix");
    EXPECT_THAT(ReadFile("info"), HasSubstr("Volume Name: Recovery\n"));
    EXPECT_THAT(ReadFile("fix"), HasSubstr("processed successfully"));
}

// With three primary partitions the logical one is number 3.
TEST_F(Start, LogicalPartitionMadeActive_NothingStartsAndARemarkSaidSo) {
    ASSERT_EQ(
        Shell("{ sfdisk --dump disk.img | sed '/^disk.img3/,$d' && printf '%s\\n' '3: size=90MiB, type=f' "
              "'5: size=40MiB, type=7'; } | sfdisk --quiet disk.img")
            .status,
        0);

    const Outcome outcome = Kestova("--image disk.img call SetActive 3");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors,
              "kestova: partition 3 is active and a logical one; a PC starts from primary partitions only\n");
    EXPECT_EQ(Started(), "no active partition\n");
}

TEST_F(Start, TwoActivePartitions_NothingStartsAsTheRemarkSays_UntilOneIsSetActive) {
    ASSERT_EQ(Shell("sfdisk --quiet --activate disk.img 1 2").status, 0);

    EXPECT_THAT(Kestova("--image disk.img status").errors,
                HasSubstr("a PC starts from a disk with one only"));
    EXPECT_EQ(Started(), "invalid partition table\n");

    ASSERT_EQ(Kestova("--image disk.img call SetActive 1").status, 0);
    EXPECT_EQ(Started(), "Recovery starts\n");
}

}  // namespace
