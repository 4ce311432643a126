// The facts of a disk on an image.
#include "machine/media/disk_image.h"

#include <gmock/gmock.h>

#include "platform/partition_types.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::ElementsAre;

class AttachImageTest : public ImageTest {};
class PcOfImagesTest : public ImageTest {};

// One word per partition: its letter, "none" for a volume without one, "-" without a volume.
std::vector<std::string> LettersOf(const Disk& disk) {
    std::vector<std::string> letters;
    for (const Partition& partition : disk.partitions) {
        if (!partition.volume) {
            letters.push_back("-");
        } else {
            letters.push_back(partition.volume->letters.empty() ? "none" : partition.volume->letters);
        }
    }
    return letters;
}

TEST_F(AttachImageTest, FactoryMbr_HasItsTableAndVolumes) {
    const Disk disk = Attach(FactoryMbrImage());

    EXPECT_EQ(disk.size, 300 * MiB);
    EXPECT_EQ(disk.style, PartitionStyle::Mbr);
    EXPECT_EQ(disk.signature, 0xB2F6B2F6);
    ASSERT_THAT(NumbersOf(disk), ElementsAre(1, 2, 3, 4));
    const auto& partitions = disk.partitions;
    EXPECT_EQ(partitions[0].offset, 1 * MiB);
    EXPECT_EQ(partitions[0].size, 60 * MiB);
    EXPECT_EQ(partitions[0].mbrType, 0x27);
    EXPECT_EQ(partitions[0].bootIndicator, 0);
    EXPECT_EQ(partitions[0].volume->fileSystem, "NTFS");
    EXPECT_EQ(partitions[0].volume->label.value, "Recovery");
    EXPECT_EQ(partitions[1].bootIndicator, 1);
    EXPECT_EQ(partitions[1].volume->label.value, "Windows");
    EXPECT_EQ(partitions[2].mbrType, 0x07);
    EXPECT_EQ(partitions[2].volume->label.value, "Data");
    EXPECT_EQ(partitions[3].mbrType, 0x84);
    EXPECT_FALSE(partitions[3].volume);
}

TEST_F(AttachImageTest, FactoryGpt_HasItsTableAndVolumes) {
    const Disk disk = Attach(FactoryGptImage());

    EXPECT_EQ(disk.style, PartitionStyle::Gpt);
    EXPECT_EQ(GuidText(disk.guid), "6f1f3a52-1111-4000-8000-000000000000");
    ASSERT_THAT(NumbersOf(disk), ElementsAre(1, 2, 3, 4, 5, 6));
    const auto& partitions = disk.partitions;
    EXPECT_EQ(partitions[0].gptType, Guid(ORVOBOOT_GUID));
    EXPECT_EQ(partitions[0].name, "Maker boot");
    EXPECT_EQ(partitions[0].volume->fileSystem, "FAT32");
    EXPECT_EQ(partitions[0].volume->label.value, "BOOT");
    EXPECT_EQ(partitions[0].volume->store->Find("EFI/Boot/BootX64.efi"), FileKind::File);
    EXPECT_EQ(partitions[1].gptType, Guid(PARTITION_MSFT_RECOVERY_GUID));
    EXPECT_EQ(partitions[1].attributes, 0x8000000000000001);
    EXPECT_NE(partitions[1].gptId, partitions[5].gptId);
    EXPECT_EQ(partitions[2].gptType, Guid(PARTITION_SYSTEM_GUID));
    EXPECT_EQ(partitions[3].gptType, Guid(PARTITION_MSFT_RESERVED_GUID));
    EXPECT_FALSE(partitions[3].volume);
    EXPECT_EQ(partitions[4].gptType, Guid(PARTITION_BASIC_DATA_GUID));
    EXPECT_EQ(partitions[4].attributes, 0u);
    EXPECT_EQ(partitions[5].volume->store->Find("sources/Orvo"), FileKind::Folder);
}

TEST_F(AttachImageTest, EmptySlots_AreNotNumbered) {
    const Disk disk = Attach(PartitionedImage(
        20, "label: dos\\n2: start=2048,size=2048,type=7\\n4: start=8192,size=2048,type=27\\n"));

    ASSERT_THAT(NumbersOf(disk), ElementsAre(1, 2));
    EXPECT_EQ(disk.partitions[0].mbrType, 0x07);
    EXPECT_EQ(disk.partitions[1].mbrType, 0x27);
}

TEST_F(AttachImageTest, LogicalPartitions_AreNumberedAfterPrimariesAndTheExtendedOne0) {
    const Disk disk = Attach(
        PartitionedImage(40,
                         "label: dos\\n1: start=2048,size=2048,type=7\\n2: start=8192,size=40960,type=5\\n"
                         "3: start=61440,size=2048,type=27\\n5: start=10240,size=2048,type=b\\n"
                         "6: start=20480,size=2048,type=7\\n"));

    ASSERT_THAT(NumbersOf(disk), ElementsAre(1, 0, 2, 3, 4));
    EXPECT_EQ(disk.partitions[1].mbrType, 0x05);
    EXPECT_EQ(disk.partitions[1].offset, 8192 * 512u);
    EXPECT_EQ(disk.partitions[1].size, 40960 * 512u);
    EXPECT_EQ(disk.partitions[1].slot, 2u);
    EXPECT_FALSE(disk.partitions[1].volume);
    EXPECT_EQ(disk.partitions[2].mbrType, 0x27);
    EXPECT_EQ(disk.partitions[3].mbrType, 0x0B);
    EXPECT_EQ(disk.partitions[3].offset, 10240 * 512u);
    EXPECT_EQ(disk.partitions[4].offset, 20480 * 512u);
}

TEST_F(AttachImageTest, TwoExtendedPartitions_OnlyTheFirstIsListed) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n1: start=2048,size=2048,type=5\\n2: start=8192,size=2048,type=7\\n");
    PatchByte(image, 446 + 16 + 4, 0x0F);

    const Disk disk = Attach(image);

    ASSERT_THAT(NumbersOf(disk), ElementsAre(0));
    EXPECT_EQ(disk.partitions[0].offset, 2048 * 512u);
}

// The boot code in the sector of its first link, and what follows, are left over from a volume.
TEST_F(AttachImageTest, ExtendedPartitionOverAFormattedOne_HasNoVolume) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n1: start=8192,size=40960,type=5\\n5: start=30720,size=2048,type=b\\n");
    const std::string fat = (Folder() / "fat").string();
    OutputOf("truncate -s 2M '" + fat + "' && mkfs.fat '" + fat + "'");
    const std::string copy = "dd conv=notrunc status=none if='" + fat + "' of='" + image + "' ";
    OutputOf(copy + "bs=1 count=446 seek=4194304 && " + copy + "bs=512 skip=1 seek=8193");

    const Disk disk = Attach(image);

    ASSERT_THAT(NumbersOf(disk), ElementsAre(0, 1));
    EXPECT_FALSE(disk.partitions[0].volume);
}

TEST_F(AttachImageTest, EmptyTable_HasNoPartitions) {
    const Disk disk = Attach(PartitionedImage(20, "label: dos\\n"));

    EXPECT_EQ(disk.style, PartitionStyle::Mbr);
    EXPECT_THAT(disk.partitions, testing::IsEmpty());
}

TEST_F(AttachImageTest, RecognisedTypeWithoutFileSystem_IsRaw) {
    const Disk disk = Attach(PartitionedImage(20, "label: dos\\n1: start=2048,size=2048,type=7\\n"));

    ASSERT_TRUE(disk.partitions[0].volume);
    EXPECT_EQ(disk.partitions[0].volume->fileSystem, "RAW");
    EXPECT_FALSE(disk.partitions[0].volume->store);
}

TEST_F(AttachImageTest, SmallFat_IsNamedFat) {
    const std::string image = PartitionedImage(40, "label: dos\\n1: start=2048,size=32768,type=6\\n");
    OutputOf("truncate -s 16M '" + (Folder() / "fat").string() + "' && mkfs.fat -F 16 -n STICK '" +
             (Folder() / "fat").string() + "'");
    PutPartition((Folder() / "fat").string(), image, 1);

    const Disk disk = Attach(image);

    EXPECT_EQ(disk.partitions[0].volume->fileSystem, "FAT");
    EXPECT_EQ(disk.partitions[0].volume->label.value, "STICK");
}

TEST_F(AttachImageTest, UnicodeLabel_IsUtf8) {
    const std::string image = FactoryMbrImage();
    const std::string partition = PartitionFile(image, 61, 120);
    OutputOf("LC_ALL=C.UTF-8 ntfslabel --force '" + partition + "' 'Ünïcode Ω' 2>&1");
    PutPartition(partition, image, 61);

    EXPECT_EQ(Attach(image).partitions[1].volume->label.value, "Ünïcode Ω");
}

TEST_F(AttachImageTest, DescribedPartitions_AreMergedByNumber) {
    Disk disk;
    disk.image = FactoryMbrImage();
    Partition windows;
    windows.number = 2;
    windows.size = 1;  // overridden by the image
    windows.volume.emplace();
    windows.volume->letters = "W";
    windows.volume->openError = 5;
    windows.volume->label = Fact<std::string>::Fails(21);
    disk.partitions = {windows};

    AttachImage(disk, ImageAccess::Read);

    ASSERT_THAT(NumbersOf(disk), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(disk.partitions[1].size, 120 * MiB);
    EXPECT_EQ(disk.partitions[1].volume->letters, "W");
    EXPECT_EQ(disk.partitions[1].volume->openError, 5u);
    EXPECT_EQ(disk.partitions[1].volume->label, Fact<std::string>::Fails(21));
    EXPECT_EQ(disk.partitions[1].volume->store->Find("Users"), FileKind::Folder);
}

TEST_F(AttachImageTest, DescribedPartitionMissingOnTheImage_IsRefused) {
    Disk disk;
    disk.image = FactoryMbrImage();
    disk.partitions.resize(1);
    disk.partitions[0].number = 7;
    const Disk before = disk;

    try {
        AttachImage(disk, ImageAccess::Read);
        FAIL() << "taken";
    } catch (const ImageError& error) {
        EXPECT_EQ(error.what(), disk.image + ": partition 7 is described, but not on the image");
    }
    EXPECT_EQ(disk, before);
}

TEST_F(AttachImageTest, DescribedFilesOnAnNtfsVolume_AreRefused) {
    Disk disk;
    disk.image = FactoryMbrImage();
    disk.partitions.resize(1);
    disk.partitions[0].number = 3;
    disk.partitions[0].volume.emplace();
    disk.partitions[0].volume->files.PutFile("a.txt", "a");

    EXPECT_THROW(AttachImage(disk, ImageAccess::Read), ImageError);
}

TEST_F(PcOfImagesTest, WindowsPe_AssignsLettersInDiskOrder) {
    const Pc pc = PcOfImages({FactoryMbrImage()}, SystemKind::WindowsPe, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("C", "D", "E", "-"));
    EXPECT_EQ(pc.system.kind, SystemKind::WindowsPe);
    EXPECT_EQ(pc.system.windowsDirectory, "X:\\Windows");
    ASSERT_EQ(pc.volumes.size(), 1u);
    EXPECT_EQ(pc.volumes[0].letters, "X");
    EXPECT_EQ(pc.firmware.kind, FirmwareKind::Bios);
    EXPECT_EQ(pc.disks[0].busType, 11u);
    EXPECT_EQ(pc.disks[0].vdsName, "\\\\?\\PhysicalDrive0");
}

TEST_F(PcOfImagesTest, InstalledWindows_IsDriveC) {
    const Pc pc = PcOfImages({FactoryMbrImage()}, SystemKind::Windows, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("none", "C", "D", "-"));
    EXPECT_TRUE(pc.volumes.empty());
}

TEST_F(PcOfImagesTest, InstalledWindowsOnTheSecondDisk_IsDriveC) {
    const std::string data = PartitionedImage(20, "label: dos\\n1: start=2048,size=2048,type=7\\n");

    const Pc pc = PcOfImages({data, FactoryMbrImage()}, SystemKind::Windows, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("D"));
    EXPECT_THAT(LettersOf(pc.disks[1]), ElementsAre("none", "C", "E", "-"));
    EXPECT_EQ(pc.disks[1].number, 1u);
    EXPECT_EQ(pc.disks[1].vdsName, "\\\\?\\PhysicalDrive1");
}

TEST_F(PcOfImagesTest, WindowsPeOnGpt_AssignsLettersToRecoveryButNotToEfiSystem) {
    const Pc pc = PcOfImages({FactoryGptImage()}, SystemKind::WindowsPe, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("none", "C", "none", "-", "D", "E"));
    EXPECT_EQ(pc.firmware.kind, FirmwareKind::Uefi);
}

TEST_F(PcOfImagesTest, InstalledWindowsOnGpt_AssignsLettersToBasicDataOnly) {
    const Pc pc = PcOfImages({FactoryGptImage()}, SystemKind::Windows, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("none", "none", "none", "-", "C", "none"));
}

TEST_F(PcOfImagesTest, NoLetterAttributeOfBasicData_IsRespected) {
    const std::string image = PartitionedImage(
        20,
        "label: gpt\\n1: start=2048,size=2048,type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7,attrs=GUID:63\\n"
        "2: start=4096,size=2048,type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7,attrs=GUID:62\\n"
        "3: start=6144,size=2048,type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7\\n");

    const Pc pc = PcOfImages({image}, SystemKind::WindowsPe, ImageAccess::Read);

    EXPECT_THAT(LettersOf(pc.disks[0]), ElementsAre("none", "none", "C"));
}

std::string ComplaintAbout(const std::vector<std::string>& images, ImageAccess access) {
    try {
        PcOfImages(images, SystemKind::WindowsPe, access);
    } catch (const ImageError& error) {
        return error.what();
    }
    return "";
}

TEST_F(PcOfImagesTest, SameImageTwice_IsRefused) {
    const std::string image = FactoryMbrImage();
    const std::string link = (Folder() / "link.img").string();
    std::filesystem::create_hard_link(image, link);
    const std::string equal = FactoryMbrImage("equal.img");

    for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Overlay, ImageAccess::Write}) {
        EXPECT_EQ(ComplaintAbout({image, image}, access), image + ": given twice, first as " + image);
        EXPECT_EQ(ComplaintAbout({equal, image, link}, access), link + ": given twice, first as " + image);
        EXPECT_EQ(ComplaintAbout({image, equal}, access), "") << "two files with the same bytes are two";
    }
    EXPECT_EQ(ComplaintAbout({image, image + "x"}, ImageAccess::Read), image + "x: no such file");
}

}  // namespace
}  // namespace machine
