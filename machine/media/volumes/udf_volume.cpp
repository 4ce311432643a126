#include "machine/media/volumes/udf_volume.h"

#include <algorithm>
#include <iterator>

#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

constexpr uint64_t blockSizes[] = {2048, 512, 1024, 4096};  // the most usual first
constexpr uint64_t longestFolder = 16ULL * 1024 * 1024;
constexpr uint64_t mostDescriptors = 64;

// Tags: the type of a descriptor, in its first two bytes.
constexpr uint16_t tagAnchor = 2;
constexpr uint16_t tagPartition = 5;
constexpr uint16_t tagLogicalVolume = 6;
constexpr uint16_t tagFileSet = 256;
constexpr uint16_t tagFileIdentifier = 257;
constexpr uint16_t tagFileEntry = 261;
constexpr uint16_t tagExtendedFileEntry = 266;

constexpr uint8_t typeFolder = 4;
constexpr uint8_t typeFile = 5;

// How a file entry stores its allocation: in extent descriptors, or the file itself.
constexpr uint16_t formShort = 0;
constexpr uint16_t formLong = 1;
constexpr uint16_t formInside = 3;

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

struct UdfVolume::FileEntry {
    uint8_t type = 0;
    uint64_t size = 0;  // bytes
    uint16_t form = formShort;
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
    }
    blocks_ = 0;
}

// A descriptor's tag has the number of its sector.
std::optional<std::string> UdfVolume::ReadDescriptor(uint64_t sector, uint16_t tag) const {
    auto bytes = Bytes().Read(sector * blockSize_, blockSize_);
    return bytes && IsTag(*bytes, tag) && Le32(*bytes, 12) == sector ? bytes : std::nullopt;
}

// The anchor can be in three places, and refers to two copies of the descriptor sequence.
bool UdfVolume::ReadDescriptors() {
    const uint64_t sectors = Bytes().Size() / blockSize_;
    for (const uint64_t place : {uint64_t{256}, sectors - 1, sectors - 257}) {
        const auto anchor = ReadDescriptor(place, tagAnchor);
        if (!anchor) continue;
        if (!label_) label_.emplace();
        for (const size_t sequence : {size_t{16}, size_t{24}}) {
            if (ReadSequence(Le32(*anchor, sequence + 4), Le32(*anchor, sequence) / blockSize_)) return true;
        }
    }
    return false;
}

bool UdfVolume::ReadSequence(uint64_t first, uint64_t count) {
    std::optional<std::string> logicalVolume;
    std::optional<std::string> partition;
    for (uint64_t sector = first; sector < first + std::min(count, mostDescriptors); ++sector) {
        if (!logicalVolume) logicalVolume = ReadDescriptor(sector, tagLogicalVolume);
        if (!partition) partition = ReadDescriptor(sector, tagPartition);
    }
    if (logicalVolume && label_->empty()) label_ = NameIn(std::string_view(*logicalVolume).substr(84, 128));
    return logicalVolume && partition && ReadRoot(*logicalVolume, *partition);
}

bool UdfVolume::ReadRoot(std::string_view logicalVolume, std::string_view partition) {
    const bool isPlain = Le32(logicalVolume, 212) == blockSize_ && Le32(logicalVolume, 268) == 1 &&
                         Byte(logicalVolume, 440) == 1 && Le16(logicalVolume, 444) == Le16(partition, 22);
    if (!isPlain) return false;
    start_ = Le32(partition, 188);
    blocks_ = Le32(partition, 192);
    const auto fileSet = ReadBlocks(Le32(logicalVolume, 252), blockSize_);
    if (!fileSet || !IsTag(*fileSet, tagFileSet)) return false;
    root_.place = Le32(*fileSet, 404);
    return List(root_).has_value();
}

// --- files and folders ---

std::optional<std::string> UdfVolume::ReadBlocks(uint64_t block, uint64_t length) const {
    if (block + (length + blockSize_ - 1) / blockSize_ > blocks_) return std::nullopt;
    return Bytes().Read((start_ + block) * blockSize_, length);
}

std::optional<UdfVolume::FileEntry> UdfVolume::ReadFileEntry(uint64_t block) const {
    const auto bytes = ReadBlocks(block, blockSize_);
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
    entry.allocation = bytes->substr(start, length);
    return entry;
}

std::optional<std::string> UdfVolume::ReadContent(const FileEntry& entry) const {
    if (entry.size > std::min(Bytes().Size(), longestFile)) return std::nullopt;
    if (entry.form == formInside) {
        if (entry.size > entry.allocation.size()) return std::nullopt;
        return entry.allocation.substr(0, entry.size);
    }
    if (entry.form != formShort && entry.form != formLong) return std::nullopt;
    const size_t step = entry.form == formShort ? 8 : 16;
    std::string content;
    for (size_t at = 0; content.size() < entry.size; at += step) {
        // The top two bits mark extents that are not recorded, and a continuation of the descriptors.
        const uint32_t length = Le32(entry.allocation, at);
        if (length == 0 || length >> 30 != 0) return std::nullopt;
        const auto piece = ReadBlocks(Le32(entry.allocation, at + 4),
                                      std::min<uint64_t>(length, entry.size - content.size()));
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
            entry.place = Le32(identifier, 24);
            entries.push_back(std::move(entry));
        }
        at += (nameStart + nameLength + 3) / 4 * 4;
    }
    return entries;
}

std::optional<std::string> UdfVolume::Content(const Item& file) const {
    const auto fileEntry = ReadFileEntry(file.place);
    if (!fileEntry || fileEntry->type != typeFile) return std::nullopt;
    return ReadContent(*fileEntry);
}

}  // namespace machine
