#include "machine/media/device/open_device.h"

#include "machine/media/device/file_device.h"
#include "machine/media/device/image_format.h"
#include "machine/media/device/nbd_device.h"

namespace machine {

std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting) {
    const ImageFormat format = FormatOf(path);
    if (!format.server.empty()) return std::make_unique<NbdDevice>(path, format.server, forWriting);
    return std::make_unique<FileDevice>(path, forWriting, format.bytesAfterDisk);
}

}  // namespace machine
