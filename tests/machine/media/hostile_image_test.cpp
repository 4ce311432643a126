// Images that are made to take time or memory: a file system that refers to itself, folders on the same
// bytes.
#include <gtest/gtest.h>

#include "machine/media/device/file_device.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/volumes/exfat_volume.h"
#include "machine/media/volumes/fat_volume.h"
#include "machine/media/volumes/iso_volume.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"
#include "machine/media/volumes/udf_volume.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

void Patch(const std::string& file, uint64_t offset, const std::string& bytes) {
    for (size_t at = 0; at < bytes.size(); ++at)
        PatchByte(file, offset + at, static_cast<uint8_t>(bytes[at]));
}

// The largest block that was allocated while it exists. Only the allocator of a sanitizer reports that.
size_t largestBlock = 0;

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                         void (*)(const volatile void*))
    __attribute__((weak));

void ReportBlocks() {
    static const bool reports =
        __sanitizer_install_malloc_and_free_hooks != nullptr &&
        __sanitizer_install_malloc_and_free_hooks(
            [](const volatile void*, size_t size) { largestBlock = std::max(largestBlock, size); },
            [](const volatile void*) {}) != 0;
    if (!reports) GTEST_SKIP() << "no sanitizer, which reports allocations";
}

// --- NTFS ---

class HostileNtfsTest : public ImageTest {
  protected:
    // A stick whose root folder has an index block with a single entry, which leads to that block.
    std::string LoopedStick() {
        std::string image = MadeImage("stick-ntfs.img");
        const std::string bytes = ContentOf(image);
        const std::string fileOfTheRoot("$\0A\0t\0t\0r\0D\0e\0f\0", 16);
        size_t block = bytes.find("INDX");
        while (bytes.substr(block, 4096).find(fileOfTheRoot) == std::string::npos)
            block = bytes.find("INDX", block + 1);
        const uint64_t header = block + 24;
        const uint32_t entries = Le32(bytes, header);
        constexpr uint32_t entrySize = 24;
        Patch(image, header + 4, std::string(1, static_cast<char>(entries + entrySize)) + '\0');
        PatchByte(image, header + 12, 1);
        Patch(image, header + entries,
              std::string("\0\0\0\0\0\0\0\0\x18\0\0\0\3\0\0\0", 16) + bytes.substr(block + 16, 8));
        return image;
    }
    // The offset of the file's record in the master file table.
    static uint64_t RecordOfQelhdrcv(const std::string& bytes) {
        const std::string name("Q\0e\0l\0h\0d\0r\0c\0v\0.\0i\0n\0i\0", 24);
        size_t record = bytes.find("FILE0");
        while (bytes.substr(record, 512).find(name) == std::string::npos)
            record = bytes.find("FILE0", record + 1);
        return record;
    }
    static NtfsVolume VolumeOn(const std::shared_ptr<ImageFile>& image) {
        return NtfsVolume(image, 0, image->Size());
    }
};

TEST_F(HostileNtfsTest, IndexThatRefersToItself_Find_EndsAndTheVolumeIsDamaged) {
    auto volume = VolumeOn(std::make_shared<ImageFile>(LoopedStick(), ImageAccess::Read));
    std::string content = "as it was";

    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::None);

    EXPECT_EQ(volume.Find(""), FileKind::None);
    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 1392u);
    EXPECT_EQ(content, "as it was");
    EXPECT_EQ(volume.Check(), NtfsVolume::Condition::Damaged);
}

TEST_F(HostileNtfsTest, IndexThatRefersToItself_Read_FailsAsDamaged) {
    auto volume = VolumeOn(std::make_shared<ImageFile>(LoopedStick(), ImageAccess::Read));
    std::string content;

    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 1392u);
}

TEST_F(HostileNtfsTest, IndexThatRefersToItself_OpenForWriting_IsDamagedAndNeverWritten) {
    const std::string stick = LoopedStick();
    const auto image = std::make_shared<ImageFile>(stick, ImageAccess::Write);
    auto volume = VolumeOn(image);

    EXPECT_EQ(volume.Check(), NtfsVolume::Condition::Damaged);
    EXPECT_EQ(volume.Write("new.txt", "x"), 1392u);
    EXPECT_EQ(volume.Remove("sources/Qelhdrcv.ini"), 1392u);

    EXPECT_TRUE(image->Write(512, "x", 1));
    EXPECT_EQ(image->Commit(),
              stick + ": an NTFS volume is damaged: it refers to itself; nothing was written");
}

// The library moves the value by what its own header has room for.
TEST_F(HostileNtfsTest, ValueBeginsInItsHeader_WriteOrRemove_FailsAsDamaged) {
    const std::string stick = MadeImage("stick-ntfs.img");
    const std::string bytes = ContentOf(stick);
    const size_t data = bytes.find(std::string("\x80\0\0\0", 4), RecordOfQelhdrcv(bytes) + 0x38);
    constexpr size_t valueOffset = 20;
    ASSERT_EQ(ByteAt(stick, data + valueOffset), 0x18);
    PatchByte(stick, data + valueOffset, 0x15);
    auto volume = VolumeOn(std::make_shared<ImageFile>(stick, ImageAccess::Overlay));

    EXPECT_EQ(volume.Write("sources/Qelhdrcv.ini", "[Recovery]\r\n"), 1392u);
    EXPECT_EQ(volume.Remove("sources/Qelhdrcv.ini"), 1392u);
    EXPECT_EQ(volume.Write("SystemVolume.ini", "x"), 0u);
}

// The library would allocate what the boot sector demands: a record of 1 GB, an index block of 2 GB.
TEST_F(HostileNtfsTest, BootSectorDemandsHugeRecords_Check_IsDamagedAndAllocatesNone) {
    struct Size {
        uint64_t field;
        uint8_t power;
    };
    ReportBlocks();
    if (IsSkipped()) return;
    for (const Size& size : {Size{0x40, 30}, Size{0x44, 31}, Size{0x40, 17}}) {
        const std::string stick = MadeImage("stick-ntfs.img");
        PatchByte(stick, size.field, static_cast<uint8_t>(256 - size.power));
        largestBlock = 0;
        auto volume = VolumeOn(std::make_shared<ImageFile>(stick, ImageAccess::Read));

        EXPECT_EQ(volume.Check(), NtfsVolume::Condition::Damaged);
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::None);

        EXPECT_LT(largestBlock, size_t{1} << 17) << "2^" << int{size.power};
    }
}

TEST_F(HostileNtfsTest, FileWithEveryAttributeBit_ReadAndWrite_AreRefused) {
    const std::string stick = MadeImage("stick-ntfs.img");
    const std::string bytes = ContentOf(stick);
    const uint64_t record = RecordOfQelhdrcv(bytes);
    const uint64_t information = record + (Le32(bytes, record + 20) & 0xFFFF);  // the first attribute
    const uint64_t value = information + (Le32(bytes, information + 20) & 0xFFFF);
    Patch(stick, value + 32, "\xFF\xFF\xFF\xFF");
    auto volume = VolumeOn(std::make_shared<ImageFile>(stick, ImageAccess::Write));
    std::string content = "as it was";

    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    EXPECT_EQ(volume.Read("sources/Qelhdrcv.ini", content), 5u);
    EXPECT_EQ(content, "as it was");
    EXPECT_EQ(volume.Write("sources/Qelhdrcv.ini", "x"), 5u);
    EXPECT_EQ(volume.Remove("sources/Qelhdrcv.ini"), 5u);
}

// The library keeps a file open whose changes it cannot write.
TEST_F(HostileNtfsTest, RecordThatCannotBeWritten_Write_FailsAndNothingIsLeaked) {
    const std::string stick = MadeImage("stick-ntfs.img");
    const uint64_t updateSequence = RecordOfQelhdrcv(ContentOf(stick)) + 4;
    PatchByte(stick, updateSequence + 1, 0x27);  // beyond the record
    auto volume = VolumeOn(std::make_shared<ImageFile>(stick, ImageAccess::Write));

    EXPECT_NE(volume.Write("sources/Qelhdrcv.ini", "[Recovery]\r\n"), 0u);
}

TEST_F(HostileNtfsTest, SoundVolume_ManyOperations_AreNotLimited) {
    auto volume = VolumeOn(std::make_shared<ImageFile>(MadeImage("stick-ntfs.img"), ImageAccess::Read));
    for (int i = 0; i < 5'000; ++i)
        ASSERT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File) << i;
}

// --- discs and sticks ---

// Counts the bytes that are read.
class CountingDevice final : public BlockDevice {
  public:
    CountingDevice(const std::string& path, std::shared_ptr<uint64_t> count)
        : file_(path, false), count_(std::move(count)) {}

    uint64_t Size() const override { return file_.Size(); }
    bool Read(uint64_t offset, void* buffer, size_t length) const override {
        *count_ += length;
        return file_.Read(offset, buffer, length);
    }
    bool Write(uint64_t, const void*, size_t) override { return false; }
    bool Flush() override { return false; }

  private:
    FileDevice file_;
    std::shared_ptr<uint64_t> count_;
};

class FolderReadingTest : public ImageTest {
  protected:
    // How much is read to find a file, and to find it and others again.
    template <typename Volume>
    std::pair<uint64_t, uint64_t> ReadFor(const std::string& image) {
        auto count = std::make_shared<uint64_t>(0);
        const auto file = std::make_shared<ImageFile>(std::make_unique<CountingDevice>(image, count), image,
                                                      ImageAccess::Read);
        Volume volume(VolumeBytes(file, 0, file->Size()));
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
        const uint64_t first = *count;
        EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
        EXPECT_EQ(volume.Find("sources/none"), FileKind::None);
        EXPECT_EQ(volume.Find("none"), FileKind::None);
        return {first, *count - first};
    }
};

TEST_F(FolderReadingTest, AnyDiscOrStick_FindAgain_ReadsNothingMore) {
    const std::pair<uint64_t, uint64_t> read[] = {ReadFor<FatVolume>(MadeImage("stick-fat12.img")),
                                                  ReadFor<FatVolume>(MadeImage("stick-fat32.img")),
                                                  ReadFor<ExfatVolume>(MadeImage("stick-exfat.img")),
                                                  ReadFor<IsoVolume>(MadeImage("disc-joliet.iso")),
                                                  ReadFor<UdfVolume>(MadeImage("disc-udf.iso")),
                                                  ReadFor<UdfVolume>(MadeImage("disc-udf-virtual.iso"))};
    for (const auto& [first, again] : read) {
        EXPECT_GT(first, 0u);
        EXPECT_EQ(again, 0u);
    }
}

// Eight folders, each of them the same 1000 files: more than the disc has room for.
TEST_F(FolderReadingTest, FoldersOnTheSameBytes_Find_FailsAsDamaged) {
    const std::string folder = (Folder() / "content").string();
    const std::string image = (Folder() / "disc.iso").string();
    OutputOf("mkdir '" + folder + "' && cd '" + folder +
             "' && mkdir A B C D E F G H && for i in $(seq 1000); do : >A/F$i; done");
    OutputOf("genisoimage -quiet -no-pad -o '" + image + "' '" + folder + "' 2>&1");
    const std::string bytes = ContentOf(image);
    // Before the name of a record are the number of the volume, in both orders of bytes, and the name's
    // length.
    const auto recordOf = [&](char name) { return bytes.find(std::string("\1\1") + name) - 31; };
    uint8_t fewer = 0;
    for (const char name : std::string("BCDEFGH")) {
        Patch(image, recordOf(name) + 2, bytes.substr(recordOf('A') + 2, 16));
        // A sector less than the one before, so that each is a folder of its own.
        const uint64_t size = recordOf(name) + 10;
        PatchByte(image, size + 1, static_cast<uint8_t>(ByteAt(image, size + 1) - 8 * ++fewer));
    }
    const auto file = std::make_shared<ImageFile>(image, ImageAccess::Read);
    IsoVolume volume(VolumeBytes(file, 0, file->Size()));
    std::string content;

    EXPECT_EQ(volume.Find("A/F1000"), FileKind::File);
    EXPECT_EQ(volume.Find("B/F1"), FileKind::File);
    for (const char name : std::string("CDEFG"))
        volume.Find(name + std::string("/F1"));
    EXPECT_EQ(volume.Read("H/F1", content), 1392u);
    EXPECT_EQ(volume.Find("A/F1"), FileKind::File);
}

}  // namespace
}  // namespace machine
