#include "machine/media/table/table_check.h"

#include <algorithm>

#include "machine/media/device/little_endian.h"
#include "machine/media/table/mbr_entries.h"

namespace machine {

namespace {

void CheckPlace(const ImageFile& image, const Region& region, const Region& space) {
    const Region file = {"", 0, image.Size()};
    if (region.size == 0) throw image.Error(region.name + " has no length; the partition table is damaged");
    if (!IsWithin(region, file)) {
        throw image.Error(region.name + " ends " +
                          std::to_string(region.offset + region.size - image.Size()) +
                          " bytes beyond the end of the file; the image is truncated, or its table damaged");
    }
    if (!IsWithin(region, space)) throw image.Error(region.name + " lies on the partition table");
}

void CheckApart(const ImageFile& image, std::vector<Region> regions) {
    std::sort(regions.begin(), regions.end(),
              [](const Region& left, const Region& right) { return left.offset < right.offset; });
    for (size_t i = 1; i < regions.size(); ++i) {
        const Region& before = regions[i - 1];
        if (before.offset + before.size > regions[i].offset)
            throw image.Error(before.name + " and " + regions[i].name + " overlap");
    }
}

// Empty if there is none.
std::string GptHeaderAt(const ImageFile& image, uint64_t sector) {
    std::string header(diskSectorSize, '\0');
    const bool isThere = sector < image.Size() / diskSectorSize &&
                         image.Read(sector * diskSectorSize, header.data(), header.size()) &&
                         header.starts_with("EFI PART");
    return isThere ? header : "";
}

}  // namespace

void CheckLayout(const ImageFile& image, const TableLayout& layout) {
    std::vector<Region> outer = layout.primaries;
    outer.insert(outer.end(), layout.extended.begin(), layout.extended.end());
    for (const Region& region : outer)
        CheckPlace(image, region, layout.space);
    for (const Region& logical : layout.logicals) {
        CheckPlace(image, logical, layout.space);
        const bool isHeld = std::any_of(layout.extended.begin(), layout.extended.end(),
                                        [&](const Region& extended) { return IsWithin(logical, extended); });
        if (!isHeld) throw image.Error(logical.name + " is logical and leaves the extended partition");
    }
    CheckApart(image, outer);
    CheckApart(image, layout.logicals);
}

void CheckGptLength(const ImageFile& image) {
    constexpr uint64_t longest = 1024ULL * 1024;  // 64 times the usual length
    const std::string first = GptHeaderAt(image, 1);
    const std::string backup = GptHeaderAt(image, Le64(first, 32));
    const std::string last = GptHeaderAt(image, image.Size() / diskSectorSize - 1);
    for (const std::string& header : {first, backup, last}) {
        const uint64_t length = uint64_t{Le32(header, 80)} * Le32(header, 84);
        if (length > longest)
            throw image.Error("the GUID partition table is damaged: its entries claim to take " +
                              std::to_string(length) + " bytes");
    }
}

void CheckBootIndicator(const ImageFile& image, size_t slot, const std::string& name) {
    uint8_t indicator = 0;
    if (!image.Read(mbrFirstEntry + slot * mbrEntrySize, &indicator, 1)) throw image.Error("cannot be read");
    if (indicator != 0x00 && indicator != 0x80)
        throw image.Error(name + " is neither active nor inactive; the partition table is damaged");
}

}  // namespace machine
