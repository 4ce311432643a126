// A range of an image as a device of libntfs-3g.
#pragma once

#include "machine/media/image/image_file.h"

struct ntfs_device;

namespace machine {

// A damaged file system can refer to itself, and the library follows it without end: reads are limited.
struct ImageRange {
    ImageFile& image;
    uint64_t offset;
    uint64_t size;
    uint64_t position = 0;
    uint64_t readsLeft = 0;
    bool isUsedUp = false;  // a read was refused; from then on all are, and all writes
};

// A device over the range, which must outlive it. Mounting takes ownership; otherwise the caller frees it
// with ntfs_device_free.
ntfs_device* NewDevice(ImageRange& range);

}  // namespace machine
