#include "machine/media/volumes/volume_image.h"

#include "machine/media/volumes/exfat_volume.h"
#include "machine/media/volumes/fat_volume.h"
#include "machine/media/volumes/iso_volume.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"
#include "machine/media/volumes/udf_volume.h"

namespace machine {

namespace {

std::shared_ptr<VolumeStore> StoreAt(const std::shared_ptr<ImageFile>& image, const std::string& kind,
                                     uint64_t offset, uint64_t size) {
    const VolumeBytes bytes(image, offset, size);
    if (kind == "NTFS") return std::make_shared<NtfsVolume>(image, offset, size);
    if (kind == "FAT" || kind == "FAT32") return std::make_shared<FatVolume>(bytes);
    if (kind == "exFAT") return std::make_shared<ExfatVolume>(bytes);
    if (kind == "UDF") return std::make_shared<UdfVolume>(bytes);
    if (kind == "CDFS") return std::make_shared<IsoVolume>(bytes);
    return nullptr;
}

}  // namespace

Volume VolumeAt(const std::shared_ptr<ImageFile>& image, const FileSystem& fileSystem, uint64_t offset,
                uint64_t size) {
    Volume volume;
    volume.fileSystem = fileSystem.kind;
    volume.label = fileSystem.label;
    volume.store = StoreAt(image, fileSystem.kind, offset, size);
    return volume;
}

}  // namespace machine
