// `kestova repair-table`, and --sector-size, as a user meets them.

#include <gmock/gmock.h>

#include "tests/support/program/program.h"
#include "tests/support/shell/sparse_file.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* damage = "the GUID partition table is missing; its backup is used";

class RepairTable : public ProgramTest {
  protected:
    RepairTable() {
        EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-gpt.img disk.img").status, 0);
    }

    void Damage() {
        EXPECT_EQ(Shell("dd if=/dev/zero of=disk.img bs=512 seek=1 count=33 conv=notrunc status=none && "
                        "cp --sparse=always disk.img damaged.img")
                      .status,
                  0);
    }
    bool IsAsDamaged() { return AreSame(Folder() / "damaged.img", Folder() / "disk.img"); }
    bool IsAsMade() { return AreSame(KESTOVA_TEST_IMAGES "/factory-gpt.img", Folder() / "disk.img"); }
};

TEST_F(RepairTable, DamagedTable_Status_ShowsTheDiskAndSaysWhichCopyIsUsed) {
    const Outcome sound = Kestova("--image disk.img status");
    Damage();

    const Outcome damaged = Kestova("--image disk.img status");

    EXPECT_EQ(damaged.status, 0);
    EXPECT_EQ(damaged.output, sound.output);
    EXPECT_EQ(damaged.errors, std::string("kestova: disk.img: ") + damage + "\n");
}

TEST_F(RepairTable, DamagedTable_Change_IsRefusedUntilItIsRepaired) {
    Damage();
    const Outcome refused = Kestova("--image disk.img call DisableOrvoBootPartition");
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.errors, std::string("kestova: disk.img: ") + damage +
                                  "; run `kestova --image disk.img repair-table` before it is changed\n");
    EXPECT_TRUE(IsAsDamaged());

    EXPECT_EQ(Kestova("--image disk.img repair-table").status, 0);

    EXPECT_EQ(Kestova("--image disk.img call DisableOrvoBootPartition").status, 0);
}

TEST_F(RepairTable, DamagedTable_RepairTable_MakesTheDiskAsItWas) {
    Damage();

    const Outcome outcome = Kestova("--image disk.img repair-table");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              std::string("disk.img: was repaired\n  ") + damage +
                  "\nBackup, for kestova undo: " + (Folder() / "disk.img.kestova-backup-1\n").string());
    EXPECT_EQ(outcome.errors, "");
    EXPECT_TRUE(IsAsMade());
    EXPECT_THAT(Shell("sgdisk --verify disk.img").output, HasSubstr("No problems found"));
}

TEST_F(RepairTable, RepairedTable_Undo_IsDamagedAsBefore) {
    Damage();
    ASSERT_EQ(Kestova("--image disk.img repair-table").status, 0);

    EXPECT_EQ(Kestova("undo disk.img.kestova-backup-1").status, 0);

    EXPECT_TRUE(IsAsDamaged());
}

TEST_F(RepairTable, DamagedTable_DryRunAsJson_SaysWhatItWouldDoAndWritesNothing) {
    Damage();

    const Outcome outcome = Kestova("--image disk.img --dry-run --json repair-table");

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, std::string(R"({"image":"disk.img","problems":[")") + damage +
                                  R"("],"repaired":false})" + "\n");
    EXPECT_EQ(Kestova("--image disk.img --dry-run repair-table").output,
              std::string("disk.img: would be repaired\n  ") + damage + "\n");
    EXPECT_TRUE(IsAsDamaged());
}

TEST_F(RepairTable, SoundTable_RepairTable_ChangesNothing) {
    const Outcome outcome = Kestova("--image disk.img repair-table");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "disk.img: nothing to repair\n");
    EXPECT_TRUE(IsAsMade());
}

TEST_F(RepairTable, MbrDiskOrNoImage_RepairTable_IsRefused) {
    EXPECT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img mbr.img").status, 0);
    const Outcome mbr = Kestova("--image mbr.img repair-table");
    EXPECT_EQ(mbr.status, 3);
    EXPECT_EQ(
        mbr.errors,
        "kestova: mbr.img: has an MBR; only a GUID partition table has a second copy to be repaired from\n");
    const Outcome none = Kestova("repair-table");
    EXPECT_EQ(none.status, 2);
    EXPECT_THAT(none.errors, StartsWith("kestova: repair-table: name the disk image with --image\n"));
}

// The backup, which is at the end of the disk, cannot be written.
TEST_F(RepairTable, MbrDiskBehindADamagedTable_RepairTable_WritesNeither) {
    Damage();
    ASSERT_EQ(Shell("cp --sparse=always " KESTOVA_TEST_IMAGES "/factory-mbr.img mbr.img").status, 0);
    const Outcome outcome = Kestova("--image disk.img --image mbr.img repair-table");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, StartsWith("kestova: mbr.img: "));
    EXPECT_TRUE(IsAsDamaged());
}

TEST_F(RepairTable, FailingMedium_RepairTable_IsTakenBackOnceTheMediumCanBeWritten) {
    EXPECT_EQ(Shell("truncate -s 500M disk.img && cp --sparse=always disk.img damaged.img").status, 0);
    const Outcome outcome = Shell("ulimit -f 200; " KESTOVA_PROGRAM " --image disk.img repair-table");
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, HasSubstr("disk.img: cannot be written: File too large; "));

    EXPECT_EQ(Kestova("--image disk.img recover").status, 0);

    EXPECT_TRUE(IsAsDamaged());
}

TEST_F(RepairTable, SectorSizeOfOtherDisks_Status_IsRefused) {
    const Outcome outcome = Kestova("--image disk.img --sector-size 1024 status");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, StartsWith("kestova: --sector-size: 512 or 4096, not 1024\n"));
}

TEST_F(RepairTable, SectorSizeWithoutImage_Status_IsRefused) {
    for (const std::string pc : {"--pc factory-mbr", ""}) {
        const Outcome outcome = Kestova(pc + " --sector-size 4096 status");
        EXPECT_EQ(outcome.status, 2) << pc;
        EXPECT_THAT(outcome.errors,
                    StartsWith("kestova: --sector-size: it is for --image, and there is none\n"));
    }
}

TEST_F(RepairTable, SectorSizeGiven_Status_CountsInIt) {
    EXPECT_EQ(
        Shell("truncate -s 40M large.img && echo 'start=256,size=512,type=7' | sfdisk --quiet large.img")
            .status,
        0);
    EXPECT_THAT(Kestova("--image large.img status").output,
                ContainsRegex("  1  [0-9.]+ [KM]iB +256.0 KiB  "));
    EXPECT_THAT(Kestova("--image large.img --sector-size 4096 status").output,
                ContainsRegex("  1  [0-9.]+ [KM]iB +2.0 MiB  "));
}

}  // namespace
