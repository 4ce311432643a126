#include "machine/media/device/file_device.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "machine/media/device/image_access.h"
#include "machine/media/device/in_use.h"
#include "machine/media/device/transfer.h"

namespace machine {

namespace {

std::string OpenProblem(int error, bool forWriting) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return "no such file";
        case EISDIR:
            return "a folder, not a disk image";
        case ENOMEDIUM:
            return "there is no medium in it";
        case EROFS:
            return "on a read-only medium";
        case EACCES:
        case EPERM:
            return forWriting ? "no permission to write to it" : "no permission to read it";
        default:
            return std::string("cannot be opened: ") + std::strerror(error);
    }
}

}  // namespace

Descriptor OpenImage(const std::string& path, bool forWriting) {
    // Non-blocking, because opening a named pipe would wait for its other end.
    Descriptor opened(open(path.c_str(), (forWriting ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK));
    if (!opened) throw ImageError(path + ": " + OpenProblem(errno, forWriting));
    return opened;
}

FileDevice::FileDevice(const std::string& path, bool forWriting, uint64_t bytesAfterDisk) {
    // Whether others have it open for writing shows only before this program has.
    if (forWriting) RefuseIfInUse(OpenImage(path, false).Number(), path);
    descriptor_ = OpenImage(path, forWriting);
    Check(path, bytesAfterDisk);
    if (forWriting) LockForWriting(descriptor_.Number(), path);
}

void FileDevice::Check(const std::string& path, uint64_t bytesAfterDisk) {
    struct stat status = {};
    if (fstat(descriptor_.Number(), &status) != 0) throw ImageError(path + ": " + OpenProblem(errno, false));
    if (S_ISDIR(status.st_mode)) throw ImageError(path + ": " + OpenProblem(EISDIR, false));
    if (!S_ISREG(status.st_mode)) throw ImageError(path + ": not a regular file");
    size_ = static_cast<uint64_t>(status.st_size) - bytesAfterDisk;
    if (size_ == 0) throw ImageError(path + ": an empty file, no disk image");
    isWhole_ = size_ % diskSectorSize == 0;
    size_ -= size_ % diskSectorSize;
    if (size_ == 0) throw ImageError(path + ": " + Flaw());
}

std::string FileDevice::Flaw() const {
    return isWhole_ ? "" : "not a whole number of 512-byte sectors, so no disk image, or a truncated one";
}

bool FileDevice::Read(uint64_t offset, void* buffer, size_t length) const {
    return IsInside(offset, length) &&
           Through(pread, descriptor_.Number(), offset, static_cast<uint8_t*>(buffer), length);
}

bool FileDevice::Write(uint64_t offset, const void* bytes, size_t length) {
    return IsInside(offset, length) &&
           Through(pwrite, descriptor_.Number(), offset, static_cast<const uint8_t*>(bytes), length);
}

bool FileDevice::Flush() {
    return fsync(descriptor_.Number()) == 0;
}

}  // namespace machine
