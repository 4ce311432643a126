// Files of recovery discs, compared with isoinfo where it supports the format.
#include "tests/machine/media/image_fixture.h"

#include "machine/media/medium_image.h"
#include "machine/media/volumes/iso_volume.h"
#include "machine/media/volumes/udf_volume.h"

namespace machine {
namespace {

constexpr const char* longName = "sources/Image of the factory state.wim";

class DiscVolumeTest : public ImageTest {
  protected:
    template <typename DiscVolume>
    DiscVolume Open(const std::string& image) {
        const auto file = std::make_shared<ImageFile>(image, ImageAccess::Read);
        return DiscVolume(VolumeBytes(file, 0, file->Size()));
    }
    // A disc with a folder of files created by the shell commands.
    std::string DiscOf(const std::string& script, const std::string& options) {
        const std::string folder = (Folder() / "content").string();
        std::string disc = (Folder() / "disc.iso").string();
        OutputOf("mkdir '" + folder + "' && cd '" + folder + "' && " + script);
        OutputOf("genisoimage -quiet " + options + " -o '" + disc + "' '" + folder + "' 2>&1");
        return disc;
    }
};

void ExpectRecoveryFiles(FileStore& volume) {
    std::string content;
    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    EXPECT_EQ(volume.Find("\\SOURCES\\qelhdrcv.INI"), FileKind::File);
    EXPECT_EQ(volume.Find("Sources/Orvo"), FileKind::Folder);
    EXPECT_EQ(volume.Find("sources/DVD"), FileKind::File);
    EXPECT_EQ(volume.Find(""), FileKind::Folder);
    EXPECT_EQ(volume.Find("sources/UFD"), FileKind::None);
    EXPECT_EQ(volume.Find("sources/DVD/below"), FileKind::None);
    EXPECT_EQ(volume.Read("sources/QELHDRCV.ini", content), 0u);
    EXPECT_EQ(content, "[Recovery]\r\nVersion=1\r\n");
    EXPECT_EQ(volume.Read("sources/none", content), 2u);
    EXPECT_EQ(volume.Read("sources", content), 5u);
    EXPECT_EQ(volume.Write("new", "x"), 19u);
    EXPECT_EQ(volume.Remove("sources/DVD"), 19u);
}

TEST_F(DiscVolumeTest, IsoNames_Find_IgnoresVersionAndEmptyExtension) {
    const std::string image = MadeImage("disc-iso.iso");
    auto volume = Open<IsoVolume>(image);
    std::string content;

    ExpectRecoveryFiles(volume);
    ASSERT_EQ(volume.Read("sources/image_of.wim", content), 0u);
    EXPECT_EQ(content, OutputOf("isoinfo -i '" + image + "' -x '/SOURCES/IMAGE_OF.WIM;1'"));
    EXPECT_EQ(content, OutputOf("seq 10000"));
    EXPECT_EQ(volume.Find(longName), FileKind::None);
    EXPECT_EQ(volume.Find("sources/image_of.wim;1"), FileKind::None);
}

TEST_F(DiscVolumeTest, JolietAndIsoNames_Find_PrefersJoliet) {
    const std::string image = MadeImage("disc-joliet.iso");
    auto volume = Open<IsoVolume>(image);
    std::string content;

    ExpectRecoveryFiles(volume);
    ASSERT_EQ(volume.Read(longName, content), 0u);
    EXPECT_EQ(content, OutputOf("isoinfo -J -i '" + image + "' -x '/" + longName + "'"));
    EXPECT_EQ(content, OutputOf("seq 10000"));
    EXPECT_EQ(volume.Find("sources/IMAGE_OF.WIM"), FileKind::None);
}

TEST_F(DiscVolumeTest, UdfWithEmptyIso_Find_UsesUdf) {
    const std::string image = MadeImage("disc-udf.iso");
    auto volume = Open<UdfVolume>(image);
    auto other = Open<IsoVolume>(image);
    std::string content;

    ExpectRecoveryFiles(volume);
    ASSERT_EQ(volume.Read(longName, content), 0u);
    EXPECT_EQ(content, OutputOf("seq 10000"));
    EXPECT_EQ(other.Find("sources"), FileKind::None);
}

// A folder of several sectors, a name of wide characters, an empty file.
constexpr const char* crowd =
    "mkdir many && for i in $(seq 200); do echo $i >\"many/a file with a long name $i\"; done; : >empty; "
    "echo x >'Größe Ω.txt'";

template <typename Volume>
void ExpectCrowd(Volume volume) {
    std::string content;

    EXPECT_EQ(volume.Read("MANY/a file with a long name 200", content), 0u);
    EXPECT_EQ(content, "200\n");
    EXPECT_EQ(volume.Read("empty", content), 0u);
    EXPECT_EQ(content, "");
    EXPECT_EQ(volume.Find("größe Ω.TXT"), FileKind::File);
}

TEST_F(DiscVolumeTest, JolietWithLongFoldersAndUnicodeNames_Read_ReturnsEveryFile) {
    ExpectCrowd(Open<IsoVolume>(DiscOf(crowd, "-input-charset utf-8 -J")));
}

TEST_F(DiscVolumeTest, UdfWithLongFoldersAndUnicodeNames_Read_ReturnsEveryFile) {
    ExpectCrowd(Open<UdfVolume>(DiscOf(crowd, "-input-charset utf-8 -udf")));
}

// The files part_a and part_b as sections of one, part_a; no tool makes any below 4 GiB.
std::string WithSections(const std::string& disc) {
    const std::string bytes = ContentOf(disc);
    for (const auto& [first, second] : {std::pair<std::string, std::string>("PART_A", "PART_B"),
                                        {{"\0p\0a\0r\0t\0_\0a", 12}, {"\0p\0a\0r\0t\0_\0b", 12}}}) {
        if (bytes.find(first) == std::string::npos) continue;
        const size_t record = bytes.find(first) - 33;
        PatchByte(disc, record + 25, 0x80);
        const size_t end = bytes.find(second) + second.size() - 1;
        PatchByte(disc, end, static_cast<uint8_t>(first.back()));
    }
    return disc;
}

TEST_F(DiscVolumeTest, FileInSections_Read_ReturnsAllOfThem) {
    for (const std::string joliet : {"", "-J"}) {
        const std::string image = WithSections(DiscOf(
            "seq 9000 | head -c 4096 >part_a && seq 500 >part_b && echo x >other", "-iso-level 2 " + joliet));
        auto volume = Open<IsoVolume>(image);
        std::string content;

        ASSERT_EQ(volume.Read("part_a", content), 0u);
        EXPECT_EQ(content, OutputOf("seq 9000 | head -c 4096; seq 500"));
        EXPECT_EQ(content, OutputOf("isoinfo -i '" + image + "' " +
                                    (joliet.empty() ? "-x '/PART_A.;1'" : "-J -x /part_a")));
        EXPECT_EQ(volume.Find("part_b"), FileKind::None);
        EXPECT_EQ(volume.Read("other", content), 0u);
        std::filesystem::remove_all(Folder() / "content");
    }
}

// The second section is missing, or the first is interleaved.
TEST_F(DiscVolumeTest, IncompleteSections_Read_FailForThatFileAlone) {
    const std::pair<size_t, uint8_t> damages[] = {{25, 0x80}, {26, 1}};
    for (const auto& [at, value] : damages) {
        const std::string image = DiscOf("seq 900 >part_a && seq 500 >part_b", "-iso-level 2");
        PatchByte(image, ContentOf(image).find("PART_A") - 33 + at, value);
        auto volume = Open<IsoVolume>(image);
        std::string content = "as it was";

        EXPECT_EQ(volume.Read("part_a", content), 1392u) << at;
        EXPECT_EQ(content, "as it was");
        EXPECT_EQ(volume.Read("part_b", content), 0u) << at;
        std::filesystem::remove_all(Folder() / "content");
    }
}

TEST_F(DiscVolumeTest, EmptyUdfOfAnotherTool_Find_ReturnsTheRoot) {
    for (const char* const options : {"-b 2048 -m dvd", "-b 512 -m hd", "-b 1024 -m hd", "-b 4096 -m hd"}) {
        const std::string image = (Folder() / "empty.udf").string();
        OutputOf("rm -f '" + image + "' && truncate -s 4M '" + image + "' && mkudffs " + options + " '" +
                 image + "'");

        auto volume = Open<UdfVolume>(image);

        EXPECT_EQ(volume.Find(""), FileKind::Folder) << options;
        EXPECT_EQ(volume.Find("sources"), FileKind::None) << options;
    }
}

class UdfKindTest : public DiscVolumeTest, public testing::WithParamInterface<const char*> {
  protected:
    void MakeContent(const std::string& script) {
        OutputOf("mkdir '" + Content() + "' && cd '" + Content() + "' && " + script);
    }
    // A volume with that content.
    std::string Make(int blockSize) {
        std::string image = (Folder() / "volume.udf").string();
        OutputOf(std::string("LC_ALL=C.UTF-8 ") + KESTOVA_IMAGE_SCRIPTS + "/make-udf " + GetParam() + " " +
                 std::to_string(blockSize) + " '" + image + "' '" + Content() + "'");
        return image;
    }

  private:
    std::string Content() { return (Folder() / "content").string(); }
};

INSTANTIATE_TEST_SUITE_P(Each, UdfKindTest,
                         testing::Values("plain", "virtual", "sparable", "metadata", "mirrored"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(UdfKindTest, BlocksOfEachSize_Read_ReturnEveryFile) {
    MakeContent(std::string(crowd) + " && seq 30000 >long && { seq 2000; head -c 9000 /dev/zero; } >zeros");
    for (const int blockSize : {512, 2048, 4096}) {
        const std::string image = Make(blockSize);
        auto volume = Open<UdfVolume>(image);
        std::string content;

        ExpectCrowd(Open<UdfVolume>(image));
        EXPECT_EQ(volume.Read("long", content), 0u) << blockSize;
        EXPECT_EQ(content, OutputOf("seq 30000"));
        EXPECT_EQ(volume.Read("zeros", content), 0u) << blockSize;
        EXPECT_EQ(content, OutputOf("seq 2000; head -c 9000 /dev/zero"));
        EXPECT_EQ(volume.Label(), "RECOVERY");
        EXPECT_EQ(OutputOf("blkid -p -n udf -o value -s LABEL '" + image + "'"), "RECOVERY\n");
    }
}

// What a drive writes behind the last block of a disc.
TEST_P(UdfKindTest, BlocksBehindTheLastOne_Find_ReturnsTheFile) {
    MakeContent("echo x >file");
    const std::string image = Make(2048);
    std::filesystem::resize_file(image, std::filesystem::file_size(image) + 150ULL * 2048);

    EXPECT_EQ(Open<UdfVolume>(image).Find("file"), FileKind::File);
}

// The sector of the anchor is that of the disk.
TEST_P(UdfKindTest, StickAndPartition_Attach_ReadTheFiles) {
    MakeContent("mkdir sources && echo x >sources/UFD");
    const std::string stick = Make(512);
    Pc pc;
    InsertStick(pc, stick);
    EXPECT_EQ(pc.volumes[0].fileSystem, "UDF");
    EXPECT_EQ(pc.volumes[0].label.value, "RECOVERY");
    EXPECT_EQ(pc.volumes[0].store->Find("sources/UFD"), FileKind::File);

    const std::string size = std::to_string(std::filesystem::file_size(stick) / 512);
    const std::string disk = PartitionedImage(8, "label: dos\\n1: start=2048,size=" + size + ",type=7\\n");
    PutPartition(stick, disk, 1);
    const Volume volume = *Attach(disk).partitions[0].volume;
    EXPECT_EQ(volume.fileSystem, "UDF");
    EXPECT_EQ(volume.store->Find("sources/UFD"), FileKind::File);
}

// Of a metadata partition that is broken and has no sound mirror.
TEST_F(DiscVolumeTest, UdfWithUnknownPartitions_Find_ReturnsNothing) {
    const std::string image = (Folder() / "volume.udf").string();
    OutputOf(std::string("mkdir '") + (Folder() / "content").string() + "' && " + KESTOVA_IMAGE_SCRIPTS +
             "/make-udf mirrored 2048 '" + image + "' '" + (Folder() / "content").string() + "'");
    EXPECT_EQ(Open<UdfVolume>(image).Find(""), FileKind::Folder);

    PatchByte(image, (288ULL + 1) * 2048, 0);
    auto volume = Open<UdfVolume>(image);
    EXPECT_EQ(volume.Find(""), FileKind::None);
    EXPECT_EQ(volume.Label(), "RECOVERY");
}

// The tool makes an image of that length, although the last block that it writes has the number 299.
TEST_F(DiscVolumeTest, EmptyUdfOfAnotherToolInPackets_Find_ReturnsTheRoot) {
    const std::pair<const char*, uintmax_t> formats[] = {
        {"-m cdr -r 2.01", 300}, {"-m cdr -r 1.50", 300}, {"-m cdrw", 4096}};
    for (const auto& [options, blocks] : formats) {
        const std::string image = (Folder() / "empty.udf").string();
        OutputOf("rm -f '" + image + "' && truncate -s 8M '" + image + "' && mkudffs -b 2048 " + options +
                 " '" + image + "'");
        std::filesystem::resize_file(image, blocks * 2048);

        EXPECT_EQ(Open<UdfVolume>(image).Find(""), FileKind::Folder) << options;
    }
}

TEST_F(DiscVolumeTest, TruncatedDisc_Read_FailsForTheLostFiles) {
    const std::string image = MadeImage("disc-joliet.iso");
    std::filesystem::resize_file(image, 64 * 1024);
    auto volume = Open<IsoVolume>(image);
    std::string content = "as it was";

    EXPECT_EQ(volume.Read(longName, content), 1392u);
    EXPECT_EQ(content, "as it was");
}

// A sparse file, whose damaged length could exhaust memory.
TEST_F(DiscVolumeTest, DamagedFileLength_Read_DoesNotAllocateIt) {
    const std::string image = MadeImage("disc-iso.iso");
    const std::string bytes = ContentOf(image);
    const size_t record = bytes.rfind("QELHDRCV.INI") - 33;
    PatchByte(image, record + 13, 0x40);  // 1 GiB more
    std::filesystem::resize_file(image, 8ULL * 1024 * MiB);
    auto volume = Open<IsoVolume>(image);
    std::string content = "as it was";

    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 1392u);
    EXPECT_EQ(content, "as it was");
}

TEST_F(DiscVolumeTest, AnyDisc_FindAndRead_LeaveTheDiscUnchanged) {
    for (const std::string name : {"disc-iso.iso", "disc-joliet.iso", "disc-udf.iso"}) {
        const std::string image = MadeImage(name);
        auto iso = Open<IsoVolume>(image);
        auto udf = Open<UdfVolume>(image);
        std::string content;
        iso.Read("sources/Qelhdrcv.ini", content);
        udf.Write("sources/Qelhdrcv.ini", "x");
        EXPECT_TRUE(AreSame(std::string(KESTOVA_TEST_IMAGES) + "/" + name, image)) << name;
    }
}

// The signature of the only descriptor is damaged.
TEST_F(DiscVolumeTest, NoRoot_List_IsCorrupt) {
    const std::string image = DiscOf("touch file", "");
    PatchByte(image, uint64_t{16} * 2048 + 1, 0);
    auto volume = Open<IsoVolume>(image);
    VolumeStore& store = volume;
    std::vector<FileEntry> entries;
    EXPECT_EQ(store.List("", entries), 1392u);
    EXPECT_TRUE(entries.empty());
}

}  // namespace
}  // namespace machine
