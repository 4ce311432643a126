#include "machine/media/device/image_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace machine {

namespace {

constexpr uint64_t sectorSize = 512;

std::string OpenProblem(int error, ImageAccess access) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return "no such file";
        case EISDIR:
            return "a folder, not a disk image";
        case EACCES:
        case EPERM:
        case EROFS:
            return access == ImageAccess::Write ? "no permission to write to it" : "no permission to read it";
        default:
            return std::string("cannot be opened: ") + std::strerror(error);
    }
}

}  // namespace

ImageFile::ImageFile(const std::string& path, ImageAccess access) : path_(path), access_(access) {
    // Non-blocking, because opening a named pipe would wait for its other end.
    const int mode = access == ImageAccess::Write ? O_RDWR : O_RDONLY;
    descriptor_ = open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK);
    if (descriptor_ < 0) throw Error(OpenProblem(errno, access));
    try {
        struct stat status = {};
        if (fstat(descriptor_, &status) != 0) throw Error(OpenProblem(errno, access));
        if (S_ISDIR(status.st_mode)) throw Error(OpenProblem(EISDIR, access));
        if (!S_ISREG(status.st_mode)) throw Error("not a regular file");
        size_ = static_cast<uint64_t>(status.st_size);
        if (size_ == 0) throw Error("an empty file, no disk image");
        if (size_ % sectorSize != 0)
            throw Error("not a whole number of 512-byte sectors, so no disk image, or a truncated one");
        if (access == ImageAccess::Write) Lock();
    } catch (...) {
        close(descriptor_);
        throw;
    }
}

ImageFile::~ImageFile() {
    close(descriptor_);
}

void ImageFile::Lock() {
    if (flock(descriptor_, LOCK_EX | LOCK_NB) == 0) return;
    if (errno == EWOULDBLOCK) throw Error("in use: another program has opened it for writing");
    throw Error(std::string("cannot be locked: ") + std::strerror(errno));
}

bool ImageFile::Read(uint64_t offset, void* buffer, size_t length) const {
    if (!ReadFile(offset, buffer, length)) return false;
    if (length == 0) return true;
    // Overlay the changed blocks of the range on the bytes of the file.
    auto* bytes = static_cast<uint8_t*>(buffer);
    const uint64_t end = offset + length;
    for (auto block = overlay_.lower_bound(offset / blockSize);
         block != overlay_.end() && block->first * blockSize < end; ++block) {
        const uint64_t blockStart = block->first * blockSize;
        const uint64_t from = std::max(offset, blockStart);
        const uint64_t to = std::min(end, blockStart + blockSize);
        std::memcpy(bytes + (from - offset), block->second.data() + (from - blockStart), to - from);
    }
    return true;
}

bool ImageFile::Write(uint64_t offset, const void* bytes, size_t length) {
    switch (access_) {
        case ImageAccess::Write:
            return WriteFile(offset, bytes, length);
        case ImageAccess::Overlay:
            return WriteOverlay(offset, static_cast<const uint8_t*>(bytes), length);
        case ImageAccess::Read:
            break;
    }
    return false;
}

bool ImageFile::Flush() {
    return access_ != ImageAccess::Write || fsync(descriptor_) == 0;
}

ImageError ImageFile::Error(const std::string& whatIsWrong) const {
    return ImageError(path_ + ": " + whatIsWrong);
}

bool ImageFile::IsInside(uint64_t offset, size_t length) const {
    return offset <= size_ && length <= size_ - offset;
}

bool ImageFile::ReadFile(uint64_t offset, void* buffer, size_t length) const {
    if (!IsInside(offset, length)) return false;
    auto* bytes = static_cast<uint8_t*>(buffer);
    while (length > 0) {
        const ssize_t done = pread(descriptor_, bytes, length, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        bytes += done;
        offset += static_cast<uint64_t>(done);
        length -= static_cast<size_t>(done);
    }
    return true;
}

bool ImageFile::WriteFile(uint64_t offset, const void* bytes, size_t length) {
    if (!IsInside(offset, length)) return false;
    auto* rest = static_cast<const uint8_t*>(bytes);
    while (length > 0) {
        const ssize_t done = pwrite(descriptor_, rest, length, static_cast<off_t>(offset));
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        rest += done;
        offset += static_cast<uint64_t>(done);
        length -= static_cast<size_t>(done);
    }
    return true;
}

bool ImageFile::WriteOverlay(uint64_t offset, const uint8_t* bytes, size_t length) {
    if (!IsInside(offset, length)) return false;
    while (length > 0) {
        const uint64_t number = offset / blockSize;
        const size_t within = static_cast<size_t>(offset % blockSize);
        const size_t count = std::min(length, blockSize - within);
        auto [block, isNew] = overlay_.try_emplace(number);
        if (isNew) {
            const uint64_t start = number * blockSize;
            const size_t present = static_cast<size_t>(std::min<uint64_t>(blockSize, size_ - start));
            if (!ReadFile(start, block->second.data(), present)) {
                overlay_.erase(block);
                return false;
            }
        }
        std::memcpy(block->second.data() + within, bytes, count);
        bytes += count;
        offset += count;
        length -= count;
    }
    return true;
}

}  // namespace machine
