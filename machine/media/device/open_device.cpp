#include "machine/media/device/open_device.h"

#include <algorithm>

#include "machine/media/device/disk_device.h"
#include "machine/media/device/disk_identity.h"
#include "machine/media/device/disk_server.h"
#include "machine/media/device/ewf_device.h"
#include "machine/media/device/file_device.h"
#include "machine/media/device/image_access.h"
#include "machine/media/device/image_format.h"
#include "machine/media/device/late_library.h"
#include "machine/media/device/nbd_device.h"

namespace machine {

namespace {

void Load(void (*load)()) {
    try {
        load();
    } catch (const LibraryMissing&) {
        // Whether an image needs it is seen later; opening that one says so.
    }
}

void PrepareNbd() {
    KeepDiskServerStarter();
    Load(LoadNbd);
}

void PrepareEwf() {
    Load(LoadEwf);
}

}  // namespace

void PrepareToOpen(const std::vector<std::string>& paths) {
    const auto isAny = [&](OpenedBy device) {
        return std::any_of(paths.begin(), paths.end(),
                           [&](const std::string& path) { return SignedFor(path) == device; });
    };
    if (isAny(OpenedBy::Nbd)) PrepareNbd();
    if (isAny(OpenedBy::Ewf)) PrepareEwf();
}

void PrepareToOpenAny() {
    PrepareNbd();
    PrepareEwf();
}

std::string NotConfirmed(const std::string& path) {
    return path + ": a disk of this computer; --yes confirms that it is to be changed";
}

std::unique_ptr<BlockDevice> OpenDevice(const std::string& path, bool forWriting, bool changesDisks) try {
    if (IsDisk(path)) {
        if (forWriting && !changesDisks) throw ImageError(NotConfirmed(path));
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
} catch (const LibraryMissing& missing) {
    throw ImageError(path + ": " + missing.what());
}

}  // namespace machine
