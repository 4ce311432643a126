// Discs and sticks in a PC: letters, drives, and files that are refused.
#include "machine/media/medium_image.h"

#include <gmock/gmock.h>

#include "machine/facts/machines.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

class MediumImageTest : public ImageTest {
  protected:
    // The error of inserting a file without a disc or stick, which leaves the PC unchanged; empty on
    // success.
    template <typename Insert>
    std::string Refusal(Insert insert, const std::string& path) {
        Pc pc = WinPeTwoDisks();
        const Pc before = pc;
        try {
            insert(pc, path);
        } catch (const ImageError& error) {
            EXPECT_EQ(pc, before);
            return error.what();
        }
        return "";
    }
};

TEST_F(MediumImageTest, DiscOfEachFormat_Insert_CreatesAnOpticalVolume) {
    const std::pair<const char*, const char*> formats[] = {
        {"disc-iso.iso", "CDFS"},        {"disc-joliet.iso", "CDFS"},      {"disc-udf.iso", "UDF"},
        {"disc-udf-virtual.iso", "UDF"}, {"disc-udf-sparable.iso", "UDF"}, {"disc-udf-metadata.iso", "UDF"}};
    for (const auto& [name, fileSystem] : formats) {
        Pc pc = FactoryMbr();

        InsertDisc(pc, MadeImage(name));

        const Volume& disc = pc.volumes.back();
        EXPECT_EQ(disc.driveType, DriveType::Optical);
        EXPECT_EQ(disc.fileSystem, fileSystem);
        EXPECT_EQ(disc.label.value, "RECOVERY");
        EXPECT_EQ(disc.letters, "E");
        EXPECT_EQ(disc.store->Find("SOURCES/dvd"), FileKind::File);
    }
}

TEST_F(MediumImageTest, StickOfEachFormat_Insert_CreatesARemovableVolume) {
    const std::pair<const char*, const char*> formats[] = {
        {"stick-fat12.img", "FAT"},   {"stick-fat16.img", "FAT"}, {"stick-fat32.img", "FAT32"},
        {"stick-exfat.img", "exFAT"}, {"stick-ntfs.img", "NTFS"}, {"stick-table.img", "FAT"}};
    for (const auto& [name, fileSystem] : formats) {
        Pc pc = FactoryMbr();
        const std::string image = MadeImage(name);

        InsertStick(pc, image);

        const Volume& stick = pc.volumes.back();
        EXPECT_EQ(stick.driveType, DriveType::Removable);
        EXPECT_EQ(stick.fileSystem, fileSystem);
        EXPECT_EQ(stick.label.value, "RECOVERY");
        EXPECT_EQ(stick.letters, "E");
        EXPECT_EQ(stick.store->Find("SOURCES/ufd"), FileKind::File);
        EXPECT_EQ(stick.store->Write("SystemVolume.ini", "x"), 19u);
        EXPECT_TRUE(AreSame(std::string(KESTOVA_TEST_IMAGES) + "/" + name, image)) << name;
    }
}

TEST_F(MediumImageTest, DisksWithLetters_Insert_AssignsTheNextFreeLetter) {
    Pc pc = PcOfImages({FactoryMbrImage()}, SystemKind::WindowsPe, ImageAccess::Read);

    InsertStick(pc, MadeImage("stick-fat12.img"));
    InsertDisc(pc, MadeImage("disc-iso.iso"));

    ASSERT_EQ(pc.volumes.size(), 3u);
    EXPECT_EQ(pc.volumes[0].letters, "X");
    EXPECT_EQ(pc.volumes[1].letters, "F");
    EXPECT_EQ(pc.volumes[2].letters, "G");
}

TEST_F(MediumImageTest, AllLettersUsed_Insert_AssignsNoLetter) {
    Pc pc;
    pc.volumes.resize(1);
    pc.volumes[0].letters = "CDEFGHIJKLMNOPQRSTUVWXYZ";

    InsertDisc(pc, MadeImage("disc-iso.iso"));

    EXPECT_EQ(pc.volumes[1].letters, "");
}

TEST_F(MediumImageTest, DescribedMedium_Attach_KeepsFactsThatAnImageLacks) {
    Volume volume;
    volume.image = MadeImage("stick-fat16.img");
    volume.driveType = DriveType::Removable;
    volume.letters = "R";
    volume.openError = 5;
    volume.label = Fact<std::string>::Fails(21);

    AttachMedium(volume);

    EXPECT_EQ(volume.letters, "R");
    EXPECT_EQ(volume.openError, 5u);
    EXPECT_EQ(volume.label, Fact<std::string>::Fails(21));
    EXPECT_EQ(volume.fileSystem, "FAT");
    EXPECT_EQ(volume.store->Find("sources/idf"), FileKind::Folder);
}

TEST_F(MediumImageTest, FixedDrive_Attach_IsRefused) {
    Volume volume;
    volume.image = MadeImage("stick-fat16.img");

    try {
        AttachMedium(volume);
        FAIL() << "taken";
    } catch (const ImageError& error) {
        EXPECT_EQ(error.what(),
                  volume.image + ": is in a drive that is neither an optical nor a removable one");
    }
}

TEST_F(MediumImageTest, FileWithoutDisc_Insert_IsRefused) {
    const std::string stick = MadeImage("stick-fat12.img");
    const std::string none = stick + ".none";

    EXPECT_EQ(Refusal(InsertDisc, stick), stick + ": no disc: neither ISO 9660 nor UDF");
    EXPECT_EQ(Refusal(InsertDisc, none), none + ": no such file");
}

TEST_F(MediumImageTest, FileWithoutStick_Insert_IsRefused) {
    const std::string disc = MadeImage("disc-iso.iso");
    const std::string bare = PartitionedImage(20, "label: dos\\n1: start=2048,size=2048,type=7\\n");
    const std::string locked = PartitionFile(MadeImage("bitlocker.img"), 41, 80);

    EXPECT_EQ(Refusal(InsertStick, disc), disc + ": a disc, not a stick");
    EXPECT_EQ(Refusal(InsertStick, bare),
              bare + ": none of its partitions is a FAT, exFAT, NTFS or UDF volume");
    EXPECT_EQ(Refusal(InsertStick, locked),
              locked + ": a volume of BitLocker, but only FAT, exFAT, NTFS and UDF are read");
}

TEST_F(MediumImageTest, StickOfUnreadVolumes_Insert_NamesThem) {
    const std::string stick = PartitionedImage(
        20, "label: dos\\n1: start=2048,size=2048,type=7\\n2: start=4096,size=2048,type=7\\n");
    const std::string reFs("\0\0\0ReFS", 7);
    for (size_t at = 0; at < 8; ++at) {
        PatchByte(stick, 1 * MiB + 3 + at, static_cast<uint8_t>("-FVE-FS-"[at]));
        if (at < reFs.size()) PatchByte(stick, 2 * MiB + at, static_cast<uint8_t>(reFs[at]));
    }

    EXPECT_EQ(
        Refusal(InsertStick, stick),
        stick +
            ": none of its partitions is a FAT, exFAT, NTFS or UDF volume; not read: partition 1 (BitLocker), "
            "partition 2 (ReFS)");
}

// The blocks of a disc are no sectors of a stick.
TEST_F(MediumImageTest, UdfOfADisc_InsertAsStick_IsRefused) {
    const std::string disc = MadeImage("disc-udf.iso");

    EXPECT_EQ(Refusal(InsertStick, disc), disc + ": a disc, not a stick");
}

// mkudffs writes such a table on whole disks, with one entry that begins at sector 0.
TEST_F(MediumImageTest, UdfWithTableOfTheWholeMedium_Insert_ReadsTheVolume) {
    const std::string medium = (Folder() / "whole.udf").string();
    OutputOf("truncate -s 17M '" + medium + "' && mkudffs -m hd -b 512 --bootarea=mbr --label=WHOLE '" +
             medium + "'");
    ASSERT_THAT(OutputOf("sfdisk --dump '" + medium + "'"), testing::ContainsRegex("start= +0,"));
    Pc pc;

    InsertStick(pc, medium);

    EXPECT_EQ(pc.volumes[0].fileSystem, "UDF");
    EXPECT_EQ(pc.volumes[0].label.value, "WHOLE");
    Pc other;
    InsertDisc(other, medium);
    EXPECT_EQ(other.volumes[0].label.value, "WHOLE");
}

// As the images of bootable discs have it.
TEST_F(MediumImageTest, DiscWithTableOfTheWholeMedium_InsertAsStick_IsADisc) {
    const std::string disc = MadeImage("disc-iso.iso");
    OutputOf("printf 'label: dos\n' | sfdisk --quiet '" + disc + "'");
    PatchByte(disc, 446 + 4, 0x17);
    PatchByte(disc, 446 + 12, 64);

    EXPECT_EQ(Refusal(InsertStick, disc), disc + ": a disc, not a stick");
}

// A disc for both drives: its table also has a partition that a PC can start from.
TEST_F(MediumImageTest, EntryOfTheWholeMediumBesideAPartition_InsertAsStick_ReadsThePartition) {
    const std::string stick = MadeImage("stick-table.img");
    PatchByte(stick, 446 + 3 * 16 + 4, 0x17);
    PatchByte(stick, 446 + 3 * 16 + 12, 64);
    Pc pc;

    InsertStick(pc, stick);

    EXPECT_NE(pc.volumes[0].fileSystem, "RAW");
    EXPECT_TRUE(pc.volumes[0].store);
}

// A disk of one UDF volume, before it was partitioned.
TEST_F(MediumImageTest, PartitionTableBeforeFormerUdf_InsertAsStick_ReadsThePartition) {
    const std::string stick = MadeImage("stick-table.img");
    const std::string former = (Folder() / "former.udf").string();
    OutputOf("truncate -s 17M '" + former + "' && mkudffs -b 512 -m hd '" + former + "' && dd if='" + former +
             "' of='" + stick + "' bs=512 skip=1 seek=1 count=300 conv=notrunc status=none");
    Pc pc;

    InsertStick(pc, stick);

    EXPECT_EQ(pc.volumes[0].fileSystem, "FAT");
}

TEST_F(MediumImageTest, TruncatedMedium_Insert_IsRefused) {
    const auto cut = [&](const char* name, uintmax_t size) {
        std::string image = MadeImage(name);
        std::filesystem::resize_file(image, size);
        return image;
    };
    const auto isCut = [](const std::string& image, const std::string& fileSystem) {
        return image + ": its " + fileSystem +
               " file system is longer than what is there; the image is truncated, or it is damaged";
    };
    const std::string disc = cut("disc-iso.iso", 100ULL * 2048);
    EXPECT_EQ(Refusal(InsertDisc, disc), isCut(disc, "CDFS"));
    const std::pair<const char*, const char*> sticks[] = {{"stick-fat12.img", "FAT"},
                                                          {"stick-fat16.img", "FAT"},
                                                          {"stick-fat32.img", "FAT32"},
                                                          {"stick-exfat.img", "exFAT"},
                                                          {"stick-ntfs.img", "NTFS"}};
    for (const auto& [name, fileSystem] : sticks) {
        const std::string stick = cut(name, 2ULL * 1024 * 1024);
        EXPECT_EQ(Refusal(InsertStick, stick), isCut(stick, fileSystem));
    }
    // A damaged volume can look like an empty partition table.
    const std::string sector = cut("stick-fat32.img", 512);
    EXPECT_EQ(
        Refusal(InsertStick, sector),
        sector +
            ": no stick: neither a FAT, exFAT, NTFS or UDF volume nor a partition table with one; it may be truncated");
}

TEST_F(MediumImageTest, DamagedMedium_Insert_IsRefused) {
    const std::string disc = MadeImage("disc-udf.iso");
    PatchByte(disc, 257ULL * 2048 + 1, 0);  // the descriptor that leads to the root folder
    const std::string stick = MadeImage("stick-fat32.img");
    PatchByte(stick, 44, 0);  // the root folder's cluster

    EXPECT_EQ(Refusal(InsertDisc, disc),
              disc + ": its UDF file system is damaged, truncated, or of a kind that is not read here");
    EXPECT_EQ(Refusal(InsertStick, stick),
              stick + ": its FAT32 file system is damaged, truncated, or of a kind that is not read here");
}

TEST_F(MediumImageTest, FileInUse_Insert_IsRefused) {
    Pc pc = PcOfImages({FactoryMbrImage()}, SystemKind::WindowsPe, ImageAccess::Read);
    const std::string stick = MadeImage("stick-fat12.img");
    InsertStick(pc, stick);
    const Pc before = pc;

    for (const std::string& path : {stick, pc.disks[0].image}) {
        try {
            InsertStick(pc, path);
            FAIL() << "taken";
        } catch (const ImageError& error) {
            EXPECT_EQ(error.what(), path + ": given twice, first as " + path);
        }
    }
    EXPECT_EQ(pc, before);
}

}  // namespace
}  // namespace machine
