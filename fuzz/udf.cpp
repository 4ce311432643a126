// UDF discs, with partitions of each kind.
#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/file_system.h"
#include "machine/media/volumes/udf_volume.h"

using namespace machine;

namespace {

// The tag of a descriptor has a sum of its bytes, the fifth, which is that sum, left out.
void RepairTags(PatchedImage& image) {
    constexpr uint64_t sectorSize = 2048;
    for (const uint64_t at : image.Changed()) {
        const uint64_t tag = at / sectorSize * sectorSize;
        uint8_t sum = 0;
        for (size_t i = 0; i < 16; ++i)
            sum = static_cast<uint8_t>(sum + (i == 4 ? 0 : Byte(image.Bytes(), tag + i)));
        image.Put(tag + 4, std::string(1, static_cast<char>(sum)));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::vector<std::unique_ptr<PatchedImage>> images = [] {
        std::vector<std::unique_ptr<PatchedImage>> made;
        for (const char* const name :
             {"disc-udf.iso", "disc-udf-virtual.iso", "disc-udf-sparable.iso", "disc-udf-metadata.iso"})
            made.push_back(std::make_unique<PatchedImage>(name, RepairTags));
        return made;
    }();
    FuzzedDataProvider input(data, size);
    Chosen(input, images).Ask(input, [](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
        const VolumeBytes bytes(image, 0, image->Size());
        FileSystemOf(bytes, MediumKind::Disc);
        UdfVolume volume(bytes);
        AskFiles(volume);
    });
    return 0;
}
