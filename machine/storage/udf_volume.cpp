#include "machine/storage/udf_volume.h"

#include <algorithm>

#include "machine/core/utf.h"

namespace machine {

namespace {

constexpr uint64_t sectorSize = 2048;
constexpr uint64_t longestFolder = 16ULL * 1024 * 1024;
constexpr uint64_t mostDescriptors = 64;
constexpr size_t mostExtents = 65536;
constexpr size_t mostContinuations = 256;

// What a descriptor is, in its first two bytes.
constexpr uint16_t tagAnchor = 2;
constexpr uint16_t tagPartition = 5;
constexpr uint16_t tagLogicalVolume = 6;
constexpr uint16_t tagEnd = 8;
constexpr uint16_t tagFileSet = 256;
constexpr uint16_t tagFileIdentifier = 257;
constexpr uint16_t tagAllocationExtent = 258;
constexpr uint16_t tagFileEntry = 261;
constexpr uint16_t tagExtendedFileEntry = 266;

constexpr uint8_t typeFolder = 4;
constexpr uint8_t typeFile = 5;
constexpr uint8_t typeMetadata = 250;

// How a file entry writes down where the file lies.
constexpr uint8_t formShort = 0;
constexpr uint8_t formLong = 1;
constexpr uint8_t formInside = 3;

// What an extent is, in the highest bits of its length.
constexpr uint32_t kindRecorded = 0;
constexpr uint32_t kindContinuation = 3;

constexpr uint8_t flagFolder = 0x02;
constexpr uint8_t flagDeleted = 0x04;
constexpr uint8_t flagParent = 0x08;

constexpr size_t identifierHeader = 38;

// The sum of the tag's bytes, its own left out.
bool IsTag(std::string_view bytes, uint16_t tag) {
    uint8_t sum = 0;
    for (size_t i = 0; i < 16; ++i)
        sum = static_cast<uint8_t>(sum + (i == 4 ? 0 : Byte(bytes, i)));
    return Le16(bytes, 0) == tag && sum == Byte(bytes, 4);
}

// A name's first byte says how wide its characters are.
std::string NameOf(std::string_view bytes) {
    std::u16string name;
    if (Byte(bytes, 0) == 8) {
        for (size_t at = 1; at < bytes.size(); ++at)
            name += static_cast<char16_t>(Byte(bytes, at));
    } else if (Byte(bytes, 0) == 16) {
        for (size_t at = 1; at + 1 < bytes.size(); at += 2)
            name += static_cast<char16_t>(Be16(bytes, at));
    }
    return ToUtf8(name);
}

uint64_t PlaceOf(uint16_t partition, uint32_t block) {
    return uint64_t{partition} << 32 | block;
}

}  // namespace

// --- the way to the root folder
// ------------------------------------------------------------------------------------

UdfVolume::UdfVolume(VolumeBytes bytes) : bytes_(std::move(bytes)) {
    root_.isFolder = true;
    ReadDescriptors();
}

std::optional<std::string> UdfVolume::ReadSector(uint64_t sector, uint16_t tag) const {
    auto bytes = bytes_.Read(sector * sectorSize, sectorSize);
    return bytes && IsTag(*bytes, tag) ? bytes : std::nullopt;
}

void UdfVolume::ReadDescriptors() {
    const uint64_t sectors = bytes_.Size() / sectorSize;
    for (const uint64_t anchorSector : {uint64_t{256}, sectors - 1, sectors - 257}) {
        const auto anchor = ReadSector(anchorSector, tagAnchor);
        // The descriptors are there twice.
        for (const size_t sequence : {16, 24}) {
            if (!anchor) break;
            const uint64_t count = std::min(Le32(*anchor, sequence) / sectorSize, mostDescriptors);
            const uint64_t first = Le32(*anchor, sequence + 4);
            std::optional<std::string> partition;
            std::optional<std::string> logicalVolume;
            for (uint64_t sector = first; sector < first + count && !ReadSector(sector, tagEnd); ++sector) {
                if (!partition) partition = ReadSector(sector, tagPartition);
                if (!logicalVolume) logicalVolume = ReadSector(sector, tagLogicalVolume);
            }
            if (partition && logicalVolume && ReadPartitions(*logicalVolume, *partition) &&
                ReadRoot(*logicalVolume)) {
                return;
            }
        }
    }
    partitions_.clear();
}

bool UdfVolume::ReadPartitions(std::string_view logicalVolume, std::string_view physicalPartition) {
    constexpr size_t maps = 440;
    if (Le32(logicalVolume, 212) != sectorSize) return false;
    const Partition physical = {Le32(physicalPartition, 188), Le32(physicalPartition, 192), {}};
    const uint16_t number = Le16(physicalPartition, 22);
    partitions_.clear();
    for (size_t at = maps; partitions_.size() < Le32(logicalVolume, 268);) {
        const std::string_view map = logicalVolume.substr(std::min(at, logicalVolume.size()));
        const size_t length = Byte(map, 1);
        if (Byte(map, 0) == 1 && length == 6 && Le16(map, 4) == number) {
            partitions_.push_back(physical);
        } else if (Byte(map, 0) == 2 && length == 64 && map.size() >= length &&
                   map.substr(5, 23) == "*UDF Metadata Partition" && !partitions_.empty()) {
            const auto file = ReadFileEntry(0, Le32(map, 40));
            if (!file || file->type != typeMetadata || file->extents.empty()) return false;
            partitions_.push_back({0, 0, file->extents});
        } else {
            return false;
        }
        at += length;
    }
    return true;
}

bool UdfVolume::ReadRoot(std::string_view logicalVolume) {
    const auto fileSet = ReadBlock(Le16(logicalVolume, 256), Le32(logicalVolume, 252));
    if (!fileSet || !IsTag(*fileSet, tagFileSet)) return false;
    root_.place = PlaceOf(Le16(*fileSet, 408), Le32(*fileSet, 404));
    return IsReadable();
}

// --- blocks and files
// ---------------------------------------------------------------------------------------------

std::optional<std::string> UdfVolume::ReadBlock(uint16_t partition, uint64_t block) const {
    if (partition >= partitions_.size()) return std::nullopt;
    const Partition& place = partitions_[partition];
    if (place.metadata.empty()) {
        if (block >= place.sectors) return std::nullopt;
        return bytes_.Read((place.start + block) * sectorSize, sectorSize);
    }
    uint64_t before = 0;
    for (const Extent& extent : place.metadata) {
        const uint64_t blocks = extent.length / sectorSize;
        // The metadata file itself lies on a partition of the disc, so this ends.
        if (block - before < blocks) return ReadBlock(0, extent.block + (block - before));
        before += blocks;
    }
    return std::nullopt;
}

// `descriptors` are short or long ones; a last one may say where more of them are.
bool UdfVolume::ReadExtents(std::string_view descriptors, uint8_t form, uint16_t partition,
                            std::vector<Extent>& extents) const {
    const size_t step = form == formShort ? 8 : 16;
    std::string continued;
    size_t continuations = 0;
    for (size_t at = 0; at + step <= descriptors.size();) {
        const uint32_t length = Le32(descriptors, at);
        const uint32_t kind = length >> 30;
        Extent extent;
        extent.length = length & 0x3FFFFFFF;
        extent.block = Le32(descriptors, at + 4);
        extent.partition = form == formShort ? partition : Le16(descriptors, at + 8);
        extent.isRecorded = kind == kindRecorded;
        if (extent.length == 0) return true;
        at += step;
        if (kind == kindContinuation) {
            const auto block = ReadBlock(extent.partition, extent.block);
            if (!block || !IsTag(*block, tagAllocationExtent) || ++continuations > mostContinuations)
                return false;
            continued = block->substr(24, Le32(*block, 20));
            descriptors = continued;
            at = 0;
            continue;
        }
        extents.push_back(extent);
        if (extents.size() > mostExtents) return false;
    }
    return true;
}

std::optional<UdfVolume::FileEntry> UdfVolume::ReadFileEntry(uint16_t partition, uint32_t block) const {
    const auto bytes = ReadBlock(partition, block);
    if (!bytes) return std::nullopt;
    const bool isExtended = IsTag(*bytes, tagExtendedFileEntry);
    if (!isExtended && !IsTag(*bytes, tagFileEntry)) return std::nullopt;
    const size_t lengths = isExtended ? 208 : 168;
    const uint64_t start = lengths + 8 + uint64_t{Le32(*bytes, lengths)};
    const uint64_t length = Le32(*bytes, lengths + 4);
    if (start > bytes->size() || length > bytes->size() - start) return std::nullopt;
    const std::string_view allocation = std::string_view(*bytes).substr(start, length);
    FileEntry entry;
    entry.type = Byte(*bytes, 27);
    entry.size = Le64(*bytes, 56);
    const auto form = static_cast<uint8_t>(Le16(*bytes, 34) & 7);
    entry.isInside = form == formInside;
    if (entry.isInside) {
        entry.inside = allocation;
    } else if ((form != formShort && form != formLong) ||
               !ReadExtents(allocation, form, partition, entry.extents)) {
        return std::nullopt;
    }
    return entry;
}

std::optional<std::string> UdfVolume::ReadExtent(const Extent& extent, uint64_t length) const {
    if (!extent.isRecorded) return std::string(static_cast<size_t>(length), '\0');
    if (extent.partition < partitions_.size() && partitions_[extent.partition].metadata.empty()) {
        const Partition& place = partitions_[extent.partition];
        if (extent.block + (length + sectorSize - 1) / sectorSize > place.sectors) return std::nullopt;
        return bytes_.Read((place.start + extent.block) * sectorSize, length);
    }
    std::string content;
    for (uint64_t block = extent.block; content.size() < length; ++block) {
        const auto piece = ReadBlock(extent.partition, block);
        if (!piece) return std::nullopt;
        content += piece->substr(0, length - content.size());
    }
    return content;
}

std::optional<std::string> UdfVolume::ReadContent(const FileEntry& entry) const {
    if (entry.size > bytes_.Size()) return std::nullopt;
    std::string content = entry.inside.substr(0, entry.size);
    for (const Extent& extent : entry.extents) {
        const auto piece = ReadExtent(extent, std::min(extent.length, entry.size - content.size()));
        if (!piece) return std::nullopt;
        content += *piece;
    }
    if (content.size() < entry.size) return std::nullopt;
    return content;
}

// --- folders
// ------------------------------------------------------------------------------------------------------

std::optional<std::vector<UdfVolume::Entry>> UdfVolume::List(const Entry& folder) const {
    const auto fileEntry =
        ReadFileEntry(static_cast<uint16_t>(folder.place >> 32), static_cast<uint32_t>(folder.place));
    if (!fileEntry || fileEntry->type != typeFolder || fileEntry->size > longestFolder) return std::nullopt;
    const auto bytes = ReadContent(*fileEntry);
    if (!bytes) return std::nullopt;
    std::vector<Entry> entries;
    for (size_t at = 0; at < bytes->size();) {
        const std::string_view identifier = std::string_view(*bytes).substr(at);
        const size_t nameLength = Byte(identifier, 19);
        const size_t nameStart = identifierHeader + Le16(identifier, 36);
        if (!IsTag(identifier, tagFileIdentifier) || nameStart + nameLength > identifier.size())
            return std::nullopt;
        const uint8_t flags = Byte(identifier, 18);
        if ((flags & (flagDeleted | flagParent)) == 0) {
            Entry entry;
            entry.name = NameOf(identifier.substr(nameStart, nameLength));
            entry.isFolder = (flags & flagFolder) != 0;
            entry.place = PlaceOf(Le16(identifier, 28), Le32(identifier, 24));
            entries.push_back(std::move(entry));
        }
        at += (nameStart + nameLength + 3) / 4 * 4;
    }
    return entries;
}

std::optional<std::string> UdfVolume::Content(const Entry& file) const {
    const auto fileEntry =
        ReadFileEntry(static_cast<uint16_t>(file.place >> 32), static_cast<uint32_t>(file.place));
    if (!fileEntry || fileEntry->type != typeFile) return std::nullopt;
    return ReadContent(*fileEntry);
}

}  // namespace machine
