// What a volume is recognised as, and its label: compared with blkid, and by the tools that make file
// systems.
#include "machine/media/volumes/file_system.h"

#include <algorithm>
#include <map>

#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

// The kind and the label that blkid finds in a range of a file, in the same words.
std::string ByBlkid(const std::string& image, MediumKind medium, uint64_t offset, uint64_t size) {
    const std::string names = medium == MediumKind::Disk ? "ntfs,vfat,exfat,ReFS,BitLocker" : "udf,iso9660";
    const std::string found = OutputOf("blkid -p -o export -n " + names + " -O " + std::to_string(offset) +
                                       " -S " + std::to_string(size) + " '" + image + "' || true");
    const auto value = [&](const std::string& name) {
        const size_t at = ("\n" + found).find("\n" + name + "=");
        if (at == std::string::npos) return std::string();
        const size_t start = at + name.size() + 1;
        std::string text = found.substr(start, found.find('\n', start) - start);
        std::erase(text, '\\');
        return text;
    };
    std::string kind = value("TYPE");
    if (kind == "vfat") kind = value("VERSION") == "FAT32" ? "FAT32" : "FAT";
    const std::map<std::string, std::string> kinds = {
        {"ntfs", "NTFS"}, {"exfat", "exFAT"}, {"udf", "UDF"}, {"iso9660", "CDFS"}};
    const auto known = kinds.find(kind);
    return (known != kinds.end() ? known->second : kind) + " " + value("LABEL");
}

class FileSystemTest : public ImageTest {
  protected:
    std::string In(const std::string& image, MediumKind medium, uint64_t offset, uint64_t size) {
        const auto file = std::make_shared<ImageFile>(image, ImageAccess::Read);
        const auto found = FileSystemOf(VolumeBytes(file, offset, size), medium);
        return found ? found->kind + " " + found->label : " ";
    }
    std::string On(const std::string& image, MediumKind medium = MediumKind::Disk) {
        return In(image, medium, 0, std::filesystem::file_size(image));
    }
    // An image that a command makes in an empty file of that many MiB, "$image".
    std::string Made(int sizeMiB, const std::string& command) {
        std::string image = (Folder() / ("made-" + std::to_string(++made_))).string();
        OutputOf("export LC_ALL=C.UTF-8 image='" + image + "' && truncate -s " + std::to_string(sizeMiB) +
                 "M \"$image\" && { " + command + "; } >\"$image.said\" 2>&1");
        return image;
    }
    static void Put(const std::string& image, uint64_t at, std::string_view bytes) {
        for (const char byte : bytes)
            PatchByte(image, at++, static_cast<uint8_t>(byte));
    }

  private:
    int made_ = 0;
};

TEST_F(FileSystemTest, EveryTestImage_Identify_MatchesBlkid) {
    std::map<std::string, int> compared;
    for (const auto& entry : std::filesystem::directory_iterator(KESTOVA_TEST_IMAGES)) {
        const std::string image = entry.path().string();
        if (!image.ends_with(".img") && !image.ends_with(".iso")) continue;
        for (const MediumKind medium : {MediumKind::Disk, MediumKind::Disc}) {
            const std::string found = On(image, medium);
            EXPECT_EQ(found, ByBlkid(image, medium, 0, entry.file_size())) << image;
            ++compared[found];
        }
    }
    for (const std::string disk :
         {"factory-mbr.img", "factory-gpt.img", "bitlocker.img", "stick-table.img"}) {
        const std::string image = KESTOVA_TEST_IMAGES "/" + disk;
        for (const Partition& partition : Attach(image).partitions) {
            const std::string found = In(image, MediumKind::Disk, partition.offset, partition.size);
            EXPECT_EQ(found, ByBlkid(image, MediumKind::Disk, partition.offset, partition.size)) << image;
            ++compared[found];
        }
    }
    for (const char* const each : {"FAT RECOVERY", "FAT32 RECOVERY", "NTFS RECOVERY", "CDFS RECOVERY",
                                   "UDF RECOVERY", "NTFS Windows", "BitLocker ", " "})
        EXPECT_GT(compared[each], 0) << each;
}

TEST_F(FileSystemTest, EachToolAndSectorSize_Identify_MatchesBlkid) {
    const std::pair<const char*, MediumKind> made[] = {
        {"mkfs.fat -F 12 -n 'Label one' \"$image\"", MediumKind::Disk},
        {"mkfs.fat -F 16 -S 4096 -n LABEL \"$image\"", MediumKind::Disk},
        {"mkfs.fat -F 32 -S 1024 -n LABEL \"$image\"", MediumKind::Disk},
        {"mkfs.fat -F 32 -S 4096 -s 1 \"$image\"", MediumKind::Disk},
        {"mkntfs -F -Q -s 512 -L 'A longer label of NTFS' \"$image\"", MediumKind::Disk},
        {"mkntfs -F -Q -s 4096 -L Label \"$image\"", MediumKind::Disk},
        {"mkntfs -F -Q -s 1024 -c 65536 \"$image\"", MediumKind::Disk},
        {"mkfs.exfat -L Label \"$image\"", MediumKind::Disk},
        {"mkfs.exfat \"$image\"", MediumKind::Disk},
        {"mkudffs -b 512 -m hd --lvid=Label \"$image\"", MediumKind::Disc},
        {"mkudffs -b 1024 -m hd --lvid=Label \"$image\"", MediumKind::Disc},
        {"mkudffs -b 2048 -m dvd --lvid='A label of UDF' \"$image\"", MediumKind::Disc},
        {"mkudffs -b 4096 -m hd --lvid=Label \"$image\"", MediumKind::Disc},
        {"mkudffs -b 2048 -m cdrw --lvid=Label \"$image\"", MediumKind::Disc},
    };
    for (const auto& [command, medium] : made) {
        const std::string image = Made(64, command);
        const std::string found = On(image, medium);
        EXPECT_EQ(found, ByBlkid(image, medium, 0, std::filesystem::file_size(image))) << command;
        EXPECT_NE(found, " ") << command;
    }
}

TEST_F(FileSystemTest, LabelsBeyondAscii_Identify_ReturnsThemWhole) {
    EXPECT_EQ(On(Made(4, "mkntfs -F -Q -L 'Größe Ω 💾' \"$image\"")), "NTFS Größe Ω 💾");
    EXPECT_EQ(On(Made(4, "mkfs.exfat -L 'Größe Ω' \"$image\"")), "exFAT Größe Ω");
    EXPECT_EQ(On(Made(4, "mkudffs -b 2048 --lvid='Größe Ω' \"$image\""), MediumKind::Disc), "UDF Größe Ω");
    EXPECT_EQ(
        On(Made(1,
                "mkdir \"$image.d\" && rm \"$image\" && genisoimage -quiet -input-charset utf-8 -J -V Größe "
                "-o \"$image\" \"$image.d\""),
           MediumKind::Disc),
        "CDFS Größe");
}

// So long that the last two bytes of a sector, which the file table keeps elsewhere, are in it.
TEST_F(FileSystemTest, LongNtfsLabel_Identify_ReturnsItWhole) {
    std::string label;
    for (char letter = 'a'; label.size() < 120; letter = static_cast<char>(letter == 'z' ? 'a' : letter + 1))
        label += letter;

    EXPECT_EQ(On(Made(4, "mkntfs -F -Q -L " + label + " \"$image\"")), "NTFS " + label);
}

// GRÖSSE and Σ, as code page 437 has them.
TEST_F(FileSystemTest, FatLabelOfTheOemCodePage_Identify_DecodesIt) {
    const std::string image = Made(4, "mkfs.fat -n LABEL \"$image\"");
    const size_t entry = ContentOf(image).rfind("LABEL      ");
    Put(image, entry, "GR\x99SSE \xE4   ");

    EXPECT_EQ(On(image), "FAT GRÖSSE Σ");
}

TEST_F(FileSystemTest, FatLabelThatBeginsAsADeletedEntry_Identify_ReturnsItsFirstCharacter) {
    const std::string image = Made(4, "mkfs.fat -n LABEL \"$image\"");
    const size_t entry = ContentOf(image).rfind("LABEL      ");
    Put(image, entry, "\x05");

    EXPECT_EQ(On(image), "FAT σABEL");
}

TEST_F(FileSystemTest, TwoFatLabels_Identify_PrefersThatOfTheRootFolder) {
    const std::string image = Made(4, "mkfs.fat -n LABEL \"$image\"");
    const size_t entry = ContentOf(image).rfind("LABEL      ");
    Put(image, entry, "OTHER");
    EXPECT_EQ(On(image), "FAT OTHER");

    Put(image, entry, "NO NAME    ");
    EXPECT_EQ(On(image), "FAT LABEL") << "of the boot sector";

    PatchByte(image, entry, 0xE5);
    EXPECT_EQ(On(image), "FAT LABEL") << "of the boot sector";

    Put(image, 43, "NO NAME    ");
    EXPECT_EQ(On(image), "FAT ");
}

TEST_F(FileSystemTest, JolietLabelCutOff_Identify_ReturnsTheWholeOne) {
    const std::string make = "mkdir -p \"$image.d\" && rm \"$image\" && genisoimage -quiet -J -V ";
    EXPECT_EQ(On(Made(1, make + "A_LABEL_OF_MORE_THAN_16 -o \"$image\" \"$image.d\""), MediumKind::Disc),
              "CDFS A_LABEL_OF_MORE_THAN_16");
}

// It is a FAT32 volume too, with the program that opens it.
TEST_F(FileSystemTest, BitLockerToGo_Identify_IsNotFat) {
    const std::string image = MadeImage("stick-fat32.img");
    Put(image, 0, "\xEB\x58\x90MSWIN4.1");
    EXPECT_EQ(On(image), "FAT32 RECOVERY");

    for (const char* const id : {"\x3B\xD6\x67\x49\x29\x2E\xD8\x4A\x83\x99\xF6\xA3\x39\xE3\xD0\x01",
                                 "\x3B\x4D\xA8\x92\x80\xDD\x0E\x4D\x9E\x4E\xB1\xE3\x28\x4E\xAE\xD8"}) {
        Put(image, 424, id);
        EXPECT_EQ(On(image), "BitLocker ");
    }
}

TEST_F(FileSystemTest, HighSierra_Identify_MatchesBlkid) {
    const std::string image = Made(1, "true");
    Put(image, 0x8009, "CDROM");
    Put(image, 0x8000 + 48, "LABEL   ");

    EXPECT_EQ(On(image, MediumKind::Disc), "CDFS LABEL");
    EXPECT_EQ(ByBlkid(image, MediumKind::Disc, 0, 1 * MiB), "CDFS LABEL");
}

// OS/2 puts an allocation table's boot sector before its own file systems.
TEST_F(FileSystemTest, BootSectorOfOs2_Identify_FindsNothing) {
    const std::string image = MadeImage("stick-fat16.img");
    for (const char* const type : {"HPFS    ", "JFS     "}) {
        Put(image, 54, type);
        EXPECT_EQ(On(image), " ") << type;
        EXPECT_EQ(ByBlkid(image, MediumKind::Disk, 0, 16 * MiB), " ") << type;
    }
}

TEST_F(FileSystemTest, ReFs_Identify_ReturnsItsName) {
    const std::string image = Made(4, "true");
    Put(image, 3, "ReFS");

    EXPECT_EQ(On(image), "ReFS ");
    EXPECT_EQ(ByBlkid(image, MediumKind::Disk, 0, 4 * MiB), "ReFS ");
}

TEST_F(FileSystemTest, ExfatWithAWrongBootChecksum_Identify_FindsNothing) {
    const std::string image = Made(4, "mkfs.exfat -L Label \"$image\"");
    PatchByte(image, 113, 1);

    EXPECT_EQ(On(image), " ");
}

TEST_F(FileSystemTest, ImplausibleBootSectors_Identify_FindsNothing) {
    const std::pair<const char*, std::pair<uint64_t, uint8_t>> damages[] = {
        {"stick-fat16.img", {13, 3}},     // sectors of a cluster
        {"stick-fat16.img", {21, 0x50}},  // the kind of medium
        {"stick-fat32.img", {16, 0}},     // allocation tables
        {"stick-ntfs.img", {16, 1}},      // allocation tables, which NTFS has not
        {"stick-ntfs.img", {48, 0xFF}},   // the file table
    };
    for (const auto& [name, damage] : damages) {
        const std::string image = MadeImage(name);
        PatchByte(image, damage.first, damage.second);
        EXPECT_EQ(On(image), " ") << name << " " << damage.first;
    }
}

TEST_F(FileSystemTest, VolumeThatIsCutOff_Identify_NeverLeavesItsBounds) {
    for (const char* const name :
         {"stick-fat12.img", "stick-fat32.img", "stick-ntfs.img", "disc-udf.iso", "disc-joliet.iso"}) {
        const std::string image = MadeImage(name);
        for (const uint64_t size :
             {0U, 1U, 512U, 1024U, 1536U, 4096U, 0x8001U, 0x8800U, 0x80000U, 0x80800U}) {
            for (const MediumKind medium : {MediumKind::Disk, MediumKind::Disc}) {
                const std::string found = In(image, medium, 0, size);
                EXPECT_TRUE(size > 1024 || found == " ") << name << " " << size;
            }
        }
    }
}

}  // namespace
}  // namespace machine
