// The program on disk images, checked with independent tools.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class Image : public ProgramTest {
  protected:
    Image() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img disk.img").status, 0);
    }

    bool IsAsItWas() { return AreSame(KESTOVA_TEST_IMAGES "/factory-mbr.img", Folder() / "disk.img"); }
    std::string Table() { return Shell("sfdisk --dump disk.img | grep ^disk").output; }
    Outcome Record() {
        return Shell(
            "dd if=disk.img of=recovery.ntfs bs=1M skip=1 count=60 status=none; "
            "ntfscat --force recovery.ntfs SystemVolume.ini");
    }
};

TEST_F(Image, MbrImage_Status_RunsWindowsPeAndWritesNothing) {
    const Outcome outcome = Kestova("--image disk.img status");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(
        outcome.output,
        "Firmware           BIOS\n"
        "Running system     Windows PE\n"
        "Windows directory  X:\\Windows\n"
        "Internal disk      0\n"
        "Partition style    MBR\n"
        "Active partition   2\n"
        "Layout             MBR, partition 2 is not labelled System Reserved\n"
        "Installed Windows  D: disk 0, partition 2\n"
        "Encrypted volumes  none\n"
        "Recovery disc      none\n"
        "Recovery stick     none\n"
        "Cache partition    no\n"
        "Record             none; boot system changes nothing\n"
        "\n"
        "Disk 0: 300.0 MiB, MBR, SATA, Emulated disk; internal: an image counts as SATA; the first internal disk\n"
        "  #  Start      Size       Type                    Active  Letter  Label     File system  Condition  Hide  Role: reason\n"
        "  1  1.0 MiB    60.0 MiB   hidden recovery (0x27)  -       C       Recovery  NTFS         clean      -     recovery: type\n"
        "  2  61.0 MiB   120.0 MiB  NTFS (0x07)             active  D       Windows   NTFS         clean      -     installed Windows: contents\n"
        "  3  181.0 MiB  90.0 MiB   NTFS (0x07)             -       E       Data      NTFS         clean      -     -\n"
        "  4  271.0 MiB  28.0 MiB   hibernation (0x84)      -       -       -         -            -          -     hibernation: type\n"
        "     299.0 MiB  1.0 MiB    free\n");
    EXPECT_TRUE(IsAsItWas());
}

// The record is a line or two; a larger file of that name is never read.
// The rescue stick itself, or a disk that was mounted so after an error.
TEST_F(Image, FileOnAReadOnlyMedium_EachChange_IsCalledThat) {
    if (Shell("mkdir there && mount -t tmpfs none there").status != 0)
        GTEST_SKIP() << "nothing can be mounted here";
    EXPECT_EQ(Shell("cp --sparse=always disk.img there && mount -o remount,ro there").status, 0);
    for (const std::string words : {"boot recovery", "recover"}) {
        const Outcome outcome = Kestova("--image there/disk.img --no-journal --no-backup " + words);
        EXPECT_EQ(outcome.status, 3) << words;
        EXPECT_EQ(outcome.errors, "kestova: there/disk.img: on a read-only medium\n") << words;
    }
    EXPECT_EQ(Kestova("--image there/disk.img --quiet status").status, 0);
    Shell("umount there");
}

TEST_F(Image, OversizedRecord_Boot_NeitherReadsNorOverwritesIt) {
    WriteFile("make",
              "set -e\n"
              "source " KESTOVA_SOURCE_FOLDER
              "/tests/images/volumes.sh\n"
              "begin_image long.img 330\n"
              "recovery_files $parts/files\n"
              "echo >$parts/files/SystemVolume.ini\n"
              "partition 'label: dos\nstart=1MiB, size=300MiB, type=27\nstart=310MiB, type=7, bootable'\n"
              "put_ntfs Recovery 1 300 $parts/files\n"
              "dd if=long.img of=volume bs=1M skip=1 count=300 conv=sparse\n"
              "inode=$(ntfsls --force --inode volume | sed -n 's/ *\\([0-9]*\\) SystemVolume.ini/\\1/p')\n"
              "ntfstruncate -f volume $inode 280000000\n"
              "dd if=volume of=long.img bs=1M seek=1 conv=sparse,notrunc\n"
              "end_image\n");
    ASSERT_EQ(Shell("bash make 2>making").status, 0) << ReadFile("making");

    const Outcome recovery = Kestova("--image long.img boot recovery");
    EXPECT_EQ(recovery.status, 4);
    EXPECT_EQ(recovery.output, "SetRcvprtActive() = 4: the record could not be written\nNothing changed.\n");
    const Outcome system = Kestova("--image long.img boot system");
    EXPECT_EQ(system.status, 0);
    EXPECT_EQ(system.output,
              "SetSystemActive() = 0: done\n"
              "Changed:\n"
              "  disk 0, partition 1: file SystemVolume.ini deleted\n"
              "Backup, for kestova undo: " +
                  (Folder() / "long.img.kestova-backup-1\n").string());
}

TEST_F(Image, MbrImage_BootRecovery_MovesTheFlagAndWritesTheRecord) {
    const Outcome outcome = Kestova("--image disk.img boot recovery");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "SetRcvprtActive() = 0: done\n"
              "Changed:\n"
              "  disk 0, partition 1: active now\n"
              "  disk 0, partition 1: file SystemVolume.ini created:\n"
              "    [System]\n"
              "    Active=2\n"
              "  disk 0, partition 2: no longer active\n"
              "Backup, for kestova undo: " +
                  (Folder() / "disk.img.kestova-backup-1\n").string());
    EXPECT_THAT(Table(), HasSubstr("size=      122880, type=27, bootable\n"));
    EXPECT_THAT(Table(), HasSubstr("size=      245760, type=7\n"));
    EXPECT_EQ(Record().output, "[System]\r\nActive=2\r\n");
}

TEST_F(Image, MbrImage_BootRecoveryThenSystem_RestoresTheTableAndDeletesTheRecord) {
    const std::string table = Table();
    EXPECT_EQ(Kestova("--image disk.img boot recovery").status, 0);
    EXPECT_NE(Table(), table);
    EXPECT_EQ(Kestova("--image disk.img boot system").status, 0);
    EXPECT_EQ(Table(), table);
    EXPECT_NE(Record().status, 0);
    EXPECT_EQ(Shell("ntfsfix --no-action recovery.ntfs").status, 0);
}

TEST_F(Image, MbrImage_DryRunBootRecovery_ShowsTheChangesAndWritesNothing) {
    const Outcome outcome = Kestova("--image disk.img --dry-run boot recovery");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Would change:\n  disk 0, partition 1: active now\n"
                                          "  disk 0, partition 1: file SystemVolume.ini created:\n"));
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Image, FlagNotSet_BootRecovery_LeavesTheTableAndNoRecord) {
    const std::string table = Table();
    EXPECT_EQ(
        Kestova("--image disk.img --fail 'IVdsAdvancedDisk::ChangeAttributes#1=0x80004005' boot recovery")
            .status,
        5);
    EXPECT_EQ(Table(), table);
    EXPECT_NE(Record().status, 0);
}

TEST_F(Image, RecoveryVolumeOverwritten_Status_IsAProblem) {
    EXPECT_EQ(Shell("dd if=/dev/zero of=disk.img bs=1M seek=1 count=8 conv=notrunc status=none").status, 0);
    const Outcome mbr = Kestova("--image disk.img --json status");
    EXPECT_EQ(mbr.status, 1);
    EXPECT_THAT(
        mbr.output,
        HasSubstr(R"(,"problem":"partition 1 is for recovery and holds no file system that can be read")"));
    EXPECT_EQ(Kestova("--image disk.img status").errors,
              "kestova: partition 1 is for recovery and holds no file system that can be read\n");

    const std::string at = Shell("cp --sparse=always " KESTOVA_TEST_IMAGES
                                 "/factory-gpt.img gpt.img; sfdisk --dump gpt.img | "
                                 "sed -n 's/^gpt.img6 : start= *\\([0-9]*\\),.*/\\1/p'")
                               .output;
    ASSERT_NE(at, "");
    EXPECT_EQ(Shell("dd if=/dev/zero of=gpt.img bs=512 seek=" + std::to_string(std::stoul(at)) +
                    " count=16384 conv=notrunc status=none")
                  .status,
              0);
    const Outcome gpt = Kestova("--image gpt.img --windows status");
    EXPECT_EQ(gpt.status, 1);
    EXPECT_THAT(gpt.errors,
                HasSubstr("partition 6 is for recovery and holds no file system that can be read"));
}

TEST_F(Image, DescriptionInAnotherFolder_Call_FindsTheImage) {
    EXPECT_EQ(Shell("mkdir pcs").status, 0);
    EXPECT_EQ(Kestova("--image disk.img --save pcs/pc.json status").status, 0);
    const Outcome outcome = Kestova("--pc pcs/pc.json call GetDriveLetter 0 2");
    EXPECT_EQ(outcome.output, "GetDriveLetter(0, 2) = D: its letter\n");
    EXPECT_TRUE(IsAsItWas());
}

TEST_F(Image, ImageAsLogOrDescription_BootRecovery_IsWrongUse) {
    EXPECT_EQ(Shell("ln -s disk.img soft && ln disk.img hard").status, 0);
    for (const char* const option : {"--log soft", "--log ./disk.img", "--save hard", "--save disk.img"}) {
        const Outcome outcome = Kestova(std::string("--image disk.img ") + option + " boot recovery");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr(" is an image of this PC\n"));
        EXPECT_TRUE(IsAsItWas()) << option;
    }
}

TEST_F(Image, MissingOrShortImage_BootRecovery_IsRefused) {
    EXPECT_EQ(Shell("head -c 1000 disk.img > short.img").status, 0);
    for (const char* const name : {"none.img", "short.img"}) {
        const Outcome outcome = Kestova(std::string("--image ") + name + " boot recovery");
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.output, "");
        EXPECT_THAT(outcome.errors, StartsWith(std::string("kestova: ") + name + ": "));
    }
}

// A copy that ended in the middle of a sector.
TEST_F(Image, TruncatedDump_Status_ShowsWhatIsThereAndChangesAreRefused) {
    EXPECT_EQ(
        Shell("truncate -s $((200 * 1024 * 1024 + 100)) disk.img && cp --sparse=always disk.img before.img")
            .status,
        0);
    const std::string flaw =
        "kestova: disk.img: not a whole number of 512-byte sectors, so no disk image, or a truncated one\n";

    const Outcome status = Kestova("--image disk.img status");
    EXPECT_EQ(status.status, 1);
    EXPECT_EQ(
        status.errors,
        flaw +
            "kestova: disk.img: partition 3 ends 74448896 bytes beyond the end of the file; the image is "
            "truncated, or its table damaged\n"
            "kestova: disk.img: partition 4 ends 103809024 bytes beyond the end of the file; the image is "
            "truncated, or its table damaged\n"
            "kestova: the volume E: cannot be read (error 1392)\n");
    EXPECT_THAT(status.output, HasSubstr("Disk 0: 200.0 MiB, MBR, "));
    EXPECT_THAT(status.output, HasSubstr(" Windows   NTFS         clean "));

    for (const std::string words : {"boot recovery", "--dry-run boot recovery", "check", "recover"}) {
        const Outcome refused = Kestova("--image disk.img " + words);
        EXPECT_EQ(refused.status, 3) << words;
        EXPECT_EQ(refused.errors, flaw) << words;
        EXPECT_TRUE(AreSame(Folder() / "before.img", Folder() / "disk.img")) << words;
    }
}

// A new disk in a PC, or a medium that was wiped.
TEST_F(Image, BlankDiskBesideAnother_StatusAndBoot_WorkOnTheOther) {
    EXPECT_EQ(Shell("truncate -s 10M blank.img").status, 0);
    const Outcome status = Kestova("--image disk.img --image blank.img --quiet status");
    EXPECT_EQ(status.status, 0) << status.errors;
    EXPECT_THAT(status.output, HasSubstr("Disk 1: 10.0 MiB, no partition table, "));

    EXPECT_EQ(Kestova("--image disk.img --image blank.img --no-backup boot recovery").status, 0);
    EXPECT_THAT(Table(), HasSubstr("size=      122880, type=27, bootable\n"));
    EXPECT_EQ(Shell("cmp blank.img /dev/zero 2>&1").output,
              "cmp: EOF on blank.img after byte 10485760, in line 1\n");
}

TEST_F(Image, BlankDiskFirst_Status_ShowsBoth) {
    EXPECT_EQ(
        Shell("truncate -s 10M blank.img && cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-gpt.img .")
            .status,
        0);
    const Outcome status = Kestova("--image blank.img --image factory-gpt.img status");
    EXPECT_THAT(status.output, StartsWith("Firmware           UEFI\n"));
    EXPECT_THAT(status.output, HasSubstr("\nDisk 0: 10.0 MiB, no partition table, "));
    EXPECT_THAT(status.output, HasSubstr("\nDisk 1: 400.0 MiB, GPT, "));

    EXPECT_EQ(Kestova("--image blank.img --image factory-gpt.img --save pc.json status").status, 0);
    const Outcome saved = Kestova("--pc pc.json status");
    EXPECT_THAT(saved.output, HasSubstr("\nDisk 0: 10.0 MiB, no partition table, "));
    EXPECT_THAT(saved.output, HasSubstr("\nDisk 1: 400.0 MiB, GPT, "));
}

TEST_F(Image, BlankDiskAlone_Status_IsRefused) {
    EXPECT_EQ(Shell("truncate -s 10M blank.img").status, 0);
    const Outcome status = Kestova("--image blank.img status");
    EXPECT_EQ(status.status, 3);
    EXPECT_EQ(status.errors, "kestova: blank.img: no partition table, so no disk image\n");
}

TEST_F(Image, ImageNamedTwice_Status_IsRefused) {
    EXPECT_EQ(Shell("ln disk.img hard.img").status, 0);
    WriteFile("disks.json",
              R"({"disks": [{"number": 0, "image": "disk.img"}, {"number": 1, "image": "hard.img"}]})");
    WriteFile("stick.json", R"({"disks": [{"number": 0, "image": "disk.img"}],
                                "volumes": [{"letters": "U", "driveType": "removable", "image": "hard.img"}]})");
    for (const char* const name : {"disks.json", "stick.json"}) {
        const Outcome outcome = Kestova(std::string("--pc ") + name + " status");
        EXPECT_EQ(outcome.status, 3) << name;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "kestova: hard.img: given twice, first as disk.img\n");
    }
}

}  // namespace
