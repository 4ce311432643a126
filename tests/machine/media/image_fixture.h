// Factory disks as image files, made once for a build, and the independent tools that look at them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "machine/media/disk_image.h"
#include "tests/support/shell/shell.h"

namespace machine {

inline constexpr uint64_t MiB = 1024ULL * 1024;

class ImageTest : public testing::Test {
  protected:
    // A copy of the disk that tests/images/make-factory-mbr makes, for this test alone.
    std::string FactoryMbrImage(const std::string& name = "mbr.img");
    std::string FactoryGptImage(const std::string& name = "gpt.img");
    // A copy of any other image that is made for the tests: "disc-udf.iso".
    std::string MadeImage(const std::string& name) { return CopyOf(name, name); }
    // An image of that many MiB with a table in the words of sfdisk.
    std::string PartitionedImage(int sizeMiB, const std::string& script);
    // Where this test may put files; gone with the test.
    const std::filesystem::path& Folder();

    // The partition of a factory image cut out into a file, so that tools without offsets can look at it.
    std::string PartitionFile(const std::string& image, int startMiB, int sizeMiB);
    // Puts it back.
    void PutPartition(const std::string& partitionFile, const std::string& image, int startMiB);

    void TearDown() override;

  private:
    std::string CopyOf(const std::string& made, const std::string& name);
    std::filesystem::path folder_;
};

// Whether the files hold the same bytes, in the words of cmp(1).
bool AreSame(const std::string& left, const std::string& right);
// The number of bytes that differ.
int Differences(const std::string& left, const std::string& right);

// What the file holds.
std::string ContentOf(const std::string& file);
void PatchByte(const std::string& file, uint64_t offset, uint8_t value);
uint8_t ByteAt(const std::string& file, uint64_t offset);

// What AttachImage says about the file; empty when it takes it.
std::string Complaint(const std::string& image, ImageAccess access = ImageAccess::Read);

// The disk of the image.
Disk Attach(const std::string& image, ImageAccess access = ImageAccess::Read);

}  // namespace machine
