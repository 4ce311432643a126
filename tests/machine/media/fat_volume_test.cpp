// Files of FAT volumes, written and checked with mtools.
#include "machine/media/volumes/fat_volume.h"

#include <fstream>

#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

constexpr const char* longName = "sources/Image of the factory state.wim";

// A stick without a partition table, in the format of the test's parameter.
class FatVolumeTest : public ImageTest, public testing::WithParamInterface<const char*> {
  protected:
    FatVolume Open() {
        const auto image = std::make_shared<ImageFile>(image_, ImageAccess::Read);
        return FatVolume(VolumeBytes(image, 0, image->Size()));
    }
    std::string Mtools(const std::string& command, const std::string& words) {
        return OutputOf(command + " -i '" + image_ + "' " + words);
    }
    // A file of that many bytes without repetition.
    std::string LocalFile(const std::string& name, size_t size) {
        std::string file = (Folder() / name).string();
        OutputOf("seq 1000000 | head -c " + std::to_string(size) + " >'" + file + "'");
        return file;
    }
    // Writes a file of that size into the gaps between others.
    std::string PutFragmented(const std::string& name, size_t size) {
        for (int i = 0; i < 20; ++i)
            Mtools("mcopy", "'" + LocalFile("filler", 3000) + "' ::filler" + std::to_string(i));
        for (int i = 0; i < 20; i += 2)
            Mtools("mdel", "::filler" + std::to_string(i));
        std::string file = LocalFile(name, size);
        Mtools("mcopy", "'" + file + "' ::");
        return file;
    }

    std::string format_ = std::string("stick-") + GetParam() + ".img";
    std::string image_ = MadeImage(format_);
};

INSTANTIATE_TEST_SUITE_P(Formats, FatVolumeTest, testing::Values("fat12", "fat16", "fat32"),
                         [](const auto& format) { return std::string(format.param); });

TEST_P(FatVolumeTest, OtherCase_Find_ReturnsTheFile) {
    FatVolume volume = Open();

    ExpectFilesOfAStick(volume);
    EXPECT_EQ(volume.Find("sources/."), FileKind::None);
    EXPECT_EQ(volume.Find("RECOVERY"), FileKind::None) << "the label";
}

TEST_P(FatVolumeTest, ShortName_Find_ReturnsTheFile) {
    EXPECT_EQ(Open().Find("sources/IMAGEO~1.WIM"), FileKind::File);
}

TEST_P(FatVolumeTest, AnyFile_Read_MatchesMtools) {
    FatVolume volume = Open();
    std::string content;

    ASSERT_EQ(volume.Read(longName, content), 0u);
    EXPECT_EQ(content.size(), 48894u);
    EXPECT_EQ(content, Mtools("mtype", std::string("'::") + longName + "'"));
    ASSERT_EQ(volume.Read("sources/qelhdrcv.ini", content), 0u);
    EXPECT_EQ(content, "[Recovery]\r\nVersion=1\r\n");
}

TEST_P(FatVolumeTest, FolderOrMissingFile_Read_FailsWithItsError) {
    FatVolume volume = Open();
    std::string content = "as it was";

    EXPECT_EQ(volume.Read("sources/none", content), 2u);
    EXPECT_EQ(volume.Read("sources", content), 5u);
    EXPECT_EQ(content, "as it was");
}

TEST_P(FatVolumeTest, FragmentedFile_Read_FollowsTheChain) {
    const std::string file = PutFragmented("pieces.bin", 150001);
    std::string content;

    ASSERT_EQ(Open().Read("PIECES.BIN", content), 0u);

    EXPECT_EQ(content, ContentOf(file));
    EXPECT_EQ(Open().Find("filler0"), FileKind::None);
    EXPECT_EQ(Open().Find("filler1"), FileKind::File);
}

TEST_P(FatVolumeTest, LongFolderWithDeletedFiles_Find_ListsItCompletely) {
    Mtools("mmd", "::many");
    OutputOf("mkdir '" + (Folder() / "many").string() + "' && cd '" + (Folder() / "many").string() +
             "' && for i in $(seq 300); do echo $i >\"a file with a long name $i\"; done");
    Mtools("mcopy", "'" + (Folder() / "many").string() + "'/* ::many");
    Mtools("mdel", "'::many/a file with a long name 150'");
    FatVolume volume = Open();
    std::string content;

    EXPECT_EQ(volume.Read("many/A FILE with a long name 300", content), 0u);
    EXPECT_EQ(content, "300\n");
    EXPECT_EQ(volume.Find("many/a file with a long name 150"), FileKind::None);
}

TEST_P(FatVolumeTest, EmptyFileAndUnicodeName_Read_Succeeds) {
    OutputOf("cd '" + Folder().string() +
             "' && : >empty && echo x >'Größe.txt' && LC_ALL=C.UTF-8 mcopy -i '" + image_ +
             "' empty 'Größe.txt' ::");
    FatVolume volume = Open();
    std::string content = "something";

    EXPECT_EQ(volume.Read("EMPTY", content), 0u);
    EXPECT_EQ(content, "");
    EXPECT_EQ(volume.Read("größe.TXT", content), 0u);
    EXPECT_EQ(content, "x\n");
}

TEST_P(FatVolumeTest, AnyFile_WriteAndRemove_FailAndChangeNothing) {
    FatVolume volume = Open();

    EXPECT_EQ(volume.Write("SystemVolume.ini", "x"), 19u);
    EXPECT_EQ(volume.Write("sources/Qelhdrcv.ini", "x"), 19u);
    EXPECT_EQ(volume.Remove("sources/Qelhdrcv.ini"), 19u);

    EXPECT_TRUE(AreSame(std::string(KESTOVA_TEST_IMAGES) + "/" + format_, image_));
}

TEST_P(FatVolumeTest, TruncatedVolume_Find_ReturnsNothing) {
    std::filesystem::resize_file(image_, std::filesystem::file_size(image_) - 512);
    FatVolume volume = Open();
    std::string content;

    EXPECT_EQ(volume.Find(""), FileKind::None);
    EXPECT_EQ(volume.Find("sources"), FileKind::None);
    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 1392u);
}

// Windows gives a name no long form that the code page has in capitals.
TEST_P(FatVolumeTest, ShortNameOfTheOemCodePage_Read_ReturnsTheFile) {
    Mtools("mcopy", "'" + LocalFile("GROSSE.TXT", 5) + "' ::");
    const size_t entry = ContentOf(image_).find("GROSSE  TXT");
    PatchByte(image_, entry + 2, 0x99);
    FatVolume volume = Open();
    std::string content;

    EXPECT_EQ(volume.Read("größe.txt", content), 2u);
    EXPECT_EQ(volume.Read("grÖsse.txt", content), 0u);
    EXPECT_EQ(content, "1\n2\n3");
    PatchByte(image_, entry, 0x05);
    EXPECT_EQ(Open().Find("σrÖsse.txt"), FileKind::File)
        << "the byte of a deleted entry has another place holder";
}

TEST_P(FatVolumeTest, FolderOutsideTheVolume_Find_LosesThatFolderAlone) {
    for (const char* const name : {"lost", "kept"})
        Mtools("mmd", std::string("::") + name);
    const size_t entry = ContentOf(image_).find("LOST       ");
    for (const uint32_t cluster : {0x0000U, 0x0001U, 0xFFFFU}) {
        // The upper half, which FAT32 alone has, and the lower one.
        for (const uint64_t half : {entry + 20, entry + 26}) {
            PatchByte(image_, half,
                      static_cast<uint8_t>(half < entry + 26 && cluster < 2 ? 0 : cluster & 0xFF));
            PatchByte(image_, half + 1, static_cast<uint8_t>(cluster >> 8));
        }
        FatVolume volume = Open();

        EXPECT_EQ(volume.Find(""), FileKind::Folder);
        EXPECT_EQ(volume.Find("lost"), FileKind::None) << cluster;
        EXPECT_EQ(volume.Find("kept"), FileKind::Folder);
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    }
}

TEST_P(FatVolumeTest, LongNameThatDoesNotFit_Find_FallsBackToTheShortOne) {
    const uint64_t parts[] = {ContentOf(image_).find(std::string("\x01I\0m\0a\0g\0", 9)),
                              ContentOf(image_).find("IMAGEO~1WIM") - 32};
    for (const uint64_t part : parts) {
        const uint8_t sum = ByteAt(image_, part + 13);
        PatchByte(image_, part + 13, static_cast<uint8_t>(sum + 1));
        FatVolume volume = Open();

        EXPECT_EQ(volume.Find(longName), FileKind::None);
        EXPECT_EQ(volume.Find("sources/IMAGEO~1.WIM"), FileKind::File);
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
        PatchByte(image_, part + 13, sum);
    }
}

class FatCycleTest : public ImageTest {
  protected:
    // A FAT16 stick with a file of five clusters, the last of which refers back to cluster `backTo`,
    // counted from 0, while the recorded size is much longer.
    FatVolume WithCycle(uint64_t backTo) {
        const std::string image = MadeImage("stick-fat16.img");
        OutputOf("cd '" + Folder().string() + "' && head -c 10000 /dev/zero >circle && mcopy -i '" + image +
                 "' circle ::");
        const auto first =
            std::stoull(OutputOf("mshowfat -i '" + image + "' ::circle | sed 's/.*<//; s/-.*//'"));
        const uint64_t table = 512ULL * ByteAt(image, 14);
        PatchByte(image, table + 2 * (first + 4), static_cast<uint8_t>((first + backTo) % 256));
        PatchByte(image, table + 2 * (first + 4) + 1, static_cast<uint8_t>((first + backTo) / 256));
        const uint64_t entry = std::stoull(OutputOf("grep -abo 'CIRCLE     ' '" + image + "'"));
        PatchByte(image, entry + 30, 0xC0);  // 12 MiB
        const auto file = std::make_shared<ImageFile>(image, ImageAccess::Read);
        return FatVolume(VolumeBytes(file, 0, file->Size()));
    }
};

TEST_F(FatCycleTest, ClusterChainWithACycle_Read_FailsAsDamaged) {
    for (const uint64_t backTo : {0U, 1U, 3U, 4U}) {
        std::string content = "as it was";
        EXPECT_EQ(WithCycle(backTo).Read("circle", content), 1392u) << backTo;
        EXPECT_EQ(content, "as it was");
    }
}

}  // namespace
}  // namespace machine
