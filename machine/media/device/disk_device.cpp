#include "machine/media/device/disk_device.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "machine/media/device/disk_user.h"
#include "machine/media/device/file_device.h"
#include "machine/media/device/image_access.h"
#include "machine/media/device/in_use.h"
#include "machine/media/device/transfer.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

dev_t NumbersOf(int descriptor) {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? status.st_rdev : 0;
}

void RefusePartition(int descriptor, const std::string& path) {
    std::error_code error;
    const fs::path folder = fs::canonical(SysfsFolder(NumbersOf(descriptor)), error);
    if (error || !fs::exists(folder / "partition", error)) return;
    throw ImageError(path + ": a partition; name the disk that it is on, /dev/" +
                     folder.parent_path().filename().string());
}

void RefuseReadOnly(int descriptor, const std::string& path) {
    int isReadOnly = 0;
    if (ioctl(descriptor, BLKROGET, &isReadOnly) == 0 && isReadOnly != 0)
        throw ImageError(path + ": a read-only medium");
}

void RefuseIfUsed(int descriptor, const std::string& path) {
    const std::string user = DiskUser(NumbersOf(descriptor), path);
    if (!user.empty()) throw InUse(path, user);
}

// Nobody mounts the disk or a partition of it, or makes it part of another device, until it is closed.
Descriptor Claimed(const std::string& path) {
    Descriptor opened(open(path.c_str(), O_RDWR | O_EXCL | O_CLOEXEC | O_NONBLOCK));
    if (!opened && errno == EBUSY) throw InUse(path, "another program has claimed it or a partition of it");
    if (!opened) opened = OpenImage(path, true);  // which says why
    // Programs that recognise new disks wait for the end of this lock.
    if (flock(opened.Number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        throw InUse(path, "another program has locked it");
    return opened;
}

uint64_t BytesOf(int descriptor) {
    uint64_t bytes = 0;
    return ioctl(descriptor, BLKGETSIZE64, &bytes) == 0 ? bytes : 0;
}

}  // namespace

DiskDevice::DiskDevice(const std::string& path, bool forWriting)
    : path_(path), descriptor_(OpenImage(path, false)) {
    RefusePartition(descriptor_.Number(), path);
    if (forWriting) {
        RefuseReadOnly(descriptor_.Number(), path);
        RefuseIfUsed(descriptor_.Number(), path);
        descriptor_ = Claimed(path);
    }
    Measure(path);
}

DiskDevice::~DiskDevice() {
    // No failure of what was done: the kernel knows the partitions by their places, which are as they were.
    if (isWritten_) ioctl(descriptor_.Number(), BLKRRPART);
}

void DiskDevice::Measure(const std::string& path) {
    int sectorSize = 0;
    if (ioctl(descriptor_.Number(), BLKSSZGET, &sectorSize) != 0 || sectorSize <= 0)
        throw ImageError(path + ": does not say how large its sectors are");
    sectorSize_ = static_cast<uint32_t>(sectorSize);
    size_ = BytesOf(descriptor_.Number());
    if (size_ == 0) throw ImageError(path + ": there is no medium in it");
}

std::string DiskDevice::OtherUser() const {
    return DiskUser(NumbersOf(descriptor_.Number()), path_);
}

bool DiskDevice::Read(uint64_t offset, void* buffer, size_t length) const {
    return IsInside(offset, length) &&
           Through(pread, descriptor_.Number(), offset, static_cast<uint8_t*>(buffer), length);
}

bool DiskDevice::Write(uint64_t offset, const void* bytes, size_t length) {
    isWritten_ = true;
    return IsInside(offset, length) &&
           Through(pwrite, descriptor_.Number(), offset, static_cast<const uint8_t*>(bytes), length);
}

bool DiskDevice::Flush() {
    return fsync(descriptor_.Number()) == 0;
}

}  // namespace machine
