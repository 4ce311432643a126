// An exFAT volume.
#include <bit>

#include "fuzz/ask_files.h"
#include "fuzz/patched_image.h"
#include "machine/media/volumes/exfat_volume.h"
#include "machine/media/volumes/file_system.h"

using namespace machine;

namespace {

template <typename Sum>
void Add(Sum& sum, uint8_t byte) {
    sum = static_cast<Sum>(std::rotr(sum, 1) + byte);
}

// The sum of the boot sectors leaves out what changes with the files.
void RepairBootSum(PatchedImage& image) {
    constexpr uint64_t end = 11 * diskSectorSize;
    uint32_t sum = 0;
    for (uint64_t at = 0; at < end; ++at) {
        if (at != 106 && at != 107 && at != 112) Add(sum, Byte(image.Bytes(), at));
    }
    std::string sums;
    for (uint64_t at = 0; at < diskSectorSize; at += 4) {
        sums.append(4, '\0');
        PutLe32(sums, at, sum);
    }
    image.Put(end, sums);
}

// That of a file's entries leaves out itself.
void RepairSetSum(PatchedImage& image, uint64_t set) {
    uint16_t sum = 0;
    for (uint64_t at = 0; at < 32 * (1 + uint64_t{Byte(image.Bytes(), set + 1)}); ++at) {
        if (at != 2 && at != 3) Add(sum, Byte(image.Bytes(), set + at));
    }
    image.Put(set + 2, std::string{static_cast<char>(sum & 0xFF), static_cast<char>(sum >> 8)});
}

void RepairSums(PatchedImage& image) {
    constexpr uint64_t entrySize = 32;
    constexpr uint64_t mostEntries = 19;
    constexpr uint8_t entryFile = 0x85;
    RepairBootSum(image);
    for (const uint64_t changed : image.Changed()) {
        const uint64_t entry = changed / entrySize * entrySize;
        for (uint64_t before = 0; before < mostEntries && before * entrySize <= entry; ++before) {
            const uint64_t set = entry - before * entrySize;
            if (Byte(image.Bytes(), set) != entryFile) continue;
            RepairSetSum(image, set);
            break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static PatchedImage base("stick-exfat.img", RepairSums);
    FuzzedDataProvider input(data, size);
    base.Ask(input, [](const std::string& path) {
        const auto image = std::make_shared<ImageFile>(path, ImageAccess::Read);
        const VolumeBytes bytes(image, 0, image->Size());
        FileSystemOf(bytes, MediumKind::Disk);
        ExfatVolume volume(bytes);
        AskFiles(volume);
    });
    return 0;
}
