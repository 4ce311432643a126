#include "machine/storage/table_check.h"

#include <algorithm>
#include <array>
#include <set>

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

uint32_t LittleEndian32(const uint8_t* bytes) {
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
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

void CheckBootIndicator(const ImageFile& image, size_t slot, const std::string& name) {
    uint8_t indicator = 0;
    if (!image.Read(firstEntry + slot * entrySize, &indicator, 1)) throw image.Error("cannot be read");
    if (indicator != 0x00 && indicator != 0x80)
        throw image.Error(name + " is neither active nor inactive; the partition table is damaged");
}

void CheckChain(const ImageFile& image, const Region& extended) {
    // A link is a sector laid out as the MBR. Its second entry leads to the next link, counted in sectors
    // from the start of the extended partition.
    constexpr size_t secondEntry = firstEntry + entrySize;
    std::set<uint64_t> visited;
    uint64_t link = extended.offset;
    while (true) {
        const std::string where = "at sector " + std::to_string(link / sectorSize);
        if (!visited.insert(link).second)
            throw image.Error("the chain of logical partitions runs in a circle, " + where);
        if (!IsWithin({"", link, sectorSize}, extended))
            throw image.Error("the chain of logical partitions leaves the extended partition, " + where);
        std::array<uint8_t, sectorSize> sector = {};
        if (!image.Read(link, sector.data(), sector.size()) || sector[510] != 0x55 || sector[511] != 0xAA)
            throw image.Error("the chain of logical partitions is damaged, " + where);
        const uint8_t type = sector[secondEntry + 4];
        const uint32_t next = LittleEndian32(&sector[secondEntry + 8]);
        if (type == 0) return;
        link = extended.offset + uint64_t{next} * sectorSize;
    }
}

}  // namespace machine
