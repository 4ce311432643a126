#include "machine/media/device/in_use.h"

#include <fcntl.h>
#include <linux/loop.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/first_line.h"
#include "machine/media/device/image_access.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

constexpr const char* hasWriter = "another program has opened it for writing";

bool IsSame(const struct stat& left, const struct stat& right) {
    if (S_ISBLK(left.st_mode)) return S_ISBLK(right.st_mode) && left.st_rdev == right.st_rdev;
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool IsSame(const struct stat& backing, const loop_info64& info) {
    if (S_ISBLK(backing.st_mode)) return info.lo_rdevice == backing.st_rdev;
    return info.lo_device == backing.st_dev && info.lo_inode == backing.st_ino;
}

// By the path that the kernel shows everybody, or, where that means nothing here or there is none, by what it
// answers those who may open the device.
bool IsBehind(const struct stat& backing, const std::string& name, const std::string& path) {
    struct stat status = {};
    if (!path.empty() && stat(path.c_str(), &status) == 0 && IsSame(backing, status)) return true;
    const Descriptor loop(open(("/dev/" + name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    loop_info64 info = {};
    return loop && ioctl(loop.Number(), LOOP_GET_STATUS64, &info) == 0 && IsSame(backing, info);
}

struct flock WholeFile(short kind) {
    struct flock lock = {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    return lock;
}

// A lock of a process has its number; one of an open file, as virtual machines take it, has none.
std::string HolderOfLock(int descriptor) {
    struct flock lock = WholeFile(F_WRLCK);
    if (fcntl(descriptor, F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK) return "";
    if (lock.l_pid <= 0) return "qemu or another program holds a lock on it";
    const std::string process = std::to_string(lock.l_pid);
    return FirstLine("/proc/" + process + "/comm") + " (process " + process + ") holds a lock on it";
}

// A lease for reading is granted only where nobody has the file open for writing. Not every file system has
// leases, and only the owner of the file and root get them.
bool IsOpenForWriting(int descriptor) {
    // Whoever opens the file before the lease is given back makes the kernel send this signal, which is
    // ignored unless a program handles it. The usual one would end this program.
    fcntl(descriptor, F_SETSIG, SIGURG);
    if (fcntl(descriptor, F_SETLEASE, F_RDLCK) != 0) return errno == EAGAIN;
    fcntl(descriptor, F_SETLEASE, F_UNLCK);
    return false;
}

}  // namespace

ImageError InUse(const std::string& path, const std::string& user) {
    return ImageError(path + ": in use: " + user);
}

std::string LoopDeviceOn(const struct stat& backing) {
    std::error_code error;
    const bool hasSysfs = fs::exists("/sys/block", error);
    for (const auto& entry : fs::directory_iterator(hasSysfs ? "/sys/block" : "/dev", error)) {
        const std::string name = entry.path().filename();
        if (!name.starts_with("loop") || (!hasSysfs && !entry.is_block_file(error))) continue;
        const std::string path = FirstLine(entry.path() / "loop" / "backing_file");
        const bool isOnNothing = hasSysfs && path.empty();
        if (!isOnNothing && IsBehind(backing, name, path)) return "/dev/" + name;
    }
    return "";
}

std::string KnownUser(int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return "";
    const std::string loop = LoopDeviceOn(status);
    return loop.empty() ? HolderOfLock(descriptor) : "the loop device " + loop + " is on it";
}

void RefuseIfInUse(int descriptor, const std::string& path) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) throw InUse(path, hasWriter);
    const std::string user = KnownUser(descriptor);
    if (!user.empty()) throw InUse(path, user);
    if (IsOpenForWriting(descriptor)) throw InUse(path, hasWriter);
}

void LockForWriting(int descriptor, const std::string& path) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) throw InUse(path, hasWriter);
        throw ImageError(path + ": cannot be locked: " + std::strerror(errno));
    }
    // Virtual machines lock single bytes of the file, each for a kind of use; this lock covers them all.
    // A file system without such locks has none of theirs either.
    struct flock lock = WholeFile(F_WRLCK);
    if (fcntl(descriptor, F_OFD_SETLK, &lock) != 0 && (errno == EAGAIN || errno == EACCES))
        throw InUse(path, hasWriter);
}

}  // namespace machine
