// ISO 9660 discs, with the names of Joliet and without.
#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/file_system.h"
#include "machine/media/volumes/iso_volume.h"

using namespace machine;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<std::unique_ptr<PatchedImage>> images = [] {
        std::vector<std::unique_ptr<PatchedImage>> made;
        for (const char* const name : {"disc-iso.iso", "disc-joliet.iso"})
            made.push_back(std::make_unique<PatchedImage>(name));
        return made;
    }();
    FuzzedDataProvider input(data, size);
    Chosen(input, images).Ask(input, [](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
        const VolumeBytes bytes(image, 0, image->Size());
        FileSystemOf(bytes, MediumKind::Disc);
        IsoVolume volume(bytes);
        AskFiles(volume);
    });
    return 0;
}
