#include "machine/media/volumes/udf_volume.h"

#include <algorithm>
#include <iterator>

#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

constexpr uint64_t blockSizes[] = {2048, 512, 1024, 4096};  // the most usual first
constexpr uint64_t longestFolder = 16ULL * 1024 * 1024;
constexpr uint64_t mostDescriptors = 64;
constexpr uint64_t mostPartitions = 8;
constexpr uint64_t longestTable = 4ULL * 1024 * 1024;  // bytes, of extents or blocks
constexpr uint64_t mostRuns = longestTable / 4;        // of a partition

// Tags: the type of a descriptor, in its first two bytes.
constexpr uint16_t tagAnchor = 2;
constexpr uint16_t tagPartition = 5;
constexpr uint16_t tagLogicalVolume = 6;
constexpr uint16_t tagFileSet = 256;
constexpr uint16_t tagFileIdentifier = 257;
constexpr uint16_t tagExtents = 258;
constexpr uint16_t tagFileEntry = 261;
constexpr uint16_t tagExtendedFileEntry = 266;

constexpr uint8_t typeUnspecified = 0;
constexpr uint8_t typeFolder = 4;
constexpr uint8_t typeFile = 5;
constexpr uint8_t typeVirtualTable = 248;
constexpr uint8_t typeMetadata = 250;
constexpr uint8_t typeMetadataMirror = 251;

// How a file entry stores its allocation: in extent descriptors, or the file itself.
constexpr uint16_t formShort = 0;
constexpr uint16_t formLong = 1;
constexpr uint16_t formInside = 3;

// The top two bits of an extent's length.
constexpr uint32_t kindRecorded = 0;   // 1 and 2 are not, and read as zero
constexpr uint32_t kindContinued = 3;  // of more descriptors

constexpr uint8_t flagFolder = 0x02;
constexpr uint8_t flagDeleted = 0x04;
constexpr uint8_t flagParent = 0x08;

constexpr size_t identifierHeader = 38;

// The fifth byte of a tag is the sum of the others.
bool IsTag(std::string_view bytes, uint16_t tag) {
    uint8_t sum = 0;
    for (size_t i = 0; i < 16; ++i)
        sum = static_cast<uint8_t>(sum + (i == 4 ? 0 : Byte(bytes, i)));
    return Le16(bytes, 0) == tag && sum == Byte(bytes, 4);
}

// The first byte of a name is the width of its characters in bits.
std::string NameOf(std::string_view bytes) {
    std::string wide;
    if (Byte(bytes, 0) == 16) wide = bytes.substr(1);
    if (Byte(bytes, 0) == 8) {
        for (const char low : bytes.substr(1))
            wide += {'\0', low};
    }
    return FromUtf16Be(wide);
}

// In a field of fixed length the last byte is that of the name.
std::string NameIn(std::string_view field) {
    return NameOf(field.substr(0, Byte(field, field.size() - 1)));
}

bool IsPlain(std::string_view map) {
    return Byte(map, 0) == 1;
}

// A block and its partition.
uint64_t PlaceAt(std::string_view bytes, size_t at) {
    return uint64_t{Le16(bytes, at + 4)} << 32 | Le32(bytes, at);
}

// --- the sequence of volume structures ---

constexpr uint64_t firstStructure = 0x8000;
constexpr uint64_t mostStructures = 64;
constexpr std::string_view structuresOfUdf[] = {"NSR02", "NSR03"};
constexpr std::string_view otherStructures[] = {"BEA01", "BOOT2", "CD001", "CDW02", "TEA01"};

bool IsNamedUdf(const VolumeBytes& bytes, uint64_t structureSize) {
    for (uint64_t number = 0; number < mostStructures; ++number) {
        const auto name = bytes.Read(firstStructure + number * structureSize + 1, 5);
        if (!name) return false;
        if (std::ranges::find(structuresOfUdf, *name) != std::end(structuresOfUdf)) return true;
        if (std::ranges::find(otherStructures, *name) == std::end(otherStructures)) return false;
    }
    return false;
}

}  // namespace

struct UdfVolume::Extent {
    uint64_t place = 0;
    uint64_t length = 0;  // bytes
    bool isRecorded = false;
};

struct UdfVolume::FileEntry {
    uint8_t type = 0;
    uint64_t size = 0;  // bytes
    uint16_t form = formShort;
    uint64_t partition = 0;  // that of short descriptors, as the upper half of a place
    std::string allocation;  // the extent descriptors, or the file itself
};

// A structure takes 2048 bytes, or a longer block.
bool IsNamedUdf(const VolumeBytes& bytes) {
    return IsNamedUdf(bytes, 2048) || IsNamedUdf(bytes, 4096);
}

// --- the way to the root folder ---

UdfVolume::UdfVolume(VolumeBytes bytes) : ReadOnlyVolume(std::move(bytes)) {
    root_.isFolder = true;
    for (const uint64_t blockSize : blockSizes) {
        blockSize_ = blockSize;
        if (ReadDescriptors()) return;
        partitions_.clear();
        if (label_) return;
    }
}

std::optional<std::string> UdfVolume::ReadDescriptor(uint64_t sector, uint16_t tag) const {
    auto bytes = Bytes().Read(sector * blockSize_, blockSize_);
    return bytes && IsTag(*bytes, tag) ? bytes : std::nullopt;
}

// The anchor can be in four places, one of them on discs that are not closed, and refers to two copies of the
// descriptor sequence.
bool UdfVolume::ReadDescriptors() {
    const uint64_t sectors = Bytes().Size() / blockSize_;
    for (const uint64_t place : {uint64_t{256}, sectors - 1, sectors - 257, uint64_t{512}}) {
        const auto anchor = ReadDescriptor(place, tagAnchor);
        // The number of its sector, which shows the size of sectors.
        if (!anchor || Le32(*anchor, 12) != place) continue;
        if (!label_) label_.emplace();
        for (const size_t sequence : {size_t{16}, size_t{24}}) {
            if (ReadSequence(Le32(*anchor, sequence + 4), Le32(*anchor, sequence) / blockSize_)) return true;
        }
    }
    return false;
}

bool UdfVolume::ReadSequence(uint64_t first, uint64_t count) {
    std::optional<std::string> logicalVolume;
    std::map<uint16_t, UdfRun> physical;
    for (uint64_t sector = first; sector < first + std::min(count, mostDescriptors); ++sector) {
        if (!logicalVolume) logicalVolume = ReadDescriptor(sector, tagLogicalVolume);
        if (const auto partition = ReadDescriptor(sector, tagPartition))
            physical.try_emplace(Le16(*partition, 22),
                                 UdfRun{0, Le32(*partition, 192), Le32(*partition, 188)});
    }
    if (!logicalVolume) return false;
    if (label_->empty()) label_ = NameIn(std::string_view(*logicalVolume).substr(84, 128));
    if (Le32(*logicalVolume, 212) != blockSize_) return false;
    ReadPartitions(*logicalVolume, physical);
    return ReadRoot(*logicalVolume);
}

bool UdfVolume::ReadRoot(std::string_view logicalVolume) {
    const auto fileSet = ReadPlace(PlaceAt(logicalVolume, 252), blockSize_);
    if (!fileSet || !IsTag(*fileSet, tagFileSet)) return false;
    root_.place = PlaceAt(*fileSet, 404);
    return List(root_).has_value();
}

// --- partitions ---

// Each map is a partition.
void UdfVolume::ReadPartitions(std::string_view logicalVolume, const std::map<uint16_t, UdfRun>& physical) {
    partitions_.clear();
    std::map<uint16_t, uint64_t> bases;  // the first of each number, as the upper half of a place
    size_t at = 440;
    for (uint64_t count = std::min<uint64_t>(Le32(logicalVolume, 268), mostPartitions); count > 0; --count) {
        const std::string_view map = logicalVolume.substr(std::min(at, logicalVolume.size()));
        at += Byte(map, 1);
        const uint16_t number = Le16(map, IsPlain(map) ? 4 : 38);
        const auto run = physical.find(number);
        const auto base = bases.try_emplace(number, uint64_t{partitions_.size()} << 32).first;
        partitions_.push_back(run != physical.end() ? ReadPartition(map, run->second, base->second)
                                                    : UdfPartition());
    }
}

// One that is virtual or for metadata has its blocks in the first of its number. An unknown one has none.
UdfPartition UdfVolume::ReadPartition(std::string_view map, const UdfRun& physical, uint64_t base) const {
    if (IsPlain(map)) return {physical};
    const std::string_view kind = map.size() < 28 ? "" : map.substr(5, 23);
    if (kind.starts_with("*UDF Sparable Partition")) return ReadSparable(map, physical);
    if (base >> 32 == partitions_.size()) return {};
    if (kind.starts_with("*UDF Virtual Partition")) return ReadVirtual(base, physical.sector);
    if (kind.starts_with("*UDF Metadata Partition")) return ReadMetadata(map, base);
    return {};
}

// The table of moved packets is there several times.
UdfPartition UdfVolume::ReadSparable(std::string_view map, const UdfRun& physical) const {
    constexpr size_t mostTables = 4;
    constexpr size_t header = 56;
    const uint64_t packet = Le16(map, 40);
    const uint64_t size = Le32(map, 44);
    if (size < header || size > longestTable) return {};
    for (size_t number = 0; number < std::min<size_t>(Byte(map, 42), mostTables); ++number) {
        const auto table = Bytes().Read(Le32(map, 48 + 4 * number) * blockSize_, size);
        if (!table || !IsTag(*table, 0) || table->compare(17, 18, "*UDF Sparing Table") != 0) continue;
        const std::string_view moved = std::string_view(*table).substr(header, 8 * size_t{Le16(*table, 48)});
        return WithMovedPackets(physical, packet, moved);
    }
    return {};
}

// The table has the block of each block. Its entry is the last block that was written, before what a drive
// adds.
UdfPartition UdfVolume::ReadVirtual(uint64_t base, uint64_t start) const {
    constexpr uint64_t mostAdded = 1024;
    const uint64_t sectors = Bytes().Size() / blockSize_;
    for (uint64_t back = 1; back <= std::min(mostAdded, sectors) && sectors - back >= start; ++back) {
        const auto entry = ReadFileEntry(base | (sectors - back - start));
        const auto table = entry ? ReadVirtualTable(*entry) : std::nullopt;
        if (!table) continue;
        UdfPartition partition;
        for (size_t number = 0; 4 * number < table->size(); ++number)
            Append(partition, number, partitions_[base >> 32], Le32(*table, 4 * number), 1);
        return partition;
    }
    return {};
}

// Since UDF 2.00 a header precedes the table, before that a tail followed it.
std::optional<std::string> UdfVolume::ReadVirtualTable(const FileEntry& entry) const {
    constexpr std::string_view mark = "*UDF Virtual Alloc Tbl";
    constexpr size_t tailSize = 36;
    if ((entry.type != typeVirtualTable && entry.type != typeUnspecified) || entry.size > longestTable)
        return std::nullopt;
    auto table = ReadContent(entry);
    if (!table) return std::nullopt;
    if (entry.type == typeVirtualTable) return table->erase(0, Le16(*table, 0));
    if (table->size() < tailSize) return std::nullopt;
    const size_t end = table->size() - tailSize;
    return table->compare(end + 1, mark.size(), mark) == 0 ? std::optional(table->substr(0, end))
                                                           : std::nullopt;
}

// The blocks are those of a file, which is there twice.
UdfPartition UdfVolume::ReadMetadata(std::string_view map, uint64_t base) const {
    for (const auto& [at, type] : {std::pair<size_t, uint8_t>(40, typeMetadata), {44, typeMetadataMirror}}) {
        const auto entry = ReadFileEntry(base | Le32(map, at));
        const auto extents = entry && entry->type == type ? ReadExtents(*entry) : std::nullopt;
        if (!extents) continue;
        UdfPartition partition;
        uint64_t block = 0;
        for (const Extent& extent : *extents) {
            const uint64_t count = extent.length / blockSize_;
            if (extent.isRecorded)
                Append(partition, block, partitions_[base >> 32], extent.place & UINT32_MAX, count);
            block += count;
            if (partition.size() > mostRuns) return {};
        }
        return partition;
    }
    return {};
}

// --- files and folders ---

std::optional<std::string> UdfVolume::ReadPlace(uint64_t place, uint64_t length) const {
    if (place >> 32 >= partitions_.size()) return std::nullopt;
    return ReadBlocks(Bytes(), blockSize_, partitions_[place >> 32], place & UINT32_MAX, length);
}

std::optional<UdfVolume::FileEntry> UdfVolume::ReadFileEntry(uint64_t place) const {
    const auto bytes = ReadPlace(place, blockSize_);
    if (!bytes) return std::nullopt;
    const bool isExtended = IsTag(*bytes, tagExtendedFileEntry);
    if (!isExtended && !IsTag(*bytes, tagFileEntry)) return std::nullopt;
    const size_t lengths = isExtended ? 208 : 168;
    const uint64_t start = lengths + 8 + uint64_t{Le32(*bytes, lengths)};
    const uint64_t length = Le32(*bytes, lengths + 4);
    if (start > bytes->size() || length > bytes->size() - start) return std::nullopt;
    FileEntry entry;
    entry.type = Byte(*bytes, 27);
    entry.size = Le64(*bytes, 56);
    entry.form = Le16(*bytes, 34) & 7;
    entry.partition = place & ~uint64_t{UINT32_MAX};
    entry.allocation = bytes->substr(start, length);
    return entry;
}

std::optional<std::vector<UdfVolume::Extent>> UdfVolume::ReadExtents(const FileEntry& entry) const {
    if (entry.form != formShort && entry.form != formLong) return std::nullopt;
    const size_t step = entry.form == formShort ? 8 : 16;
    std::vector<Extent> extents;
    std::string descriptors = entry.allocation;
    uint64_t total = 0;
    uint64_t left = longestTable;
    size_t at = 0;
    while (total < entry.size) {
        const uint32_t length = Le32(descriptors, at) & 0x3FFFFFFF;
        const uint32_t kind = Le32(descriptors, at) >> 30;
        const uint64_t place = entry.form == formLong ? PlaceAt(descriptors, at + 4)
                                                      : entry.partition | Le32(descriptors, at + 4);
        if (length == 0 || left < step) return std::nullopt;
        left -= step;
        at += step;
        if (kind != kindContinued) {
            extents.push_back({place, length, kind == kindRecorded});
            total += length;
            continue;
        }
        const auto next = ReadPlace(place, std::min<uint64_t>(length, blockSize_));
        if (!next || !IsTag(*next, tagExtents) || left < next->size()) return std::nullopt;
        left -= next->size();
        descriptors = next->substr(std::min<size_t>(24, next->size())).substr(0, Le32(*next, 20));
        at = 0;
    }
    return extents;
}

std::optional<std::string> UdfVolume::ReadContent(const FileEntry& entry) const {
    if (entry.size > std::min(Bytes().Size(), longestFile)) return std::nullopt;
    if (entry.form == formInside) {
        if (entry.size > entry.allocation.size()) return std::nullopt;
        return entry.allocation.substr(0, entry.size);
    }
    const auto extents = ReadExtents(entry);
    if (!extents) return std::nullopt;
    std::string content;
    for (const Extent& extent : *extents) {
        const uint64_t length = std::min(extent.length, entry.size - content.size());
        const auto piece = extent.isRecorded ? ReadPlace(extent.place, length) : std::string(length, '\0');
        if (!piece) return std::nullopt;
        content += *piece;
    }
    return content;
}

std::optional<std::vector<UdfVolume::Entry>> UdfVolume::List(const Item& folder) const {
    const auto fileEntry = ReadFileEntry(folder.place);
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
            entry.place = PlaceAt(identifier, 24);
            entries.push_back(std::move(entry));
        }
        at += (nameStart + nameLength + 3) / 4 * 4;
    }
    return entries;
}

std::optional<uint64_t> UdfVolume::Length(const Item& file) const {
    const auto fileEntry = ReadFileEntry(file.place);
    return fileEntry ? std::optional(fileEntry->size) : std::nullopt;
}

std::optional<std::string> UdfVolume::Content(const Item& file) const {
    const auto fileEntry = ReadFileEntry(file.place);
    if (!fileEntry || fileEntry->type != typeFile) return std::nullopt;
    return ReadContent(*fileEntry);
}

}  // namespace machine
