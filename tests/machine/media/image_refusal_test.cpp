// Files without a disk, and volumes that must not be changed: each is refused with a clear message and left
// untouched.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <bit>
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
    ExpectRefused(File("letter", std::string(2000, 'x')),
                  "not a whole number of 512-byte sectors, so no disk image, or a truncated one");
    ExpectRefused(File("zeros", std::string(1024 * 1024, '\0')), "no partition table, so no disk image");
    ExpectRefused(File("sector", std::string(512, 'x')), "no partition table, so no disk image");
}

TEST_F(ImageRefusalTest, VolumeWithoutTable_Attach_IsRefused) {
    ExpectRefused(
        PartitionFile(FactoryMbrImage(), 61, 120),
        "no partition table, so no disk image: the file holds a single NTFS volume; --stick opens it");
    ExpectRefused(
        PartitionFile(FactoryGptImage(), 1, 40),
        "no partition table, so no disk image: the file holds a single FAT32 volume; --stick opens it");
    ExpectRefused(PartitionFile(MadeImage("bitlocker.img"), 41, 80),
                  "no partition table, so no disk image: the file holds a single BitLocker volume");
}

TEST_F(ImageRefusalTest, DiscOrStick_Attach_NamesTheOptionForIt) {
    const std::string refusal = "no partition table, so no disk image: the file holds a single ";

    ExpectRefused(MadeImage("disc-joliet.iso"), refusal + "ISO 9660 volume; --disc opens it");
    ExpectRefused(MadeImage("disc-udf.iso"), refusal + "UDF volume; --disc opens it");
    ExpectRefused(MadeImage("stick-exfat.img"), refusal + "exFAT volume; --stick opens it");
    const std::string whole = File("whole.udf", std::string(17 * MiB, '\0'));
    OutputOf("mkudffs -m hd -b 512 '" + whole + "'");
    ExpectRefused(whole, refusal + "UDF volume; --stick opens it");
}

// A disc was written to the disk before it was partitioned.
TEST_F(ImageRefusalTest, PartitionTableBeforeFormerDisc_Attach_IsADisk) {
    const std::string image = MadeImage("disc-iso.iso");
    OutputOf("truncate -s 20M '" + image +
             "' && printf 'label: dos\nstart=16384,type=7\n' | sfdisk --quiet --wipe never '" + image + "'");

    EXPECT_EQ(Attach(image).partitions.size(), 1u);
}

// As mkudffs makes it: one partition, which begins where the table is.
TEST_F(ImageRefusalTest, UdfWithTableOfTheWholeMedium_Attach_IsADiskThatIsNotChanged) {
    const std::string image = File("whole.udf", std::string(17 * MiB, '\0'));
    OutputOf("mkudffs -m hd -b 512 --bootarea=mbr '" + image + "'");

    EXPECT_EQ(Attach(image).partitions.at(0).volume->fileSystem, "UDF");
    EXPECT_EQ(Complaint(image, ImageAccess::Write), image + ": partition 1 lies on the partition table");
}

// A volume in a condition in which Windows must not find it changed is read, and neither changed nor a reason
// to leave the rest of the disk alone.
class WrongConditionTest : public ImageRefusalTest {
  protected:
    void KeepBefore() { OutputOf("cp --sparse=always '" + image_ + "' '" + Before() + "'"); }
    std::string Before() { return (Folder() / "before").string(); }
    void MarkDirty(int startMiB, int sizeMiB) {
        const std::string partition = PartitionFile(image_, startMiB, sizeMiB);
        OutputOf("ntfsfix '" + partition + "'");
        PutPartition(partition, image_, startMiB);
    }

    // Tries to make and to delete a file of that partition, with another change of the disk beside it.
    void ExpectBarred(size_t partition, const ImageUse& use, const std::string& message) {
        SCOPED_TRACE(message);
        {
            Disk disk = Attach(image_, use);
            FileStore& files = *disk.partitions[partition].volume->store;
            EXPECT_EQ(files.Remove("no such file"), 2u);
            EXPECT_EQ(disk.medium->WhyBarred(), "");
            EXPECT_EQ(files.Write("SystemVolume.ini", "x"), 19u);
            EXPECT_EQ(disk.medium->WhyBarred(), image_ + ": " + message);
            const bool isDryRun = use.access == ImageAccess::Overlay;
            EXPECT_EQ(disk.medium->Commit(), isDryRun ? "" : image_ + ": " + message);
        }
        EXPECT_TRUE(AreSame(Before(), image_));
    }

    const std::string image_ = FactoryMbrImage();
};

// ntfsfix leaves the volume marked dirty, so that Windows checks it.
TEST_F(WrongConditionTest, DirtyVolume_Write_IsBarred) {
    MarkDirty(181, 90);
    KeepBefore();
    const std::string message =
        "partition 3 \"Data\" is marked dirty: start Windows, let chkdsk check it, shut down, and try again";

    ExpectBarred(2, ImageAccess::Write, message);
    ExpectBarred(2, ImageAccess::Overlay, message);
    EXPECT_EQ(Attach(image_, ImageAccess::Read).partitions[2].volume->store->Find(""), FileKind::Folder);
}

TEST_F(WrongConditionTest, DirtyVolume_WriteByForce_IsDoneAndStaysDirty) {
    MarkDirty(181, 90);
    {
        ImageUse use(ImageAccess::Write);
        use.forceDirty = true;
        Disk disk = Attach(image_, use);
        EXPECT_EQ(disk.partitions[2].volume->store->Write("note", "x"), 0u);
        EXPECT_EQ(disk.medium->Commit(), "");
    }
    const std::string partition = PartitionFile(image_, 181, 90);
    EXPECT_EQ(OutputOf("ntfscat --force '" + partition + "' note 2>/dev/null"), "x");
    EXPECT_THAT(OutputOf("ntfsinfo --mft --force '" + partition + "'"),
                testing::HasSubstr("Volume Flags: 0x0001 DIRTY"));
}

TEST_F(WrongConditionTest, AnotherVolume_Write_IsDone) {
    MarkDirty(181, 90);
    {
        Disk disk = Attach(image_, ImageAccess::Write);
        EXPECT_EQ(disk.partitions[1].volume->store->Write("note", "x"), 0u);
        EXPECT_EQ(disk.medium->Commit(), "");
    }
    EXPECT_EQ(OutputOf("ntfscat '" + PartitionFile(image_, 61, 120) + "' note"), "x");
}

// The first page of a journal that a system has open: its restart area names a client, and is not marked
// clean.
std::string OpenJournalPage(uint64_t journalSize) {
    std::string page(4096, '\0');
    const auto put = [&](size_t at, uint64_t value, size_t bytes) {
        for (size_t index = 0; index < bytes; ++index)
            page[at + index] = static_cast<char>(value >> (8 * index));
    };
    constexpr size_t area = 0x30;
    page.replace(0, 4, "RSTR");
    put(0x04, 0x1E, 2);  // update sequence: its place, and its number with one for each sector
    put(0x06, 9, 2);
    put(0x10, 4096, 4);  // pages of the system and of the journal
    put(0x14, 4096, 4);
    put(0x18, area, 2);
    put(0x1A, 1, 2);  // version 1.1
    put(0x1C, 1, 2);
    put(0x1E, 1, 2);
    for (size_t sector = 512; sector <= page.size(); sector += 512)
        put(sector - 2, 1, 2);
    put(area + 0x08, 1, 2);       // clients
    put(area + 0x0A, 0xFFFF, 2);  // none of them free,
    put(area + 0x0C, 0, 2);       // the first in use
    put(area + 0x10, static_cast<uint64_t>(67 - std::bit_width(journalSize)), 4);
    put(area + 0x14, 0x30 + 160, 2);  // length, with the client
    put(area + 0x16, 0x30, 2);
    put(area + 0x18, journalSize, 8);
    put(area + 0x24, 0x30, 2);
    put(area + 0x26, 0x40, 2);
    put(area + 0x30 + 0x10, 0xFFFFFFFF, 4);  // the client: no one before or behind it
    put(area + 0x30 + 0x1C, 8, 4);           // its name
    for (size_t letter = 0; letter < 4; ++letter)
        put(area + 0x30 + 0x20 + 2 * letter, static_cast<uint8_t>("NTFS"[letter]), 2);
    return page;
}

TEST_F(WrongConditionTest, UnreplayedVolume_Write_IsBarredEvenByForce) {
    const std::string partition = PartitionFile(image_, 181, 90);
    // A journal that was never used holds nothing but 0xFF.
    std::string volume = ContentOf(partition);
    const size_t journal = volume.find(std::string(4096, '\xFF'));
    const size_t end = volume.find_first_not_of('\xFF', journal);
    ASSERT_NE(end, std::string::npos);
    const std::string page = OpenJournalPage(end - journal);
    volume.replace(journal, page.size(), page).replace(journal + page.size(), page.size(), page);
    PutPartition(File("volume", volume), image_, 181);
    KeepBefore();
    ImageUse force(ImageAccess::Write);
    force.forceDirty = true;
    const std::string message =
        "partition 3 \"Data\" is inconsistent, because it was not shut down: start Windows, shut it down "
        "completely (shutdown /s /t 0), and try again";

    ExpectBarred(2, ImageAccess::Write, message);
    ExpectBarred(2, force, message);
}

TEST_F(WrongConditionTest, HibernatedVolume_Write_IsBarredEvenByForce) {
    const std::string partition = PartitionFile(image_, 61, 120);
    const std::string hibernation = File("hibernation", "hibr" + std::string(8192, '\0'));
    OutputOf("ntfscp --quiet --force '" + partition + "' '" + hibernation + "' hiberfil.sys 2>&1");
    PutPartition(partition, image_, 61);
    KeepBefore();
    ImageUse force(ImageAccess::Write);
    force.forceDirty = true;
    const std::string message =
        "partition 2 \"Windows\" is hibernated: start Windows, shut it down completely (shutdown /s /t 0), "
        "and try again";

    ExpectBarred(1, ImageAccess::Write, message);
    ExpectBarred(1, ImageAccess::Overlay, message);
    ExpectBarred(1, force, message);
    EXPECT_EQ(Attach(image_, ImageAccess::Read).partitions[1].volume->store->Find("hiberfil.sys"),
              FileKind::File);
}

// The offset of a record in the master file table of partition 2, "Windows".
uint64_t RecordPlace(const std::string& image, uint64_t number) {
    const std::string cluster =
        OutputOf("od -An -tu8 -j " + std::to_string(61 * MiB + 0x30) + " -N 8 '" + image + "'");
    return 61 * MiB + std::stoull(cluster) * 4096 + number * 1024;
}

TEST_F(WrongConditionTest, DamagedVolume_Write_IsBarred) {
    const uint64_t bitmap = RecordPlace(image_, 6);
    ASSERT_EQ(ByteAt(image_, bitmap), 'F');
    PatchByte(image_, bitmap, 'X');

    {
        Disk disk = Attach(image_, ImageAccess::Write);
        EXPECT_EQ(disk.partitions[1].volume->store->Write("note", "x"), 1392u);
        EXPECT_EQ(disk.medium->WhyBarred(),
                  image_ +
                      ": partition 2 \"Windows\" is damaged: let chkdsk repair it on a running Windows, "
                      "and try again");
    }
    const Disk disk = Attach(image_, ImageAccess::Read);
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
