// FAT volumes of each width.
#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/fat_volume.h"
#include "machine/media/volumes/file_system.h"

using namespace machine;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<std::unique_ptr<PatchedImage>> images = [] {
        std::vector<std::unique_ptr<PatchedImage>> made;
        for (const char* const name : {"stick-fat12.img", "stick-fat16.img", "stick-fat32.img"})
            made.push_back(std::make_unique<PatchedImage>(name));
        return made;
    }();
    FuzzedDataProvider input(data, size);
    Chosen(input, images).Ask(input, [](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
        const VolumeBytes bytes(image, 0, image->Size());
        FileSystemOf(bytes, MediumKind::Disk);
        FatVolume volume(bytes);
        AskFiles(volume);
    });
    return 0;
}
