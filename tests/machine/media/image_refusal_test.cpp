// Files without a disk, damaged tables, and volumes that must not be changed: each is refused with a clear
// message and left untouched.
#include <gmock/gmock.h>
#include <unistd.h>

#include <fstream>

#include "machine/facts/file_store.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr ImageAccess everyAccess[] = {ImageAccess::Read, ImageAccess::Write, ImageAccess::Overlay};

class ImageRefusalTest : public ImageTest {
  protected:
    std::string File(const std::string& name, const std::string& content) {
        std::string path = (Folder() / name).string();
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }
    // Expects that message after the file name for each access, and an unchanged file.
    void ExpectRefused(const std::string& image, const std::string& message) {
        const std::string copy = (Folder() / "before").string();
        OutputOf("cp --sparse=always '" + image + "' '" + copy + "'");
        for (const ImageAccess access : everyAccess)
            EXPECT_EQ(Complaint(image, access), image + ": " + message);
        EXPECT_TRUE(AreSame(copy, image));
    }
    // For messages that contain libfdisk's text.
    void ExpectRefusedWith(const std::string& image, const std::string& part) {
        const std::string copy = (Folder() / "before").string();
        OutputOf("cp --sparse=always '" + image + "' '" + copy + "'");
        for (const ImageAccess access : everyAccess) {
            EXPECT_THAT(Complaint(image, access), StartsWith(image + ": "));
            EXPECT_THAT(Complaint(image, access), HasSubstr(part));
        }
        EXPECT_TRUE(AreSame(copy, image));
    }
    // Writes a 32-bit number into a table.
    void PatchSectors(const std::string& image, uint64_t offset, uint32_t value) {
        for (int i = 0; i < 4; ++i)
            PatchByte(image, offset + static_cast<uint64_t>(i), static_cast<uint8_t>(value >> 8 * i));
    }
};

TEST_F(ImageRefusalTest, MissingFile_Attach_IsRefused) {
    for (const ImageAccess access : everyAccess)
        EXPECT_EQ(Complaint("/nowhere/disk.img", access), "/nowhere/disk.img: no such file");
}

TEST_F(ImageRefusalTest, FolderOrDevice_Attach_IsRefused) {
    EXPECT_EQ(Complaint(Folder().string()), Folder().string() + ": a folder, not a disk image");
    EXPECT_EQ(Complaint(Folder().string(), ImageAccess::Write),
              Folder().string() + ": a folder, not a disk image");
    EXPECT_EQ(Complaint("/dev/null"), "/dev/null: not a regular file");
    const std::string pipe = (Folder() / "pipe").string();
    OutputOf("mkfifo '" + pipe + "'");
    EXPECT_EQ(Complaint(pipe), pipe + ": not a regular file");
}

// Root may read everything, so this runs as another user while it exists.
class OrdinaryUser {
  public:
    OrdinaryUser() : before_(geteuid()) { changed_ = before_ != 0 || seteuid(65534) == 0; }
    ~OrdinaryUser() {
        if (seteuid(before_) != 0) ADD_FAILURE() << "cannot be root again";
    }
    bool IsOne() const { return changed_; }

  private:
    uid_t before_;
    bool changed_ = false;
};

TEST_F(ImageRefusalTest, ReadOnlyFile_AttachForWriting_IsRefused) {
    const std::string image = FactoryMbrImage();
    OutputOf("chmod 755 '" + Folder().string() + "' && chmod 444 '" + image + "'");
    const OrdinaryUser user;
    ASSERT_TRUE(user.IsOne());
    EXPECT_EQ(Complaint(image, ImageAccess::Write), image + ": no permission to write to it");
    EXPECT_EQ(Complaint(image), "");
}

TEST_F(ImageRefusalTest, UnreadableFile_Attach_IsRefused) {
    const std::string image = FactoryMbrImage();
    OutputOf("chmod 755 '" + Folder().string() + "' && chmod 000 '" + image + "'");
    const OrdinaryUser user;
    ASSERT_TRUE(user.IsOne());
    for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Overlay})
        EXPECT_EQ(Complaint(image, access), image + ": no permission to read it");
}

TEST_F(ImageRefusalTest, FileWithoutDisk_Attach_IsRefused) {
    ExpectRefused(File("empty", ""), "an empty file, no disk image");
    ExpectRefused(File("text", "Dear customer,\n"),
                  "not a whole number of 512-byte sectors, so no disk image, or a truncated one");
    ExpectRefused(File("zeros", std::string(1024 * 1024, '\0')), "no partition table, so no disk image");
    ExpectRefused(File("sector", std::string(512, 'x')), "no partition table, so no disk image");
}

TEST_F(ImageRefusalTest, VolumeWithoutTable_Attach_IsRefused) {
    ExpectRefused(PartitionFile(FactoryMbrImage(), 61, 120),
                  "no partition table, so no disk image: the file holds a single NTFS volume");
    ExpectRefused(PartitionFile(FactoryGptImage(), 1, 40),
                  "no partition table, so no disk image: the file holds a single FAT32 volume");
}

TEST_F(ImageRefusalTest, TruncatedMbrImage_Attach_IsRefused) {
    const std::string image = FactoryMbrImage();
    OutputOf("truncate -s 280M '" + image + "'");
    ExpectRefused(
        image,
        "partition 4 ends 19922944 bytes beyond the end of the file; the image is truncated, or its "
        "table damaged");
}

TEST_F(ImageRefusalTest, TruncatedGptImage_Attach_IsRefused) {
    const std::string image = FactoryGptImage();
    OutputOf("truncate -s 300M '" + image + "'");
    ExpectRefusedWith(image, "truncated");
}

// Reading the entries would take as much memory as the sparse file is long.
TEST_F(ImageRefusalTest, GptWithTooManyEntries_Attach_IsRefused) {
    const std::string claim =
        "the GUID partition table is damaged: its entries claim to take 4294967168 bytes";
    const std::string primary = FactoryGptImage();
    const std::string backup = FactoryGptImage("backup.img");
    const uint64_t lastSector = std::filesystem::file_size(backup) - 512;
    PatchSectors(primary, 512 + 80, 0x1FFFFFF);
    PatchSectors(backup, lastSector + 80, 0x1FFFFFF);

    ExpectRefused(primary, claim);
    ExpectRefused(backup, claim);
    OutputOf("truncate -s 500G '" + primary + "'");
    EXPECT_EQ(Complaint(primary), primary + ": " + claim);
}

TEST_F(ImageRefusalTest, OverlappingPartitions_Attach_IsRefused) {
    const std::string image = FactoryMbrImage();
    PatchSectors(image, 446 + 2 * 16 + 8, 180 * 2048);  // partition 3 starts 1 MiB early
    ExpectRefused(image, "partition 2 and partition 3 overlap");
}

TEST_F(ImageRefusalTest, EmptyPartitionOrOneOnTheTable_Attach_IsRefused) {
    const std::string image = FactoryMbrImage();
    PatchSectors(image, 446 + 2 * 16 + 12, 0);
    ExpectRefused(image, "partition 3 has no length; the partition table is damaged");
    const std::string other = FactoryMbrImage("other.img");
    PatchSectors(other, 446 + 8, 0);
    ExpectRefused(other, "partition 1 lies on the partition table");
}

TEST_F(ImageRefusalTest, LogicalChainWithACycle_Attach_IsRefused) {
    const std::string image =
        PartitionedImage(40,
                         "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n"
                         "6: start=20480,size=2048,type=7\\n");
    // The second link refers back to the first.
    const uint64_t second = 8192 * 512 + uint64_t{20480 - 2048 - 8192} * 512;
    ASSERT_EQ(ByteAt(image, second + 510), 0x55);
    PatchByte(image, second + 462 + 4, 0x05);
    PatchSectors(image, second + 462 + 8, 20480 - 2048 - 8192);
    ExpectRefused(image, "the chain of logical partitions runs in a circle, at sector 18432");
}

TEST_F(ImageRefusalTest, LogicalChainBackToItsStart_Attach_IsRefused) {
    const std::string image =
        PartitionedImage(40,
                         "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n"
                         "6: start=20480,size=2048,type=7\\n");
    const uint64_t first = 8192 * 512;
    PatchSectors(image, first + 462 + 8, 0);
    ExpectRefused(image, "the chain of logical partitions runs in a circle, at sector 8192");
}

TEST_F(ImageRefusalTest, InvalidBootIndicator_Attach_IsRefused) {
    const std::string image = FactoryMbrImage();
    PatchByte(image, 446 + 16, 0x81);
    ExpectRefused(image, "partition 2 is neither active nor inactive; the partition table is damaged");

    const std::string extended = PartitionedImage(40, "label: dos\\n2: start=8192,size=40960,type=5\\n");
    PatchByte(extended, 446 + 16, 0x01);
    ExpectRefused(extended,
                  "the extended partition is neither active nor inactive; the partition table is damaged");
}

TEST_F(ImageRefusalTest, BrokenLogicalChain_Attach_IsRefused) {
    const std::string image = PartitionedImage(
        40, "label: dos\\n2: start=8192,size=40960,type=5\\n5: start=10240,size=2048,type=b\\n");
    PatchByte(image, 8192 * 512 + 511, 0);
    ExpectRefused(image, "the chain of logical partitions is damaged, at sector 8192");
    PatchByte(image, 8192 * 512 + 511, 0xAA);
    PatchByte(image, 8192 * 512 + 462 + 4, 0x05);
    PatchSectors(image, 8192 * 512 + 462 + 8, 60000);
    ExpectRefused(image, "the chain of logical partitions leaves the extended partition, at sector 68192");
}

TEST_F(ImageRefusalTest, DamagedGpt_Attach_DoesNotUseTheBackup) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 512 + 56, 0xFF);  // the disk's GUID, covered by the header's checksum
    ExpectRefusedWith(image, "the partition table is damaged: ");
}

TEST_F(ImageRefusalTest, DamagedGptEntriesOrBackup_Attach_IsRefused) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 1024 + 56, 'X');  // the name of the first entry
    ExpectRefusedWith(image, "the partition table is damaged: ");
    const std::string other = FactoryGptImage("other.img");
    PatchByte(other, 400 * MiB - 512 + 56, 0xFF);
    ExpectRefusedWith(other, "the partition table is damaged: ");
}

TEST_F(ImageRefusalTest, DamagedGptAndBackup_Attach_IsRefused) {
    const std::string image = FactoryGptImage();
    PatchByte(image, 512, 0);
    PatchByte(image, 400 * MiB - 512, 0);
    ExpectRefused(image, "the GUID partition table is damaged, or the image is truncated");
}

// ntfsfix leaves the volume marked dirty, so that Windows checks it.
TEST_F(ImageRefusalTest, DirtyVolume_Attach_IsAcceptedForReadingOnly) {
    const std::string image = FactoryMbrImage();
    const std::string partition = PartitionFile(image, 181, 90);
    OutputOf("ntfsfix '" + partition + "'");
    PutPartition(partition, image, 181);
    const std::string before = (Folder() / "before").string();
    OutputOf("cp --sparse=always '" + image + "' '" + before + "'");
    const std::string message =
        image +
        ": partition 3 \"Data\" is marked dirty: start Windows, let chkdsk check it, shut "
        "down, and try again";

    EXPECT_EQ(Complaint(image, ImageAccess::Write), message);
    EXPECT_EQ(Complaint(image, ImageAccess::Overlay), message);
    const Disk disk = Attach(image, ImageAccess::Read);
    EXPECT_EQ(disk.partitions[2].volume->store->Find(""), FileKind::Folder);
    EXPECT_TRUE(AreSame(before, image));
}

TEST_F(ImageRefusalTest, HibernatedVolume_Attach_IsAcceptedForReadingOnly) {
    const std::string image = FactoryMbrImage();
    const std::string partition = PartitionFile(image, 61, 120);
    const std::string hibernation = File("hibernation", "hibr" + std::string(8192, '\0'));
    OutputOf("ntfscp --quiet --force '" + partition + "' '" + hibernation + "' hiberfil.sys 2>&1");
    PutPartition(partition, image, 61);
    const std::string before = (Folder() / "before").string();
    OutputOf("cp --sparse=always '" + image + "' '" + before + "'");
    const std::string message =
        image +
        ": partition 2 \"Windows\" is hibernated: start Windows, shut it down completely "
        "(shutdown /s /t 0), and try again";

    EXPECT_EQ(Complaint(image, ImageAccess::Write), message);
    EXPECT_EQ(Complaint(image, ImageAccess::Overlay), message);
    const Disk disk = Attach(image, ImageAccess::Read);
    EXPECT_EQ(disk.partitions[1].volume->store->Find("hiberfil.sys"), FileKind::File);
    EXPECT_TRUE(AreSame(before, image));
}

// The offset of a record in the master file table of partition 2, "Windows".
uint64_t RecordPlace(const std::string& image, uint64_t number) {
    const std::string cluster =
        OutputOf("od -An -tu8 -j " + std::to_string(61 * MiB + 0x30) + " -N 8 '" + image + "'");
    return 61 * MiB + std::stoull(cluster) * 4096 + number * 1024;
}

TEST_F(ImageRefusalTest, DamagedVolume_Attach_IsAcceptedForReadingOnly) {
    const std::string image = FactoryMbrImage();
    const uint64_t bitmap = RecordPlace(image, 6);
    ASSERT_EQ(ByteAt(image, bitmap), 'F');
    PatchByte(image, bitmap, 'X');

    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image +
                  ": partition 2 \"Windows\" is damaged: let chkdsk repair it on a running Windows, and try "
                  "again");
    const Disk disk = Attach(image, ImageAccess::Read);
    std::string content;
    EXPECT_EQ(disk.partitions[1].volume->store->Find("Users"), FileKind::None);
    EXPECT_EQ(disk.partitions[1].volume->store->Read("Users", content), 1392u);
}

TEST_F(ImageRefusalTest, UnrecognisableVolume_Attach_IsRaw) {
    const std::string image = FactoryMbrImage();
    PatchByte(image, RecordPlace(image, 0), 'X');

    const Disk disk = Attach(image, ImageAccess::Write);

    EXPECT_EQ(disk.partitions[1].volume->fileSystem, "RAW");
    EXPECT_FALSE(disk.partitions[1].volume->store);
}

TEST_F(ImageRefusalTest, ImageLockedByAnotherProcess_AttachForWriting_IsRefused) {
    const std::string image = FactoryMbrImage();
    Disk writer = Attach(image, ImageAccess::Write);

    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image + ": in use: another program has opened it for writing");
    EXPECT_NE(StatusOf("flock --exclusive --nonblock '" + image + "' true"), 0);
    EXPECT_EQ(Complaint(image, ImageAccess::Read), "");
    const Disk copy = writer;
    writer = Disk();
    EXPECT_NE(Complaint(image, ImageAccess::Write), "");
}

TEST_F(ImageRefusalTest, AttachedDisk_Destroy_ReleasesTheLockAndReadersTakeNone) {
    const std::string image = FactoryMbrImage();
    Attach(image, ImageAccess::Write);

    const Disk reader = Attach(image, ImageAccess::Read);
    const Disk dryRun = Attach(image, ImageAccess::Overlay);
    EXPECT_EQ(StatusOf("flock --exclusive --nonblock '" + image + "' true"), 0);
}

}  // namespace
}  // namespace machine
