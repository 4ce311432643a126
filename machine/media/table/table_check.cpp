#include "machine/media/table/table_check.h"

#include <algorithm>
#include <set>

#include "machine/media/device/volume_bytes.h"

namespace machine {

namespace {

constexpr uint64_t sectorSize = 512;
constexpr size_t firstEntry = 446;
constexpr size_t entrySize = 16;

bool IsWithin(const Region& inner, const Region& outer) {
    return inner.offset >= outer.offset && inner.offset - outer.offset <= outer.size &&
           inner.size <= outer.size - (inner.offset - outer.offset);
}

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
    std::string header(sectorSize, '\0');
    const bool isThere = sector < image.Size() / sectorSize &&
                         image.Read(sector * sectorSize, header.data(), header.size()) &&
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
    const std::string last = GptHeaderAt(image, image.Size() / sectorSize - 1);
    for (const std::string& header : {first, backup, last}) {
        const uint64_t length = uint64_t{Le32(header, 80)} * Le32(header, 84);
        if (length > longest)
            throw image.Error("the GUID partition table is damaged: its entries claim to take " +
                              std::to_string(length) + " bytes");
    }
}

void CheckBootIndicator(const ImageFile& image, size_t slot, const std::string& name) {
    uint8_t indicator = 0;
    if (!image.Read(firstEntry + slot * entrySize, &indicator, 1)) throw image.Error("cannot be read");
    if (indicator != 0x00 && indicator != 0x80)
        throw image.Error(name + " is neither active nor inactive; the partition table is damaged");
}

void CheckChain(const ImageFile& image, const Region& extended) {
    // A link has the format of an MBR. Its second entry points to the next link, in sectors from the start
    // of the extended partition.
    constexpr size_t secondEntry = firstEntry + entrySize;
    std::set<uint64_t> visited;
    uint64_t link = extended.offset;
    while (true) {
        const std::string where = "at sector " + std::to_string(link / sectorSize);
        if (!visited.insert(link).second)
            throw image.Error("the chain of logical partitions runs in a circle, " + where);
        if (!IsWithin({"", link, sectorSize}, extended))
            throw image.Error("the chain of logical partitions leaves the extended partition, " + where);
        std::string sector(sectorSize, '\0');
        if (!image.Read(link, sector.data(), sector.size()) || Le16(sector, 510) != 0xAA55)
            throw image.Error("the chain of logical partitions is damaged, " + where);
        const uint8_t type = Byte(sector, secondEntry + 4);
        const uint32_t next = Le32(sector, secondEntry + 8);
        if (type == 0) return;
        link = extended.offset + uint64_t{next} * sectorSize;
    }
}

}  // namespace machine
