// An NTFS volume. What is written stays in memory.
#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/ntfs_volume.h"

using namespace machine;

// Where a mount fails, the NTFS library loses what it allocated for it, and nobody outside can release that.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:ntfs_malloc\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static PatchedImage base("stick-ntfs.img");
    FuzzedDataProvider input(data, size);
    const ImageAccess access = input.ConsumeBool() ? ImageAccess::Overlay : ImageAccess::Read;
    base.Ask(input, [&](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, access);
        NtfsVolume volume(image, 0, image->Size());
        volume.Check();
        AskFiles(volume);
    });
    return 0;
}
