#include "tests/machine/media/image_fixture.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace machine {

namespace {

namespace fs = std::filesystem;

fs::path NewFolder() {
    std::string name = (fs::temp_directory_path() / "kestova-images-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no folder for test images");
    return name;
}

}  // namespace

void ImageTest::TearDown() {
    if (!folder_.empty()) fs::remove_all(folder_);
}

const fs::path& ImageTest::Folder() {
    if (folder_.empty()) folder_ = NewFolder();
    return folder_;
}

std::string ImageTest::CopyOf(const std::string& made, const std::string& name) {
    std::string copy = (Folder() / name).string();
    CopySparse(std::string(KESTOVA_TEST_IMAGES) + "/" + made, copy);
    return copy;
}

std::string ImageTest::FactoryMbrImage(const std::string& name) {
    return CopyOf("factory-mbr.img", name);
}

std::string ImageTest::FactoryGptImage(const std::string& name) {
    return CopyOf("factory-gpt.img", name);
}

std::string ImageTest::PartitionedImage(int sizeMiB, const std::string& script) {
    std::string image = (Folder() / "partitioned.img").string();
    OutputOf("truncate -s " + std::to_string(sizeMiB) + "M '" + image + "'");
    OutputOf("printf '" + script + "' | sfdisk --quiet '" + image + "'");
    return image;
}

std::string ImageTest::PartitionFile(const std::string& image, int startMiB, int sizeMiB) {
    std::string file = (Folder() / ("partition-at-" + std::to_string(startMiB))).string();
    fs::remove(file);
    OutputOf("dd if='" + image + "' of='" + file + "' bs=1M skip=" + std::to_string(startMiB) +
             " count=" + std::to_string(sizeMiB) + " conv=sparse status=none");
    return file;
}

void ImageTest::PutPartition(const std::string& partitionFile, const std::string& image, int startMiB) {
    OutputOf("dd if='" + partitionFile + "' of='" + image + "' bs=1M seek=" + std::to_string(startMiB) +
             " conv=notrunc status=none");
}

std::string ContentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string content(static_cast<size_t>(fs::file_size(file)), '\0');
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    return content;
}

void PatchByte(const std::string& file, uint64_t offset, uint8_t value) {
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(static_cast<std::streamoff>(offset));
    stream.put(static_cast<char>(value));
    stream.close();
    ASSERT_TRUE(stream.good()) << file;
}

uint8_t ByteAt(const std::string& file, uint64_t offset) {
    std::ifstream stream(file, std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(offset));
    return static_cast<uint8_t>(stream.get());
}

std::string Complaint(const std::string& image, ImageAccess access) {
    try {
        Attach(image, access);
    } catch (const ImageError& error) {
        return error.what();
    }
    return "";
}

void ExpectFilesOfAStick(FileStore& volume) {
    EXPECT_EQ(volume.Find("sources/Qelhdrcv.ini"), FileKind::File);
    EXPECT_EQ(volume.Find("\\SOURCES\\qelhdrcv.INI"), FileKind::File);
    EXPECT_EQ(volume.Find("sources/ORVO/"), FileKind::Folder);
    EXPECT_EQ(volume.Find("SOURCES/IMAGE OF THE FACTORY STATE.WIM"), FileKind::File);
    EXPECT_EQ(volume.Find(""), FileKind::Folder);
    EXPECT_EQ(volume.Find("sources/DVD"), FileKind::None);
    EXPECT_EQ(volume.Find("sources/UFD/below"), FileKind::None);
}

Disk Attach(const std::string& image, const ImageUse& use) {
    Disk disk;
    disk.image = image;
    AttachImage(disk, use);
    return disk;
}

std::vector<uint32_t> NumbersOf(const Disk& disk) {
    std::vector<uint32_t> numbers;
    for (const Partition& partition : disk.partitions)
        numbers.push_back(partition.number);
    return numbers;
}

}  // namespace machine
