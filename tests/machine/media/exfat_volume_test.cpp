// Files of exFAT volumes, which fsck.exfat finds sound before they are read or damaged.
#include "machine/media/volumes/exfat_volume.h"

#include <bit>
#include <fstream>

#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

constexpr const char* longName = "sources/Image of the factory state.wim";

class ExfatVolumeTest : public ImageTest {
  protected:
    ExfatVolume Open(const std::string& image) {
        const auto file = std::make_shared<ImageFile>(image, ImageAccess::Read);
        return ExfatVolume(VolumeBytes(file, 0, file->Size()));
    }
    // A volume with files created by the shell commands.
    std::string VolumeOf(const std::string& script, const std::string& options = "",
                         const std::string& formatOptions = "") {
        const std::string folder = (Folder() / "content").string();
        std::string image = (Folder() / "volume.img").string();
        OutputOf("mkdir '" + folder + "' && cd '" + folder + "' && " + script);
        OutputOf("truncate -s 8M '" + image + "' && mkfs.exfat " + formatOptions + " '" + image + "'");
        OutputOf(std::string("LC_ALL=C.UTF-8 ") + KESTOVA_IMAGE_SCRIPTS + "/put-exfat-files " + options +
                 " '" + image + "' '" + folder + "'");
        OutputOf("fsck.exfat -n '" + image + "'");
        return image;
    }
    // Where the set of entries of a file is.
    static uint64_t SetOf(const std::string& image, std::string_view name) {
        std::string wide;
        for (const char unit : name.substr(0, 15))
            wide += {unit, '\0'};
        const size_t at = ContentOf(image).find(std::string("\xC1\0", 2) + wide);
        EXPECT_NE(at, std::string::npos) << name;
        return at - 64;
    }
    static void PatchLe32(const std::string& image, uint64_t at, uint32_t number) {
        for (int i = 0; i < 4; ++i)
            PatchByte(image, at + static_cast<uint64_t>(i), static_cast<uint8_t>(number >> (8 * i)));
    }
    // Makes the sum of the set fit what was changed.
    static void Seal(const std::string& image, uint64_t set) {
        const std::string bytes = ContentOf(image);
        const size_t size = 32 * (1 + size_t{Byte(bytes, set + 1)});
        uint16_t sum = 0;
        for (size_t at = 0; at < size; ++at) {
            if (at != 2 && at != 3) sum = static_cast<uint16_t>(std::rotr(sum, 1) + Byte(bytes, set + at));
        }
        PatchByte(image, set + 2, static_cast<uint8_t>(sum & 0xFF));
        PatchByte(image, set + 3, static_cast<uint8_t>(sum >> 8));
    }
    static uint32_t Number(const std::string& image, uint64_t at) { return Le32(ContentOf(image), at); }
};

TEST_F(ExfatVolumeTest, OtherCase_Find_ReturnsTheFile) {
    ExfatVolume volume = Open(MadeImage("stick-exfat.img"));

    ExpectFilesOfAStick(volume);
    EXPECT_EQ(volume.Find("RECOVERY"), FileKind::None) << "the label";
}

TEST_F(ExfatVolumeTest, ContiguousAndScatteredFiles_Read_ReturnTheirContent) {
    for (const char* const options : {"", "--scattered"}) {
        ExfatVolume volume = Open(VolumeOf(
            "mkdir sources && seq 30000 >'sources/Image of the factory state.wim' && : >empty && echo x >Größe",
            options));
        std::string content;

        ASSERT_EQ(volume.Read(longName, content), 0u) << options;
        EXPECT_EQ(content, OutputOf("seq 30000"));
        EXPECT_EQ(volume.Read("EMPTY", content), 0u);
        EXPECT_EQ(content, "");
        EXPECT_EQ(volume.Read("gröẞe", content), 2u);
        EXPECT_EQ(volume.Read("GRößE", content), 0u);
        EXPECT_EQ(content, "x\n");
        std::filesystem::remove_all(Folder() / "content");
    }
}

TEST_F(ExfatVolumeTest, FileRecordedInPart_Read_ReturnsZerosBehindIt) {
    for (const char* const options : {"", "--scattered"}) {
        ExfatVolume volume = Open(VolumeOf(
            "{ echo begin; head -c 9000 /dev/zero; } >part && head -c 5000 /dev/zero >zeros", options));
        std::string content;

        ASSERT_EQ(volume.Read("part", content), 0u);
        EXPECT_EQ(content, "begin\n" + std::string(9000, '\0'));
        ASSERT_EQ(volume.Read("zeros", content), 0u);
        EXPECT_EQ(content, std::string(5000, '\0'));
        std::filesystem::remove_all(Folder() / "content");
    }
}

TEST_F(ExfatVolumeTest, LongFolders_Find_ListsThemCompletely) {
    ExfatVolume volume = Open(VolumeOf(
        "mkdir many && for i in $(seq 150); do echo $i >\"many/a file with a long name $i\"; echo $i >\"a file at the "
        "top $i\"; done",
        "--scattered"));
    std::string content;

    EXPECT_EQ(volume.Read("MANY/a file with a LONG name 150", content), 0u);
    EXPECT_EQ(content, "150\n");
    EXPECT_EQ(volume.Read("a file at the top 150", content), 0u);
    EXPECT_EQ(content, "150\n");
}

TEST_F(ExfatVolumeTest, LargerClusters_Read_ReturnsTheFile) {
    ExfatVolume volume = Open(VolumeOf("seq 20000 >file && echo x >other", "--scattered", "-c 32K"));
    std::string content;

    EXPECT_EQ(volume.Read("file", content), 0u);
    EXPECT_EQ(content, OutputOf("seq 20000"));
}

// Of eight sectors of 512 bytes each; mkfs.exfat takes the size from the device.
TEST_F(ExfatVolumeTest, SectorsOf4096Bytes_Read_ReturnsTheFile) {
    const std::string image = MadeImage("stick-exfat.img");
    std::string boot = ContentOf(image).substr(0, 512);
    for (const size_t sectors : {72U, 80U, 84U, 88U})
        PutLe32(boot, sectors, Le32(boot, sectors) / 8);
    boot[108] = 12;
    boot[109] = 0;
    boot.resize(11ULL * 4096);
    uint32_t sum = 0;
    for (size_t at = 0; at < boot.size(); ++at) {
        if (at != 106 && at != 107 && at != 112) sum = std::rotr(sum, 1) + Byte(boot, at);
    }
    for (size_t at = boot.size(); at < 12ULL * 4096; at += 4) {
        boot.append(4, '\0');
        PutLe32(boot, at, sum);
    }
    std::fstream(image, std::ios::in | std::ios::out | std::ios::binary) << boot;
    OutputOf("fsck.exfat -n '" + image + "'");
    ExfatVolume volume = Open(image);
    std::string content;

    EXPECT_EQ(volume.Label(), "RECOVERY");
    EXPECT_EQ(volume.Read(longName, content), 0u);
    EXPECT_EQ(content, OutputOf("seq 10000"));
}

TEST_F(ExfatVolumeTest, AnyFile_WriteAndRemove_FailAndChangeNothing) {
    const std::string image = MadeImage("stick-exfat.img");
    ExfatVolume volume = Open(image);

    EXPECT_EQ(volume.Write("SystemVolume.ini", "x"), 19u);
    EXPECT_EQ(volume.Remove("sources/Qelhdrcv.ini"), 19u);
    EXPECT_TRUE(AreSame(KESTOVA_TEST_IMAGES "/stick-exfat.img", image));
}

TEST_F(ExfatVolumeTest, EntriesWithAWrongSum_Find_LoseThatFileAlone) {
    const std::string image = MadeImage("stick-exfat.img");
    PatchByte(image, SetOf(image, "boot.wim") + 8, 0x5A);
    ExfatVolume volume = Open(image);

    EXPECT_EQ(volume.Find("sources/boot.wim"), FileKind::None);
    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    EXPECT_EQ(volume.Find("sources/UFD"), FileKind::File);
}

TEST_F(ExfatVolumeTest, EntriesThatCannotBe_Find_LoseThatFileAlone) {
    const std::pair<uint64_t, uint8_t> damages[] = {
        {32, 0xC2},     // no entry of the content
        {64, 0xC0},     // no entry of the name
        {32 + 3, 0},    // no name
        {32 + 3, 200},  // a name of more entries
        {32 + 15, 1},   // more is recorded than there is
    };
    for (const auto& [at, value] : damages) {
        const std::string image = MadeImage("stick-exfat.img");
        const uint64_t set = SetOf(image, "boot.wim");
        PatchByte(image, set + at, value);
        Seal(image, set);
        ExfatVolume volume = Open(image);

        EXPECT_EQ(volume.Find("sources/boot.wim"), FileKind::None) << at;
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File) << at;
    }
}

TEST_F(ExfatVolumeTest, ClusterOutsideTheVolume_Read_FailsForThatFileAlone) {
    for (const uint32_t cluster : {0U, 1U, 0x00FFFFFFU, 0xFFFFFFFFU}) {
        const std::string image = MadeImage("stick-exfat.img");
        for (const char* const name : {"boot.wim", "Orvo"}) {
            const uint64_t set = SetOf(image, name);
            PatchLe32(image, set + 32 + 20, cluster);
            Seal(image, set);
        }
        ExfatVolume volume = Open(image);
        std::string content = "as it was";

        EXPECT_EQ(volume.Read("sources/boot.wim", content), 1392u) << cluster;
        EXPECT_EQ(volume.Read("sources/Orvo/any", content), 1392u) << cluster;
        EXPECT_EQ(content, "as it was");
        EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 0u);
    }
}

TEST_F(ExfatVolumeTest, ClusterChainWithACycle_Read_FailsAsDamaged) {
    const std::string image = VolumeOf("seq 20000 >circle && echo x >other", "--scattered");
    const uint64_t set = SetOf(image, "circle");
    const uint32_t first = Number(image, set + 32 + 20);
    PatchLe32(image, set + 32 + 8, 4 << 20);
    PatchLe32(image, set + 32 + 24, 4 << 20);
    Seal(image, set);
    PatchLe32(image, Number(image, 80) * 512 + 4 * (first + 6), first + 2);
    ExfatVolume volume = Open(image);
    std::string content = "as it was";

    EXPECT_EQ(volume.Read("circle", content), 1392u);
    EXPECT_EQ(content, "as it was");
    EXPECT_EQ(volume.Read("other", content), 0u);
}

TEST_F(ExfatVolumeTest, LengthOfADamagedFile_Read_DoesNotAllocateIt) {
    const std::string image = MadeImage("stick-exfat.img");
    const uint64_t set = SetOf(image, "boot.wim");
    PatchByte(image, set + 32 + 30, 1);  // 256 TiB
    Seal(image, set);
    std::string content = "as it was";

    EXPECT_EQ(Open(image).Read("sources/boot.wim", content), 1392u);
    EXPECT_EQ(content, "as it was");
}

TEST_F(ExfatVolumeTest, TruncatedVolume_Find_ReturnsNothing) {
    const std::string image = MadeImage("stick-exfat.img");
    std::filesystem::resize_file(image, std::filesystem::file_size(image) - 512);
    ExfatVolume volume = Open(image);
    std::string content;

    EXPECT_EQ(volume.Find(""), FileKind::None);
    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 1392u);
}

TEST_F(ExfatVolumeTest, PartitionOfEachTable_Attach_ReadsItsFiles) {
    const std::string tables[] = {
        "label: dos\\n1: start=2048,size=16384,type=7\\n",
        "label: gpt\\n1: start=2048,size=16384,type=EBD0A0A2-B9E5-4433-87C0-68B6B72699C7\\n"};
    for (const std::string& table : tables) {
        const std::string image = PartitionedImage(10, table);
        PutPartition(MadeImage("stick-exfat.img"), image, 1);

        const Disk disk = Attach(image, ImageAccess::Write);

        ASSERT_EQ(disk.partitions.size(), 1u);
        const Volume& volume = *disk.partitions[0].volume;
        EXPECT_EQ(volume.fileSystem, "exFAT");
        EXPECT_EQ(volume.label.value, "RECOVERY");
        EXPECT_EQ(volume.store->Find("sources/UFD"), FileKind::File);
        std::filesystem::remove(image);
    }
}

}  // namespace
}  // namespace machine
