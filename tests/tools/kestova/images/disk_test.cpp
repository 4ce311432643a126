// The program on disks of the computer that it runs on: loop devices, where the kernel has them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>

#include "machine/media/device/descriptor.h"
#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;

class DiskOfThisComputer : public ProgramTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
        Attach("--partscan");
    }
    void TearDown() override { Detach(); }

    void Attach(const std::string& options) {
        Detach();
        const Outcome outcome = Shell("losetup --show --find " + options + " disk.img");
        if (outcome.status != 0) GTEST_SKIP() << "no loop device can be set up here: " << outcome.errors;
        disk_ = outcome.output.substr(0, outcome.output.find('\n'));
    }
    void Detach() {
        if (!disk_.empty()) Shell("losetup --detach " + disk_);
        disk_.clear();
    }
    void ExpectRefused(const std::string& words, const std::string& message) {
        const Outcome outcome = Kestova("--image " + disk_ + " " + words);
        EXPECT_EQ(outcome.status, 3) << words;
        EXPECT_EQ(outcome.output, "") << words;
        EXPECT_EQ(outcome.errors, "kestova: " + disk_ + ": " + message + "\n") << words;
        EXPECT_TRUE(IsAsMade()) << words;
    }
    // The kernel's name of a loop device is the file that it is on; without sysfs it says none.
    std::string WhichDisk() const {
        const bool isKnown = std::filesystem::exists("/sys/block");
        return "(" + (isKnown ? (Folder() / "disk.img").string() + ", " : "") + "300.0 MiB)";
    }
    bool IsAsMade() { return AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"); }

    std::string disk_;
};

TEST_F(DiskOfThisComputer, Questions_AnswerAsOfTheImageAndWriteNothing) {
    ASSERT_EQ(Shell("cp --sparse=always disk.img copy.img").status, 0);
    // The kernel knows another model.
    for (const std::string words : {"--columns start,size,label,condition,role status | grep -v '^Disk 0'",
                                    "letters", "--json status | sed 's/\"model\":\"[^\"]*\"//'"}) {
        const Outcome image = Kestova("--image copy.img " + words);
        const Outcome disk = Kestova("--image " + disk_ + " " + words);
        EXPECT_EQ(disk.status, image.status) << words;
        EXPECT_EQ(disk.output, image.output) << words;
        EXPECT_EQ(disk.errors, image.errors) << words;
    }
    EXPECT_TRUE(IsAsMade());
}

TEST_F(DiskOfThisComputer, BootRecoveryAndUndo_ChangeItAndRestoreIt) {
    const std::string disk = "--image " + disk_ + " --yes --journal journal ";
    const Outcome recovery = Kestova(disk + "--backup backup boot recovery");
    EXPECT_EQ(recovery.status, 0) << recovery.errors;
    EXPECT_THAT(recovery.output, EndsWith("Backup, for kestova undo: backup\n"));
    EXPECT_THAT(Shell("sfdisk --dump disk.img").output, HasSubstr("type=27, bootable\n"));

    const Outcome undo = Kestova(disk + "--no-backup undo backup");
    EXPECT_EQ(undo.status, 0) << undo.errors;
    EXPECT_TRUE(IsAsMade());
    EXPECT_FALSE(std::filesystem::exists(Folder() / "journal"));
}

TEST_F(DiskOfThisComputer, WithoutTable_Status_IsNotCalledAnImage) {
    ASSERT_EQ(Shell("dd if=/dev/zero of=disk.img bs=512 count=1 conv=notrunc status=none").status, 0);
    EXPECT_EQ(Kestova("--image " + disk_ + " status").errors,
              "kestova: " + disk_ + ": no partition table, so no partitioned disk\n");
    ASSERT_EQ(Shell("cp " KESTOVA_TEST_IMAGES "/stick-fat16.img disk.img").status, 0);
    Attach("");
    EXPECT_EQ(
        Kestova("--image " + disk_ + " status").errors,
        "kestova: " + disk_ +
            ": no partition table, so no partitioned disk: the disk holds a single FAT volume; --stick opens it\n");
}

TEST_F(DiskOfThisComputer, NobodyConfirms_BootRecovery_IsRefused) {
    ExpectRefused("boot recovery",
                  "a disk of this computer; --yes confirms that it is to be changed " + WhichDisk());
    EXPECT_EQ(Kestova("--image " + disk_ + " --dry-run boot recovery").status, 0);
}

TEST_F(DiskOfThisComputer, NoPlaceForJournalOrBackup_BootRecovery_IsRefused) {
    ExpectRefused(
        "--yes boot recovery",
        "a disk has no place beside it for a journal; name one with --journal, or write without one "
        "(--no-journal)");
    ExpectRefused(
        "--yes --journal journal boot recovery",
        "a disk has no place beside it for a backup; name a file with --backup, or change without one "
        "(--no-backup)");
}

// The terminal shows the question, which names the disk by what the kernel knows of it.
TEST_F(DiskOfThisComputer, AskedOnATerminal_BootRecovery_ObeysTheAnswer) {
    const std::string command = "script --quiet --return --command \"'" KESTOVA_PROGRAM "' --image " + disk_ +
                                " --no-journal boot recovery\" terminal";
    const Outcome no = Shell("echo n | " + command);
    EXPECT_EQ(no.status, 1);
    EXPECT_THAT(no.output,
                HasSubstr(disk_ + " " + WhichDisk() + " is a disk of this computer. Change it? [y/N] "));
    EXPECT_THAT(no.output, HasSubstr("kestova: " + disk_ + ": nothing was changed"));
    EXPECT_TRUE(IsAsMade());

    EXPECT_EQ(Shell("echo y | " + command).status, 0);
    EXPECT_THAT(Shell("sfdisk --dump disk.img").output, HasSubstr("type=27, bootable\n"));
}

TEST_F(DiskOfThisComputer, ClaimedByAnother_BootRecovery_IsRefused) {
    const machine::Descriptor other(open(disk_.c_str(), O_RDONLY | O_EXCL | O_CLOEXEC));
    ASSERT_TRUE(other);
    ExpectRefused("--yes --no-journal boot recovery",
                  "in use: another program has claimed it or a partition of it");
    EXPECT_EQ(Kestova("--image " + disk_ + " status").status, 0);
}

TEST_F(DiskOfThisComputer, Mounted_BootRecovery_IsRefusedAndStatusSaysSo) {
    Detach();
    ASSERT_EQ(Shell("truncate --size 8M disk.img && mke2fs -q disk.img && "
                    "echo ,2M,7 | sfdisk --quiet --wipe never disk.img")
                  .status,
              0);
    Attach("");
    ASSERT_EQ(Shell("mkdir 'a folder'").status, 0);
    if (Shell("mount " + disk_ + " 'a folder'").status != 0) GTEST_SKIP() << "nothing can be mounted here";

    const Outcome change = Kestova("--image " + disk_ + " --yes --no-journal boot recovery");
    const Outcome question = Kestova("--image " + disk_ + " status");
    Shell("umount 'a folder'");

    const std::string user = "in use: " + disk_ + " is mounted on " + (Folder() / "a folder").string();
    EXPECT_EQ(change.status, 3);
    EXPECT_EQ(change.errors, "kestova: " + disk_ + ": " + user + "\n");
    EXPECT_THAT(question.errors, HasSubstr(user));
}

// As a volume is mounted from a rescue system that does not know the table.
TEST_F(DiskOfThisComputer, LoopDeviceOnIt_BootRecovery_IsRefused) {
    const std::string on =
        Shell("losetup --show --find --offset 1048576 --sizelimit 62914560 " + disk_).output;
    const std::string loop = on.substr(0, on.find('\n'));
    ASSERT_THAT(loop, testing::StartsWith("/dev/loop"));
    ExpectRefused("--yes --no-journal --no-backup boot recovery",
                  "in use: the loop device " + loop + " is on " + disk_);
    Shell("losetup --detach " + loop);
}

TEST_F(DiskOfThisComputer, OpenForWritingElsewhere_BootRecovery_IsRefusedUntilItIsClosed) {
    {
        const machine::Descriptor writer(open(disk_.c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_TRUE(writer);
        ExpectRefused("--yes --no-journal --no-backup boot recovery",
                      "in use: " + Shell("tr -d '\\n' </proc/" + std::to_string(getpid()) + "/comm").output +
                          " (process " + std::to_string(getpid()) + ") has " + disk_ + " open for writing");
    }
    const machine::Descriptor reader(open(disk_.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(reader);
    EXPECT_EQ(Kestova("--image " + disk_ + " --yes --no-journal --no-backup boot recovery").status, 0);
}

TEST_F(DiskOfThisComputer, ReadOnly_BootRecovery_IsRefused) {
    Attach("--read-only");
    ExpectRefused("--yes --no-journal boot recovery", "a read-only medium");
    EXPECT_EQ(Kestova("--image " + disk_ + " status").status, 0);
}

TEST_F(DiskOfThisComputer, Partition_Status_IsRefusedWithTheNameOfItsDisk) {
    const std::string name = std::filesystem::path(disk_).filename();
    const std::string numbers = "/sys/block/" + name + "/" + name + "p1/dev";
    if (!std::filesystem::exists(numbers)) GTEST_SKIP() << "loop devices have no partitions here";
    ASSERT_EQ(Shell("mknod part b $(tr : ' ' <" + numbers + ")").status, 0);

    const Outcome outcome = Kestova("--image part status");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "kestova: part: a partition; name the disk that it is on, " + disk_ + "\n");
}

// What the disk says of itself is right: the file does not say it.
TEST_F(DiskOfThisComputer, SectorsOf4096Bytes_Status_ShowsThePartitionsInTheirSizes) {
    Detach();
    ASSERT_EQ(Shell("rm disk.img && truncate --size 64M disk.img").status, 0);
    Attach("--sector-size 4096");
    ASSERT_EQ(Shell("echo ',32M,7,*' | sfdisk --quiet " + disk_).status, 0);

    const Outcome outcome = Kestova("--image " + disk_ + " status");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, ContainsRegex("1 +[0-9.]+ MiB +32.0 MiB"));
}

}  // namespace
