#include "fuzz/patched_image.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "machine/media/device/image_access.h"

namespace {

constexpr size_t sectorSize = 512;

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::exit(1);
}

}  // namespace

PatchedImage::PatchedImage(const std::string& name, Repair repair) : repair_(repair) {
    const std::string file = KESTOVA_FUZZ_BASES "/" + name;
    std::ifstream base(file, std::ios::binary);
    if (!base) Fail(file + ": cannot be read");
    size_ = static_cast<size_t>(std::filesystem::file_size(file));
    // A file, since libraries read images by path.
    const int descriptor = memfd_create("image", MFD_CLOEXEC);
    if (descriptor < 0 || ftruncate(descriptor, static_cast<off_t>(size_)) != 0) Fail("no memory file");
    void* const mapped = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (mapped == MAP_FAILED) Fail("no memory for " + file);
    bytes_ = static_cast<char*>(mapped);
    path_ = "/proc/self/fd/" + std::to_string(descriptor);
    char sector[sectorSize];
    constexpr char empty[sectorSize] = {};
    for (uint64_t at = 0; base.read(sector, sectorSize); at += sectorSize) {
        if (std::memcmp(sector, empty, sectorSize) == 0) continue;
        std::memcpy(bytes_ + at, sector, sectorSize);
        usedSectors_.push_back(at);
    }
}

void PatchedImage::Put(uint64_t at, std::string_view bytes) {
    if (at > size_ || bytes.size() > size_ - at) return;
    undo_.push_back({at, std::string(bytes_ + at, bytes.size())});
    bytes.copy(bytes_ + at, bytes.size());
}

void PatchedImage::Ask(FuzzedDataProvider& input, const std::function<void(const std::string& path)>& ask) {
    constexpr size_t longest = 16;
    const bool repairs = input.ConsumeBool();
    while (input.remaining_bytes() > 4) {
        const auto sector = input.ConsumeIntegral<uint16_t>() % usedSectors_.size();
        const auto within = input.ConsumeIntegral<uint16_t>() % sectorSize;
        const uint64_t at = usedSectors_[sector] + within;
        changed_.push_back(at);
        Put(at, input.ConsumeBytesAsString(1 + input.ConsumeIntegral<uint8_t>() % longest));
    }
    if (repairs && repair_ != nullptr) repair_(*this);
    try {
        ask(path_);
    } catch (const machine::ImageError&) {
        // A refusal is an answer, as of an image that begins like an archive.
    }
    for (auto undo = undo_.rbegin(); undo != undo_.rend(); ++undo)
        undo->before.copy(bytes_ + undo->at, undo->before.size());
    undo_.clear();
    changed_.clear();
}

PatchedImage& Chosen(FuzzedDataProvider& input, const std::vector<std::unique_ptr<PatchedImage>>& images) {
    return *images[input.ConsumeIntegralInRange<size_t>(0, images.size() - 1)];
}
