#include "machine/facts/volume_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "platform/windows_api.h"

using machine::FileKind;
using machine::Pc;
using machine::VolumeFiles;

namespace {

// An image opened for reading only, with one file "data/on image.txt".
class ReadOnlyStore final : public machine::VolumeStore {
  public:
    FileKind Find(std::string_view path) override {
        if (path.empty() || path == "data") return FileKind::Folder;
        return path == "data/on image.txt" ? FileKind::File : FileKind::None;
    }
    uint32_t Read(std::string_view, std::string& content) override {
        content = "from the image";
        return ERROR_SUCCESS;
    }
    uint32_t List(std::string_view, std::vector<machine::FileEntry>&) override { return ERROR_SUCCESS; }
    std::string WhyUnchangeable() override { return "is open for reading only"; }
    uint32_t Write(std::string_view, std::string_view) override { return ERROR_WRITE_PROTECT; }
    uint32_t Remove(std::string_view) override { return ERROR_WRITE_PROTECT; }
};

Pc PcWithDataFiles() {
    Pc pc = machine::FactoryMbr();
    machine::Volume& data = *pc.disks[0].partitions[2].volume;
    data.files = {{"Docs/Letter.txt", "Dear"}, {"Empty/", ""}};
    return pc;
}

uint32_t ErrorOfFind(Pc& pc, std::string_view path) {
    FileKind kind;
    return VolumeFiles(pc).Find(path, kind);
}

FileKind KindOf(Pc& pc, std::string_view path) {
    FileKind kind;
    VolumeFiles(pc).Find(path, kind);
    return kind;
}

std::string ContentOf(Pc& pc, std::string_view path) {
    std::string content;
    EXPECT_EQ(VolumeFiles(pc).Read(path, content), 0u) << path;
    return content;
}

}  // namespace

TEST(VolumeFiles, EverySpellingOfAPath_Find_ReturnsFileOrFolder) {
    Pc pc = PcWithDataFiles();
    for (const char* const path :
         {"D:\\Docs\\Letter.txt", "d:/docs/LETTER.TXT", "\\\\?\\D:\\Docs\\Letter.txt",
          "D:\\Empty\\..\\Docs\\.\\\\Letter.txt", "D:\\..\\Docs\\Letter.txt"}) {
        EXPECT_EQ(KindOf(pc, path), FileKind::File) << path;
    }
    for (const char* const path : {"D:", "D:\\", "D:\\Docs", "D:\\Docs\\", "D:\\Empty\\"})
        EXPECT_EQ(KindOf(pc, path), FileKind::Folder) << path;
}

TEST(VolumeFiles, MissingPath_Find_FailsWithItsError) {
    Pc pc = PcWithDataFiles();
    pc.disks[0].partitions[1].volume->fileSystem = "RAW";
    pc.host.path = "X:\\Recovery.exe";
    const struct {
        const char* path;
        uint32_t error;
    } rows[] = {
        {"D:\\missing.txt", ERROR_FILE_NOT_FOUND},
        {"D:\\Docs\\missing.txt", ERROR_FILE_NOT_FOUND},
        {"D:\\missing\\Letter.txt", ERROR_PATH_NOT_FOUND},
        {"D:\\Docs\\Letter.txt\\x", ERROR_PATH_NOT_FOUND},
        {"Q:", ERROR_PATH_NOT_FOUND},
        {"Q:\\x", ERROR_PATH_NOT_FOUND},
        {"C:\\", ERROR_UNRECOGNIZED_VOLUME},
        {"C:\\Windows", ERROR_UNRECOGNIZED_VOLUME},
        {"D:\\a?b", ERROR_INVALID_NAME},
        {"D:\\a:b", ERROR_INVALID_NAME},
        {"Letter.txt", ERROR_FILE_NOT_FOUND},
        {"", ERROR_PATH_NOT_FOUND},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ErrorOfFind(pc, row.path), row.error) << row.path;
        EXPECT_EQ(KindOf(pc, row.path), FileKind::None) << row.path;
    }
}

TEST(VolumeFiles, NewFile_Write_IsReadBack) {
    Pc pc = PcWithDataFiles();
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\Docs\\New.txt", "first"), 0u);
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\docs\\NEW.TXT", "second"), 0u);
    EXPECT_EQ(ContentOf(pc, "D:\\Docs\\New.txt"), "second");
    EXPECT_EQ(pc.disks[0].partitions[2].volume->files.Find("Docs/New.txt")->path, "Docs/New.txt");
}

TEST(VolumeFiles, MissingOrExistingFolder_Write_Fails) {
    Pc pc = PcWithDataFiles();
    const Pc before = pc;
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\new\\file", "x"), uint32_t{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\Docs", "x"), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(VolumeFiles(pc).Write("Q:\\file", "x"), uint32_t{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\a*", "x"), uint32_t{ERROR_INVALID_NAME});
    EXPECT_EQ(pc, before);
}

TEST(VolumeFiles, UnreadableVolume_Write_FailsWithTheVolumesError) {
    Pc pc = PcWithDataFiles();
    pc.disks[0].partitions[2].volume->fileSystem = "RAW";
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\file", "x"), uint32_t{ERROR_UNRECOGNIZED_VOLUME});
}

TEST(VolumeFiles, FileAndFolder_Remove_DeletesOnlyTheFile) {
    Pc pc = PcWithDataFiles();
    EXPECT_EQ(VolumeFiles(pc).Remove("D:\\Docs\\letter.txt"), 0u);
    EXPECT_EQ(VolumeFiles(pc).Remove("D:\\Docs\\letter.txt"), uint32_t{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(VolumeFiles(pc).Remove("D:\\Docs"), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(KindOf(pc, "D:\\Docs"), FileKind::Folder);
}

TEST(VolumeFiles, Folder_Read_FailsWithAccessDenied) {
    Pc pc = PcWithDataFiles();
    std::string content;
    EXPECT_EQ(VolumeFiles(pc).Read("D:\\Docs", content), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(VolumeFiles(pc).Read("D:\\none", content), uint32_t{ERROR_FILE_NOT_FOUND});
}

TEST(VolumeFiles, VolumeOnImage_Find_UsesTheImageNotTheFacts) {
    Pc pc = PcWithDataFiles();
    pc.disks[0].partitions[2].volume->store = std::make_shared<ReadOnlyStore>();
    EXPECT_EQ(ContentOf(pc, "D:\\data\\on image.txt"), "from the image");
    EXPECT_EQ(ErrorOfFind(pc, "D:\\Docs\\Letter.txt"), uint32_t{ERROR_PATH_NOT_FOUND});
}

TEST(VolumeFiles, ReadOnlyImage_WriteOrRemove_FailsWithWriteProtect) {
    Pc pc = PcWithDataFiles();
    pc.disks[0].partitions[2].volume->store = std::make_shared<ReadOnlyStore>();
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\data\\new.txt", "x"), uint32_t{ERROR_WRITE_PROTECT});
    EXPECT_EQ(VolumeFiles(pc).Remove("D:\\data\\on image.txt"), uint32_t{ERROR_WRITE_PROTECT});
}

TEST(VolumeFiles, HostOnMissingVolume_Find_ReturnsItsFolder) {
    Pc pc = PcWithDataFiles();
    pc.host.path = "R:\\Tools\\Recovery\\Recovery.exe";
    pc.host.files = {{"IDE.INI", "[OrderIndex]\r\n"}, {"Logs/", ""}};
    for (const char* const path : {"R:\\", "R:\\Tools", "r:\\tools\\recovery", "R:\\Tools\\Recovery\\Logs"})
        EXPECT_EQ(KindOf(pc, path), FileKind::Folder) << path;
    EXPECT_EQ(KindOf(pc, "R:\\Tools\\Recovery\\RECOVERY.EXE"), FileKind::File);
    EXPECT_EQ(ContentOf(pc, "R:\\tools\\recovery\\ide.ini"), "[OrderIndex]\r\n");
    EXPECT_EQ(ErrorOfFind(pc, "R:\\Tools\\Recovery\\none"), uint32_t{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(ErrorOfFind(pc, "R:\\Other\\none"), uint32_t{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(VolumeFiles(pc).Write("R:\\file", "x"), uint32_t{ERROR_PATH_NOT_FOUND});
}

TEST(VolumeFiles, SameFileOnVolume_Read_PrefersTheHostsFile) {
    Pc pc = PcWithDataFiles();
    pc.host.path = "D:\\Docs\\Recovery.exe";
    pc.host.files = {{"Letter.txt", "covers"}};
    EXPECT_EQ(ContentOf(pc, "D:\\Docs\\Letter.txt"), "covers");
    EXPECT_EQ(VolumeFiles(pc).Remove("D:\\Docs\\Letter.txt"), 0u);
    EXPECT_EQ(ContentOf(pc, "D:\\Docs\\Letter.txt"), "Dear");
    EXPECT_EQ(VolumeFiles(pc).Write("D:\\Docs\\Letter.txt", "Hello"), 0u);
    EXPECT_EQ(pc.disks[0].partitions[2].volume->files.Find("Docs/Letter.txt")->content, "Hello");
}

TEST(VolumeFiles, NewFileBesideTheHost_Write_JoinsTheHostsFiles) {
    Pc pc = PcWithDataFiles();
    pc.host.path = "X:\\Recovery\\Recovery.exe";
    EXPECT_EQ(VolumeFiles(pc).Write("X:\\Recovery\\IDE.INI", "[Exclude]\r\n"), 0u);
    EXPECT_EQ(pc.host.files.Find("IDE.INI")->content, "[Exclude]\r\n");
    EXPECT_EQ(ContentOf(pc, "X:\\Recovery\\IDE.INI"), "[Exclude]\r\n");
}

TEST(VolumeFiles, HostApplicationItself_ReadWriteRemove_FailsWithAccessDenied) {
    Pc pc = PcWithDataFiles();
    std::string content;
    EXPECT_EQ(VolumeFiles(pc).Read(pc.host.path, content), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(VolumeFiles(pc).Write(pc.host.path, "x"), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(VolumeFiles(pc).Remove(pc.host.path), uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_EQ(KindOf(pc, pc.host.path), FileKind::File);
}
