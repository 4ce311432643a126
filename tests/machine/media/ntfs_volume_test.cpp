// Files of an NTFS volume on an image, checked with the tools of ntfs-3g.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "machine/facts/file_store.h"
#include "machine/media/image/image_file.h"
#include "machine/media/image/volume_bytes.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* iniText = "[SystemVolume]\r\nActive=1\r\n";

class NtfsVolumeTest : public ImageTest {
  protected:
    // The store of partition 2, "Windows".
    FileStore& Open(ImageAccess access) {
        disk_ = Attach(image_, access);
        return *disk_.partitions[1].volume->store;
    }
    std::string Listing() { return OutputOf("ntfsls --force '" + Cut() + "'"); }
    std::string Content(const std::string& path) {
        return OutputOf("ntfscat --force '" + Cut() + "' '" + path + "'");
    }
    bool IsConsistent() { return StatusOf("ntfsfix --no-action '" + Cut() + "' >/dev/null") == 0; }
    // The partition as a file, with what was changed.
    std::string Cut() {
        if (disk_.medium) EXPECT_EQ(disk_.medium->Commit(), "");
        return PartitionFile(image_, 61, 120);
    }

    std::string original_ = FactoryMbrImage("original.img");
    std::string image_ = FactoryMbrImage("changed.img");
    Disk disk_;
};

// The offset of the text in the file, as UTF-16.
uint64_t FindWide(const std::string& file, const std::string& text) {
    const std::string bytes = ContentOf(file);
    std::string wide;
    for (const char character : text)
        wide += {character, '\0'};
    // The name is also in the folder's index; the record of the file begins with FILE.
    for (size_t at = bytes.find(wide); at != std::string::npos; at = bytes.find(wide, at + 1)) {
        const size_t record = at / 1024 * 1024;
        if (bytes.compare(record, 4, "FILE") == 0 && (bytes[record + 22] & 2) == 0) return record;
    }
    ADD_FAILURE() << text << " has no record in " << file;
    return 0;
}

TEST_F(NtfsVolumeTest, OtherCase_Find_ReturnsTheFile) {
    FileStore& store = Open(ImageAccess::Read);

    EXPECT_EQ(store.Find("Windows/System32/Winload.exe"), FileKind::File);
    EXPECT_EQ(store.Find("WINDOWS\\system32\\WINLOAD.EXE"), FileKind::File);
    EXPECT_EQ(store.Find("\\windows\\SYSTEM32\\"), FileKind::Folder);
    EXPECT_EQ(store.Find(""), FileKind::Folder);
    EXPECT_EQ(store.Find("\\"), FileKind::Folder);
    EXPECT_EQ(store.Find("Windows/Winload.exe"), FileKind::None);
    EXPECT_EQ(store.Find("Windows/System32/Winload.exe/x"), FileKind::None);
    EXPECT_EQ(store.Find(std::string(300, 'x')), FileKind::None);
    EXPECT_EQ(store.Find("\xFF\xFE"), FileKind::None);
}

TEST_F(NtfsVolumeTest, AnyFile_Read_LeavesTheImageUnchanged) {
    std::string content;
    EXPECT_EQ(Open(ImageAccess::Read).Read("WINDOWS/system32/winload.exe", content), 0u);
    EXPECT_EQ(content, "MZ");
    disk_ = Disk();

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, FolderOrMissingFile_Read_FailsWithItsError) {
    FileStore& store = Open(ImageAccess::Read);
    std::string content = "untouched";

    EXPECT_EQ(store.Read("nope.txt", content), 2u);
    EXPECT_EQ(store.Read("nope/nope.txt", content), 2u);
    EXPECT_EQ(store.Read("Windows", content), 5u);
    EXPECT_EQ(store.Read("$MFT", content), 5u);
    EXPECT_EQ(content, "untouched");
}

TEST_F(NtfsVolumeTest, FileLongerThanReadReturns_ReadParts_PassesAllOfItOn) {
    const uint64_t length = longestFile + 1000001;
    const std::string volume = image_ + ".ntfs";
    ASSERT_EQ(StatusOf("truncate -s 280M '" + volume + "' && mkntfs --fast --force --quiet '" + volume +
                       "' 2>/dev/null && printf MSWIM >'" + volume + ".start' && ntfscp --force '" + volume +
                       "' '" + volume + ".start' big.wim && ntfstruncate -f -q '" + volume + "' 64 0x80 " +
                       std::to_string(length)),
              0);
    const auto image = std::make_shared<ImageFile>(volume, ImageUse(ImageAccess::Read));
    NtfsVolume store(image, 0, image->Size());
    std::string content;
    std::string start;
    uint64_t bytes = 0;

    EXPECT_EQ(store.Read("big.wim", content), 1392u);
    EXPECT_EQ(store.ReadParts("big.wim",
                              [&](std::string_view part) {
                                  if (bytes == 0) start = part.substr(0, 6);
                                  bytes += part.size();
                              }),
              0u);

    EXPECT_EQ(bytes, length);
    EXPECT_EQ(start, std::string("MSWIM\0", 6));
    std::vector<FileEntry> entries;
    EXPECT_EQ(store.List("", entries), 0u);
    EXPECT_EQ(entries, (std::vector<FileEntry>{{"big.wim", FileKind::File, length}}));
}

TEST_F(NtfsVolumeTest, ReadOnlyImage_WriteAndRemove_FailWithWriteProtect) {
    FileStore& store = Open(ImageAccess::Read);

    EXPECT_EQ(store.Write("new.txt", "x"), 19u);
    EXPECT_EQ(store.Remove("Windows/System32/Winload.exe"), 19u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, CleanVolume_OpenForWriting_ChangesNothing) {
    EXPECT_EQ(Open(ImageAccess::Write).Find("Users"), FileKind::Folder);
    disk_ = Disk();

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, NewFile_WriteAndCommit_IsOnTheMedium) {
    FileStore& store = Open(ImageAccess::Write);

    EXPECT_EQ(store.Write("SystemVolume.ini", iniText), 0u);
    EXPECT_TRUE(AreSame(original_, image_)) << "before the commit";

    // The image is still open: the changes are visible to other tools before it is closed.
    EXPECT_EQ(Content("SystemVolume.ini"), iniText);
    EXPECT_THAT(Listing(), HasSubstr("SystemVolume.ini"));
    EXPECT_TRUE(IsConsistent());
}

TEST_F(NtfsVolumeTest, ExistingFile_Write_KeepsTheNameAndReplacesTheContent) {
    FileStore& store = Open(ImageAccess::Write);
    const std::string large(100'000, 'L');

    EXPECT_EQ(store.Write("Users/Note.txt", "small"), 0u);
    EXPECT_EQ(store.Write("USERS\\NOTE.TXT", large), 0u);
    EXPECT_EQ(Content("Users/Note.txt"), large);
    EXPECT_EQ(store.Write("users/note.txt", ""), 0u);
    EXPECT_EQ(Content("Users/Note.txt"), "");

    std::string content = "x";
    EXPECT_EQ(store.Read("Users/Note.txt", content), 0u);
    EXPECT_EQ(content, "");
    EXPECT_THAT(OutputOf("ntfsls --force --path Users '" + Cut() + "'"), HasSubstr("Note.txt"));
    EXPECT_TRUE(IsConsistent());
}

TEST_F(NtfsVolumeTest, UnicodeName_Write_IsStoredAsUnicode) {
    FileStore& store = Open(ImageAccess::Write);

    EXPECT_EQ(store.Write("Übung Ω.txt", "x"), 0u);

    EXPECT_EQ(store.Find("übung ω.TXT"), FileKind::File);
    EXPECT_THAT(OutputOf("LC_ALL=C.UTF-8 ntfsls --force '" + Cut() + "'"), HasSubstr("Übung Ω.txt"));
}

TEST_F(NtfsVolumeTest, PathThatWindowsRefuses_Write_FailsWithItsError) {
    FileStore& store = Open(ImageAccess::Write);

    EXPECT_EQ(store.Write("nope/new.txt", "x"), 3u);
    EXPECT_EQ(store.Write("Windows/System32/Winload.exe/new.txt", "x"), 3u);
    EXPECT_EQ(store.Write("Windows", "x"), 5u);
    EXPECT_EQ(store.Write("", "x"), 5u);
    EXPECT_EQ(store.Write("$MFT", "x"), 5u);
    EXPECT_EQ(store.Write("$Extend/new.txt", "x"), 5u);
    EXPECT_EQ(store.Write("what?.txt", "x"), 123u);
    EXPECT_EQ(store.Write("stream.txt:second", "x"), 123u);
    EXPECT_EQ(store.Write(std::string(256, 'x'), "x"), 123u);

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, ExistingFile_Remove_DeletesItFromTheMedium) {
    FileStore& store = Open(ImageAccess::Write);
    EXPECT_EQ(store.Write("SystemVolume.ini", iniText), 0u);

    EXPECT_EQ(store.Remove("SYSTEMVOLUME.INI"), 0u);

    EXPECT_THAT(Listing(), Not(HasSubstr("SystemVolume.ini")));
    EXPECT_TRUE(IsConsistent());
    EXPECT_EQ(store.Remove("SystemVolume.ini"), 2u);
}

TEST_F(NtfsVolumeTest, FolderOrSystemFile_Remove_Fails) {
    FileStore& store = Open(ImageAccess::Write);

    EXPECT_EQ(store.Remove("nope.txt"), 2u);
    EXPECT_EQ(store.Remove("Users"), 5u);
    EXPECT_EQ(store.Remove(""), 5u);
    EXPECT_EQ(store.Remove("$Bitmap"), 5u);
    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, ReadOnlyFile_WriteAndRemove_Fail) {
    // The attribute is in the standard information of the file's record.
    const std::string partition = Cut();
    PatchByte(partition, FindWide(partition, "Winload.exe") + 0x70, 0x01);
    PutPartition(partition, image_, 61);
    FileStore& store = Open(ImageAccess::Write);

    EXPECT_EQ(store.Write("Windows/System32/Winload.exe", "x"), 5u);
    EXPECT_EQ(store.Remove("Windows/System32/Winload.exe"), 5u);
    EXPECT_EQ(Content("Windows/System32/Winload.exe"), "MZ");
}

TEST_F(NtfsVolumeTest, FullVolume_Write_FailsAndKeepsTheOldContent) {
    FileStore& store = Open(ImageAccess::Write);
    EXPECT_EQ(store.Write("Note.txt", "kept"), 0u);
    const std::string tooMuch(130 * MiB, 'L');

    EXPECT_EQ(store.Write("Note.txt", tooMuch), 112u);
    EXPECT_EQ(store.Write("New.txt", tooMuch), 112u);

    EXPECT_EQ(Content("Note.txt"), "kept");
    EXPECT_EQ(store.Find("New.txt"), FileKind::None);
    EXPECT_TRUE(IsConsistent());
}

TEST_F(NtfsVolumeTest, DryRun_Write_IsReadBackAndWritesNothing) {
    FileStore& store = Open(ImageAccess::Overlay);
    std::string content;

    EXPECT_EQ(store.Write("SystemVolume.ini", iniText), 0u);
    EXPECT_EQ(store.Read("systemvolume.ini", content), 0u);
    EXPECT_EQ(content, iniText);
    EXPECT_EQ(store.Write("Big.txt", std::string(1'000'000, 'B')), 0u);
    EXPECT_EQ(store.Remove("Windows/System32/Winload.exe"), 0u);
    EXPECT_EQ(store.Find("Windows/System32/Winload.exe"), FileKind::None);
    disk_ = Disk();

    EXPECT_TRUE(AreSame(original_, image_));
}

TEST_F(NtfsVolumeTest, ManyFiles_WriteAndRemove_LeaveAConsistentVolume) {
    FileStore& store = Open(ImageAccess::Write);

    for (int i = 0; i < 60; ++i)
        ASSERT_EQ(
            store.Write("Users/File" + std::to_string(i), std::string(static_cast<size_t>(i * 40), 'x')), 0u);
    for (int i = 0; i < 60; i += 2)
        ASSERT_EQ(store.Remove("Users/FILE" + std::to_string(i)), 0u);

    EXPECT_TRUE(IsConsistent());
    EXPECT_EQ(Content("Users/File59"), std::string(59 * 40, 'x'));
    EXPECT_EQ(store.Find("Users/File58"), FileKind::None);
}

}  // namespace
}  // namespace machine
