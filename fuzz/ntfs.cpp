// An NTFS volume. What is written stays in memory.
#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/file_system.h"
#include "machine/media/volumes/ntfs/ntfs_volume.h"

using namespace machine;

// On a damaged volume the NTFS library itself loses what a mount or a deletion had allocated when it fails,
// and nobody outside can release that. That our own inodes are closed is tested by name. The library is told
// by its file, as names of functions are unknown where there is no symbolizer.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libntfs-3g\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static PatchedImage base("stick-ntfs.img");
    FuzzedDataProvider input(data, size);
    const ImageAccess access = input.ConsumeBool() ? ImageAccess::Overlay : ImageAccess::Read;
    base.Ask(input, [&](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, access);
        FileSystemOf(VolumeBytes(image, 0, image->Size()), MediumKind::Disk);
        NtfsVolume volume(image, 0, image->Size());
        volume.Check();
        AskFiles(volume);
    });
    return 0;
}
