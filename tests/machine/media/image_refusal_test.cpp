// Files without a disk, and volumes that must not be changed: each is refused with a clear message and left
// untouched.
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "machine/facts/file_store.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

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
