#include "machine/media/table/mbr_entries.h"

#include <set>
#include <string>

#include "machine/media/device/little_endian.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint8_t active = 0x80;

// Empty if it cannot be read or is of no such kind.
std::string TableSectorAt(const ImageFile& image, uint64_t offset) {
    std::string sector(diskSectorSize, '\0');
    if (!image.Read(offset, sector.data(), sector.size()) || Le16(sector, 510) != 0xAA55) return "";
    return sector;
}

// `base` is what the entry counts from.
MbrEntry EntryOf(const std::string& sector, uint64_t sectorOffset, size_t slot, uint64_t base) {
    const size_t at = mbrFirstEntry + slot * mbrEntrySize;
    return {.place = sectorOffset + at,
            .offset = base + Le32(sector, at + 8) * diskSectorSize,
            .isActive = Byte(sector, at) == active,
            .type = Byte(sector, at + mbrTypeAt)};
}

}  // namespace

std::vector<uint64_t> LogicalLinksOf(const ImageFile& image, const Region& extended) {
    // The second entry of a link points to the next one, in sectors from the start of the extended partition.
    std::vector<uint64_t> links;
    std::set<uint64_t> visited;
    uint64_t link = extended.offset;
    while (true) {
        const std::string where = "at sector " + std::to_string(link / diskSectorSize);
        if (!visited.insert(link).second)
            throw image.Error("the chain of logical partitions runs in a circle, " + where);
        if (!IsWithin({"", link, diskSectorSize}, extended))
            throw image.Error("the chain of logical partitions leaves the extended partition, " + where);
        const std::string sector = TableSectorAt(image, link);
        if (sector.empty()) throw image.Error("the chain of logical partitions is damaged, " + where);
        links.push_back(link);
        const MbrEntry next = EntryOf(sector, link, 1, extended.offset);
        if (next.type == 0) return links;
        link = next.offset;
    }
}

std::vector<MbrEntry> MbrEntriesOf(const ImageFile& image) {
    const std::string sector = TableSectorAt(image, 0);
    std::vector<MbrEntry> entries;
    std::vector<MbrEntry> logical;
    for (size_t slot = 0; slot < 4; ++slot) {
        const MbrEntry entry = EntryOf(sector, 0, slot, 0);
        if (entry.type == 0) continue;
        entries.push_back(entry);
        if (!PartitionTypeOf(entry.type).extended) continue;
        const uint64_t sectors = Le32(sector, mbrFirstEntry + slot * mbrEntrySize + 12);
        for (const uint64_t link : LogicalLinksOf(image, {"", entry.offset, sectors * diskSectorSize})) {
            const MbrEntry held = EntryOf(TableSectorAt(image, link), link, 0, link);
            if (held.type != 0) logical.push_back(held);
        }
    }
    entries.insert(entries.end(), logical.begin(), logical.end());
    return entries;
}

}  // namespace machine
