#include "machine/media/device/open_device.h"

#include "machine/media/device/disk_device.h"
#include "machine/media/device/disk_identity.h"
#include "machine/media/device/ewf_device.h"
#include "machine/media/device/file_device.h"
#include "machine/media/device/image_access.h"
#include "machine/media/device/image_format.h"
#include "machine/media/device/nbd_device.h"

namespace machine {

std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting, bool changesDisks) {
    if (IsDisk(path)) {
        if (forWriting && !changesDisks)
            throw ImageError(path + ": a disk of this computer; --yes confirms that it is to be changed");
        return std::make_unique<DiskDevice>(path, forWriting);
    }
    const ImageFormat format = FormatOf(path);
    switch (format.device) {
        case OpenedBy::Nbd:
            return std::make_unique<NbdDevice>(path, format.server, forWriting);
        case OpenedBy::Ewf:
            if (forWriting)
                throw ImageError(path + ": an E01 image of evidence, which is never changed; try --dry-run");
            return std::make_unique<EwfDevice>(path);
        case OpenedBy::File:
            break;
    }
    return std::make_unique<FileDevice>(path, forWriting, format.bytesAfterDisk);
}

}  // namespace machine
