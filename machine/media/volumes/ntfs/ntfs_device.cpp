#include "machine/media/volumes/ntfs/ntfs_device.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "machine/media/volumes/ntfs/ntfs_library.h"

namespace machine {

namespace {

ImageRange& RangeOf(ntfs_device* device) {
    return *static_cast<ImageRange*>(device->d_private);
}

int DeviceOpen(ntfs_device* device, int flags) {
    NDevSetOpen(device);
    if ((flags & O_ACCMODE) == O_RDONLY) NDevSetReadOnly(device);
    return 0;
}

// The image decides when it is written.
int DeviceSync(ntfs_device*) {
    return 0;
}

int DeviceClose(ntfs_device* device) {
    NDevClearOpen(device);
    return 0;
}

s64 DeviceReadAt(ntfs_device* device, void* buffer, s64 count, s64 offset) {
    ImageRange& range = RangeOf(device);
    if (range.readsLeft == 0 && !range.isUsedUp) {
        range.isUsedUp = true;
        if (!NDevReadOnly(device))
            range.image.Refuse("an NTFS volume is damaged: it refers to itself; nothing was written");
    }
    if (range.isUsedUp) {
        errno = ELOOP;
        return -1;
    }
    --range.readsLeft;
    if (count < 0 || offset < 0 || static_cast<uint64_t>(offset) > range.size) {
        errno = EINVAL;
        return -1;
    }
    const uint64_t start = static_cast<uint64_t>(offset);
    const uint64_t length = std::min<uint64_t>(static_cast<uint64_t>(count), range.size - start);
    if (range.image.Read(range.offset + start, buffer, length)) return static_cast<s64>(length);
    errno = EIO;
    return -1;
}

s64 DeviceWriteAt(ntfs_device* device, const void* bytes, s64 count, s64 offset) {
    ImageRange& range = RangeOf(device);
    if (NDevReadOnly(device)) {
        errno = EROFS;
        return -1;
    }
    const uint64_t start = static_cast<uint64_t>(offset);
    const uint64_t length = static_cast<uint64_t>(count);
    if (count < 0 || offset < 0 || start > range.size || length > range.size - start) {
        errno = ENOSPC;
        return -1;
    }
    if (!range.isUsedUp && range.image.Write(range.offset + start, bytes, length)) return count;
    errno = EIO;
    return -1;
}

s64 DeviceSeek(ntfs_device* device, s64 offset, int whence) {
    ImageRange& range = RangeOf(device);
    const s64 base = whence == SEEK_CUR   ? static_cast<s64>(range.position)
                     : whence == SEEK_END ? static_cast<s64>(range.size)
                                          : 0;
    if (base + offset < 0 || base + offset > static_cast<s64>(range.size)) {
        errno = EINVAL;
        return -1;
    }
    range.position = static_cast<uint64_t>(base + offset);
    return base + offset;
}

s64 DeviceRead(ntfs_device* device, void* buffer, s64 count) {
    ImageRange& range = RangeOf(device);
    const s64 done = DeviceReadAt(device, buffer, count, static_cast<s64>(range.position));
    if (done > 0) range.position += static_cast<uint64_t>(done);
    return done;
}

s64 DeviceWrite(ntfs_device* device, const void* bytes, s64 count) {
    ImageRange& range = RangeOf(device);
    const s64 done = DeviceWriteAt(device, bytes, count, static_cast<s64>(range.position));
    if (done > 0) range.position += static_cast<uint64_t>(done);
    return done;
}

int DeviceStat(ntfs_device* device, struct stat* status) {
    *status = {};
    status->st_mode = S_IFREG;
    status->st_size = static_cast<off_t>(RangeOf(device).size);
    return 0;
}

// A file has no drive to query or control.
int DeviceControl(ntfs_device*, unsigned long, void*) {
    errno = EOPNOTSUPP;
    return -1;
}

ntfs_device_operations imageOperations = {DeviceOpen,   DeviceClose,   DeviceSeek, DeviceRead, DeviceWrite,
                                          DeviceReadAt, DeviceWriteAt, DeviceSync, DeviceStat, DeviceControl};

}  // namespace

ntfs_device* NewDevice(ImageRange& range) {
    ntfs_device* const device = ntfs_device_alloc("image", 0, &imageOperations, &range);
    if (device == nullptr) throw std::bad_alloc();
    return device;
}

}  // namespace machine
