#include "tests/support/shell/sparse_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "tests/support/shell/shell.h"

namespace {

class SparseFile {
  public:
    explicit SparseFile(const std::filesystem::path& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        EXPECT_GE(file_, 0) << path;
    }
    ~SparseFile() { close(file_); }
    SparseFile(const SparseFile&) = delete;
    SparseFile& operator=(const SparseFile&) = delete;

    off_t Size() const { return lseek(file_, 0, SEEK_END); }

    // Where the next data is, the size if there is none.
    off_t NextData(off_t from) const {
        const off_t data = lseek(file_, from, SEEK_DATA);
        return data < 0 ? Size() : data;
    }

    // Zeros behind the end.
    void Read(off_t from, std::string& block) const {
        const ssize_t length = pread(file_, block.data(), block.size(), from);
        std::fill(block.begin() + std::max<ssize_t>(length, 0), block.end(), '\0');
    }

  private:
    int file_;
};

}  // namespace

void CopySparse(const std::filesystem::path& from, const std::filesystem::path& to) {
    OutputOf("cp --sparse=always '" + from.string() + "' '" + to.string() + "'");
}

uint64_t Differences(const std::filesystem::path& left, const std::filesystem::path& right) {
    constexpr size_t blockSize = size_t{1} << 16;
    const SparseFile one(left);
    const SparseFile other(right);
    const off_t size = std::min(one.Size(), other.Size());
    uint64_t count = static_cast<uint64_t>(std::max(one.Size(), other.Size()) - size);
    std::string oneBlock(blockSize, '\0');
    std::string otherBlock(blockSize, '\0');
    for (off_t at = 0; (at = std::min(one.NextData(at), other.NextData(at))) < size;) {
        const auto length = static_cast<size_t>(std::min<off_t>(blockSize, size - at));
        one.Read(at, oneBlock);
        other.Read(at, otherBlock);
        if (oneBlock != otherBlock)
            for (size_t i = 0; i < length; ++i)
                count += oneBlock[i] != otherBlock[i];
        at += static_cast<off_t>(length);
    }
    return count;
}
