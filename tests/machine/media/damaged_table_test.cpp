// Partition tables that are damaged, moved or cut off: what can be read is shown with a note, and nothing on
// the disk is changed until the table is repaired.
#include <gmock/gmock.h>
#include <zlib.h>

#include <fstream>

#include "machine/media/device/little_endian.h"
#include "machine/media/image/image_file.h"
#include "machine/media/table/gpt_repair.h"
#include "machine/media/table/sector_size.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* logicalDisk =
    "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n"
    "6: start=20480,size=2048,type=7\\n";
constexpr uint64_t gptSize = 400 * MiB;

class DamagedTableTest : public ImageTest {
  protected:
    // Writes a 32-bit number into a table.
    static void PatchNumber(const std::string& image, uint64_t offset, uint32_t value) {
        for (uint64_t n = 0; n < 4; ++n)
            PatchByte(image, offset + n, static_cast<uint8_t>(value >> 8 * n));
    }
    std::string CopyOfFile(const std::string& image) {
        std::string copy = (Folder() / "before").string();
        OutputOf("cp --sparse=always '" + image + "' '" + copy + "'");
        return copy;
    }
    // Expects that the disk is shown with these notes and refused for changes with the first of them.
    Disk ExpectShownOnly(const std::string& image, const std::vector<std::string>& problems,
                         const std::string& hint = "") {
        const std::string copy = CopyOfFile(image);
        std::vector<std::string> notes;
        for (const std::string& problem : problems)
            notes.push_back(image + ": " + problem);
        Disk disk = Attach(image);
        EXPECT_EQ(disk.medium->Notes(), notes);
        EXPECT_EQ(Complaint(image, ImageAccess::Write), notes.front() + hint);
        EXPECT_EQ(Complaint(image, ImageAccess::Overlay), notes.front() + hint);
        EXPECT_TRUE(AreSame(copy, image));
        return disk;
    }
    // The same of a GUID partition table, of which a good copy is there; then mends it, and expects that
    // other programs find nothing wrong and the same partitions as on the disk that it was copied from.
    void ExpectShownAndMended(const std::string& image, const std::vector<std::string>& problems) {
        const Disk shown = ExpectShownOnly(
            image, problems, "; run `kestova --image " + image + " repair-table` before it is changed");
        const Disk whole = Attach(FactoryGptImage("whole.img"));
        EXPECT_EQ(PartitionsWithoutVolumes(shown), PartitionsWithoutVolumes(whole));

        EXPECT_EQ(Repaired(image), problems);

        EXPECT_THAT(OutputOf("sgdisk --verify '" + image + "'"), testing::HasSubstr("No problems found"));
        EXPECT_THAT(Attach(image, ImageAccess::Write).medium->Notes(), IsEmpty());
        EXPECT_EQ(PartitionsWithoutVolumes(Attach(image)), PartitionsWithoutVolumes(whole));
        EXPECT_THAT(Repaired(image), IsEmpty());
    }
    // The header at that place claims entries of 4 GB, with a right checksum.
    static void ClaimEntries(const std::string& image, uint64_t header) {
        PatchNumber(image, header + 80, 0x1FFFFFF);
        PatchNumber(image, header + 16, 0);
        const std::string sector = ContentOf(image).substr(header, 92);
        PatchNumber(
            image, header + 16,
            static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(sector.data()), sector.size())));
    }
    static std::vector<std::string> Repaired(const std::string& path) {
        ImageFile image(path, ImageAccess::Write);
        std::vector<std::string> problems = RepairTable(image);
        EXPECT_EQ(image.Commit(), "");
        return problems;
    }
    // Why it cannot be repaired.
    static std::string WhyNotRepaired(const std::string& path) {
        try {
            ImageFile image(path, ImageAccess::Write);
            RepairTable(image);
        } catch (const ImageError& error) {
            return error.what();
        }
        return "";
    }
    static std::vector<Partition> PartitionsWithoutVolumes(Disk disk) {
        for (Partition& partition : disk.partitions)
            partition.volume.reset();
        return disk.partitions;
    }
};

// --- MBR ---

TEST_F(DamagedTableTest, TruncatedMbrImage_Attach_ShowsWhatIsThere) {
    const std::string image = FactoryMbrImage();
    OutputOf("truncate -s 280M '" + image + "'");

    const Disk disk =
        ExpectShownOnly(image, {"partition 4 ends 19922944 bytes beyond the end of the file; the image is "
                                "truncated, or its table damaged"});

    ASSERT_EQ(disk.partitions.size(), 4u);
    EXPECT_EQ(disk.partitions[1].volume->store->Find("Windows"), FileKind::Folder);
}

TEST_F(DamagedTableTest, OverlappingPartitions_Attach_AreShown) {
    const std::string image = FactoryMbrImage();
    PatchNumber(image, 446 + 2 * 16 + 8, 180 * 2048);  // partition 3 starts 1 MiB early

    ExpectShownOnly(image, {"partition 2 and partition 3 overlap"});
}

TEST_F(DamagedTableTest, EmptyPartitionOrOneOnTheTable_Attach_IsShown) {
    const std::string image = FactoryMbrImage();
    PatchNumber(image, 446 + 2 * 16 + 12, 0);
    ExpectShownOnly(image, {"partition 3 has no length; the partition table is damaged"});
    const std::string other = FactoryMbrImage("other.img");
    PatchNumber(other, 446 + 8, 0);
    ExpectShownOnly(other, {"partition 1 lies on the partition table"});
}

TEST_F(DamagedTableTest, ChainWithACycle_Attach_ShowsThePartitionsBeforeIt) {
    const std::string image = PartitionedImage(40, logicalDisk);
    // The second link refers back to the first.
    const uint64_t second = 8192 * 512 + uint64_t{20480 - 2048 - 8192} * 512;
    ASSERT_EQ(ByteAt(image, second + 510), 0x55);
    PatchByte(image, second + 462 + 4, 0x05);
    PatchNumber(image, second + 462 + 8, 20480 - 2048 - 8192);

    const Disk disk =
        ExpectShownOnly(image, {"the chain of logical partitions runs in a circle, at sector 18432"});

    EXPECT_THAT(NumbersOf(disk), ElementsAre(0, 1, 2));
}

TEST_F(DamagedTableTest, ChainBackToItsStart_Attach_ShowsThePartitionBeforeIt) {
    const std::string image = PartitionedImage(40, logicalDisk);
    PatchNumber(image, 8192 * 512 + 462 + 8, 0);

    const Disk disk =
        ExpectShownOnly(image, {"the chain of logical partitions runs in a circle, at sector 8192"});

    EXPECT_THAT(NumbersOf(disk), ElementsAre(0, 1));
}

TEST_F(DamagedTableTest, BrokenChain_Attach_ShowsThePartitionsBeforeIt) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n");
    PatchByte(image, 8192 * 512 + 511, 0);
    EXPECT_THAT(
        NumbersOf(ExpectShownOnly(image, {"the chain of logical partitions is damaged, at sector 8192"})),
        ElementsAre(0));
    PatchByte(image, 8192 * 512 + 511, 0xAA);
    PatchByte(image, 8192 * 512 + 462 + 4, 0x05);
    PatchNumber(image, 8192 * 512 + 462 + 8, 60000);

    const Disk disk = ExpectShownOnly(
        image, {"the chain of logical partitions leaves the extended partition, at sector 68192"});

    EXPECT_THAT(NumbersOf(disk), ElementsAre(0, 1));
}

// A chain of links without partitions, in neighbouring sectors.
TEST_F(DamagedTableTest, ChainOfThousandLinks_Attach_IsNotFollowedToItsEnd) {
    const std::string image = PartitionedImage(40, logicalDisk);
    std::string chain;
    for (uint32_t link = 0; link < 1000; ++link) {
        std::string sector(512, '\0');
        sector[462 + 4] = 0x05;
        PutLe32(sector, 462 + 8, link + 1);
        chain += sector.replace(510, 2, "\x55\xAA");
    }
    std::fstream(image, std::ios::in | std::ios::out | std::ios::binary).seekp(8192 * 512) << chain;

    ExpectShownOnly(image, {"the chain of logical partitions has more than 256 links"});
}

TEST_F(DamagedTableTest, InvalidBootIndicator_Attach_IsShownAsInactive) {
    const std::string image = FactoryMbrImage();
    PatchByte(image, 446 + 16, 0x81);

    const Disk disk = ExpectShownOnly(
        image, {"partition 2 is neither active nor inactive; the partition table is damaged"});

    EXPECT_EQ(disk.partitions[1].bootIndicator, 0);
    const std::string extended = PartitionedImage(40, logicalDisk);
    PatchByte(extended, 446 + 16, 0x01);
    ExpectShownOnly(extended,
                    {"the extended partition is neither active nor inactive; the partition table is "
                     "damaged"});
}

TEST_F(DamagedTableTest, DamagedDiskBesideTheOneToChange_Change_IsBarredAndNothingIsWritten) {
    const std::string image = PartitionedImage(40, "label: dos\\n1: start=2048,size=4096,type=7,bootable\\n");
    std::filesystem::resize_file(image, 3 * MiB / 2);
    CopySparse(image, image + ".before");
    Disk disk;
    disk.image = image;
    ImageUse use = ImageAccess::Write;
    use.mayBeDamaged = true;

    AttachImage(disk, use);

    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_NE(disk.table->SetActive(disk.partitions[0].offset, false, OtherFlags::Clear), 0u);
    const std::string problem = image +
                                ": partition 1 ends 1572864 bytes beyond the end of the file; the image is "
                                "truncated, or its table damaged";
    EXPECT_EQ(disk.medium->WhyBarred(), problem);
    EXPECT_EQ(disk.medium->Commit(), problem);
    EXPECT_TRUE(AreSame(image, image + ".before"));
}

TEST_F(DamagedTableTest, ExtendedPartitionOfLinux_Attach_BarsOnlyItself) {
    const std::string image = PartitionedImage(
        40,
        "label: dos\\n1: start=2048,size=4096,type=7,bootable\\n2: start=8192,size=40960,type=85\\n"
        "5: start=10240,size=2048,type=83\\n");

    const Disk disk = Attach(image, ImageAccess::Write);

    ASSERT_EQ(disk.partitions.size(), 2u);
    EXPECT_EQ(disk.partitions[1].mbrType, 0x85);
    EXPECT_EQ(disk.partitions[1].size, 20 * MiB);
    EXPECT_EQ(disk.partitions[1].volume, std::nullopt);
    EXPECT_THAT(disk.medium->Notes(),
                ElementsAre(image + ": an extended partition of type 0x85, which Windows does not know"));
    EXPECT_EQ(disk.table->SetActive(disk.partitions[0].offset, false, OtherFlags::Clear), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image, 446), 0x00);
}

TEST_F(DamagedTableTest, InitialisedDiskWithoutPartitions_Attach_HasNone) {
    for (const char* const label : {"label: dos\\n", "label: gpt\\n"}) {
        const Disk disk = Attach(PartitionedImage(40, label), ImageAccess::Write);
        EXPECT_THAT(disk.partitions, IsEmpty()) << label;
        EXPECT_THAT(disk.medium->Notes(), IsEmpty()) << label;
    }
}

// --- GUID partition tables ---

TEST_F(DamagedTableTest, DamagedGptHeader_AttachAndRepair_UsesTheBackup) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 512 + 56, 0xFF);  // the disk's GUID

    ExpectShownAndMended(
        image, {"the GUID partition table is damaged: the checksum of its header is wrong; its backup "
                "is used"});
}

TEST_F(DamagedTableTest, DamagedGptEntries_AttachAndRepair_UsesTheBackup) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 1024 + 56, 'X');  // the name of the first entry

    ExpectShownAndMended(
        image, {"the GUID partition table is damaged: the checksum of its entries is wrong; its backup "
                "is used"});
}

TEST_F(DamagedTableTest, ErasedGpt_AttachAndRepair_UsesTheBackup) {
    const std::string image = FactoryGptImage();
    OutputOf("dd if=/dev/zero of='" + image + "' bs=512 seek=1 count=33 conv=notrunc status=none");

    ExpectShownAndMended(image, {"the GUID partition table is missing; its backup is used"});
}

TEST_F(DamagedTableTest, DamagedBackup_AttachAndRepair_UsesThePrimaryCopy) {
    const std::string image = FactoryGptImage();
    PatchByte(image, gptSize - 512 + 56, 0xFF);
    ExpectShownAndMended(
        image, {"the backup of the GUID partition table is damaged: the checksum of its header is wrong"});
    const std::string other = FactoryGptImage("other.img");
    PatchByte(other, gptSize - 512, 0);
    ExpectShownAndMended(other, {"the backup of the GUID partition table is missing"});
}

TEST_F(DamagedTableTest, CopiesThatDiffer_AttachAndRepair_UsesThePrimaryCopy) {
    const std::string image = FactoryGptImage();
    const std::string old = FactoryGptImage("old.img");
    OutputOf("sgdisk --change-name=6:Old '" + old + "'");
    OutputOf("dd if='" + old + "' of='" + image +
             "' bs=512 skip=819167 seek=819167 count=33 conv=notrunc status=none");

    ExpectShownAndMended(image, {"the GUID partition table and its backup differ; the backup is not used"});
}

// What is wrong with the table of a 400 MiB disk on one of 500 MiB.
const std::vector<std::string> ofASmallerDisk = {
    "the backup of the GUID partition table is 204800 sectors before the end of the disk: it was copied from a "
    "smaller one",
    "the protective MBR covers 819199 sectors where the disk has 1023999 sectors behind it"};

TEST_F(DamagedTableTest, DiskCopiedToALargerOne_AttachAndRepair_MovesTheBackup) {
    const std::string image = FactoryGptImage();
    OutputOf("truncate -s 500M '" + image + "'");

    ExpectShownAndMended(image, ofASmallerDisk);
}

TEST_F(DamagedTableTest, LargerDiskWithoutItsPrimaryCopy_AttachAndRepair_FindsTheBackupByTheMbr) {
    const std::string image = FactoryGptImage();
    OutputOf("truncate -s 500M '" + image + "'");
    PatchByte(image, 512, 0);
    std::vector<std::string> problems = ofASmallerDisk;
    problems.insert(problems.begin(), "the GUID partition table is missing; its backup is used");

    ExpectShownAndMended(image, problems);
}

TEST_F(DamagedTableTest, FooterBehindTheDisk_AttachAndRepair_MovesTheBackup) {
    const std::string image = FactoryGptImage();
    OutputOf("printf '%-512s' conectix >>'" + image + "'");

    ExpectShownAndMended(
        image, {"the backup of the GUID partition table is 1 sector before the end of the disk: it was "
                "copied from a smaller one",
                "the protective MBR covers 819199 sectors where the disk has 819200 sectors behind it"});
}

TEST_F(DamagedTableTest, ProtectiveMbrOfAnotherLengthOrNone_AttachAndRepair_IsMended) {
    const std::string image = FactoryGptImage();
    PatchNumber(image, 446 + 12, 12345);
    ExpectShownAndMended(
        image, {"the protective MBR covers 12345 sectors where the disk has 819199 sectors behind it"});
    const std::string other = FactoryGptImage("other.img");
    OutputOf("dd if=/dev/zero of='" + other + "' bs=512 count=1 conv=notrunc status=none");
    ExpectShownAndMended(other, {"the protective MBR of the GUID partition table is missing"});
}

TEST_F(DamagedTableTest, ProtectiveMbrOfTheLargestLength_Attach_IsSound) {
    const std::string image = FactoryGptImage();
    PatchNumber(image, 446 + 12, 0xFFFFFFFF);

    EXPECT_THAT(Attach(image, ImageAccess::Write).medium->Notes(), IsEmpty());
}

TEST_F(DamagedTableTest, GptLeftBehindAnEmptyMbr_Attach_IsNotUsed) {
    const std::string image = FactoryGptImage();
    OutputOf("dd if=/dev/zero of='" + image + "' bs=1 seek=446 count=64 conv=notrunc status=none");

    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.style, PartitionStyle::Mbr);
    EXPECT_THAT(disk.partitions, IsEmpty());
    EXPECT_THAT(disk.medium->Notes(), IsEmpty());
}

TEST_F(DamagedTableTest, HybridMbr_Attach_IsNamedAndTheGptIsUsed) {
    const std::string image = FactoryGptImage();
    OutputOf("sgdisk --hybrid=1:2 '" + image + "'");

    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.style, PartitionStyle::Gpt);
    EXPECT_EQ(disk.partitions.size(), 6u);
    EXPECT_THAT(
        disk.medium->Notes(),
        ElementsAre(image + ": a hybrid MBR: beside the GUID partition table, the MBR has partitions too"));
}

TEST_F(DamagedTableTest, TruncatedGptImage_AttachAndRepair_IsShownAndNotRepaired) {
    const std::string image = FactoryGptImage();
    OutputOf("truncate -s 300M '" + image + "'");

    const Disk disk = Attach(image);

    ASSERT_EQ(disk.partitions.size(), 6u);
    EXPECT_EQ(disk.partitions[1].volume->fileSystem, "NTFS");
    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image + ": the backup of the GUID partition table cannot be read");
    EXPECT_EQ(WhyNotRepaired(image),
              image +
                  ": partition 6 ends 101711872 bytes beyond the end of the file; the image is truncated, or "
                  "its table damaged; that cannot be repaired");
}

// Reading the entries would take as much memory as the sparse file is long.
TEST_F(DamagedTableTest, GptWithTooManyEntries_AttachAndRepair_UsesTheOtherCopy) {
    const std::string claim = "is damaged: its entries claim to take 4294967168 bytes";
    const std::string primary = FactoryGptImage();
    const std::string backup = FactoryGptImage("backup.img");
    ClaimEntries(primary, 512);
    ClaimEntries(backup, gptSize - 512);

    ExpectShownAndMended(primary, {"the GUID partition table " + claim + "; its backup is used"});
    ExpectShownAndMended(backup, {"the backup of the GUID partition table " + claim});
}

TEST_F(DamagedTableTest, NeitherCopyCanBeUsed_AttachAndRepair_IsRefused) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 512, 0);
    PatchByte(image, gptSize - 512, 0);
    const std::string message = image + ": the GUID partition table is damaged, or the image is truncated";

    for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Write, ImageAccess::Overlay})
        EXPECT_EQ(Complaint(image, access), message);
    EXPECT_EQ(WhyNotRepaired(image), message);
}

TEST_F(DamagedTableTest, NoRoomForTheBackup_Repair_IsRefused) {
    const std::string image = PartitionedImage(40, "label: gpt\\n");
    OutputOf("truncate -s " + std::to_string(67 * 512) + " '" + image + "'");
    EXPECT_EQ(WhyNotRepaired(image),
              image + ": too short for both copies of the GUID partition table; that cannot be repaired");

    OutputOf("truncate -s " + std::to_string(68 * 512) + " '" + image + "'");
    EXPECT_EQ(WhyNotRepaired(image), "");
}

TEST_F(DamagedTableTest, MbrDisk_Repair_IsRefused) {
    const std::string image = FactoryMbrImage();

    EXPECT_EQ(WhyNotRepaired(image),
              image + ": has an MBR; only a GUID partition table has a second copy to be repaired from");
}

// --- sectors of 4096 bytes ---

TEST_F(DamagedTableTest, GptOfLargeSectors_Attach_IsRead) {
    const std::string image = (Folder() / "large.img").string();
    OutputOf("truncate -s 100M '" + image + "'");
    OutputOf("printf 'g\\nn\\n1\\n256\\n5000\\nw\\n' | fdisk --sector-size 4096 '" + image + "'");

    const Disk disk = Attach(image, ImageAccess::Write);

    ASSERT_EQ(disk.partitions.size(), 1u);
    EXPECT_EQ(disk.partitions[0].offset, 256u * 4096);
    EXPECT_EQ(disk.partitions[0].size, 4745u * 4096);
    EXPECT_THAT(disk.medium->Notes(), IsEmpty());
}

TEST_F(DamagedTableTest, MbrOfLargeSectors_AttachAndSetActive_IsReadByItsVolumes) {
    const std::string image = (Folder() / "large.img").string();
    const std::string volume = (Folder() / "volume").string();
    OutputOf("truncate -s 100M '" + image + "'; truncate -s 64M '" + volume + "'");
    OutputOf("printf 'o\\nn\\np\\n1\\n256\\n16639\\nt\\n7\\nw\\n' | fdisk --sector-size 4096 '" + image +
             "'");
    OutputOf(
        "mkntfs --quiet --force --fast --sector-size 4096 --partition-start 256 --heads 16 "
        "--sectors-per-track 63 --label Large '" +
        volume + "' 2>&1");
    PutPartition(volume, image, 1);

    const Disk disk = Attach(image, ImageAccess::Write);

    ASSERT_EQ(disk.partitions.size(), 1u);
    EXPECT_EQ(disk.partitions[0].size, 64 * MiB);
    EXPECT_EQ(disk.partitions[0].volume->label.value, "Large");
    EXPECT_EQ(disk.table->SetActive(MiB, true, OtherFlags::Clear), 0u);
    EXPECT_EQ(disk.medium->Commit(), "");
    EXPECT_EQ(ByteAt(image, 446), 0x80);
}

TEST_F(DamagedTableTest, SectorSizeGiven_Attach_CountsInIt) {
    const std::string image = PartitionedImage(40, "label: dos\\n1: start=256,size=512,type=7\\n");
    Disk disk;
    disk.image = image;
    ImageUse use = ImageAccess::Read;
    use.sectorSize = 4096;

    AttachImage(disk, use);

    EXPECT_EQ(disk.partitions.at(0).offset, MiB);
    EXPECT_EQ(disk.partitions.at(0).size, 2 * MiB);
}

}  // namespace
}  // namespace machine
