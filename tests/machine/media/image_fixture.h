// Factory disks as image files, created once per build, and independent tools that inspect them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "machine/media/disk_image.h"
#include "tests/support/shell/shell.h"
#include "tests/support/shell/sparse_file.h"

namespace machine {

inline constexpr uint64_t MiB = 1024ULL * 1024;

class ImageTest : public testing::Test {
  protected:
    // A copy of the disk from tests/images/make-factory-mbr, for this test only.
    std::string FactoryMbrImage(const std::string& name = "mbr.img");
    std::string FactoryGptImage(const std::string& name = "gpt.img");
    // A copy of any other test image, by name: "disc-udf.iso".
    std::string MadeImage(const std::string& name) { return CopyOf(name, name); }
    // An image of that many MiB with a table in sfdisk's script format.
    std::string PartitionedImage(int sizeMiB, const std::string& script);
    // The temporary folder of this test.
    const std::filesystem::path& Folder();

    // Extracts a partition of a factory image into a file, for tools that do not support offsets.
    std::string PartitionFile(const std::string& image, int startMiB, int sizeMiB);
    // Copies it back.
    void PutPartition(const std::string& partitionFile, const std::string& image, int startMiB);

    void TearDown() override;

  private:
    std::string CopyOf(const std::string& made, const std::string& name);
    std::filesystem::path folder_;
};

// The content of the file.
std::string ContentOf(const std::string& file);
void PatchByte(const std::string& file, uint64_t offset, uint8_t value);
uint8_t ByteAt(const std::string& file, uint64_t offset);

// The error of AttachImage for the file; empty on success.
std::string Complaint(const std::string& image, ImageAccess access = ImageAccess::Read);

// Looks for files and folders of the recovery sticks among the test images, in other case too.
void ExpectFilesOfAStick(FileStore& volume);

// The disk of the image.
Disk Attach(const std::string& image, const ImageUse& use = ImageAccess::Read);

// In the order of the disk's list.
std::vector<uint32_t> NumbersOf(const Disk& disk);

}  // namespace machine
