#include "machine/media/volumes/ntfs_label.h"

#include <algorithm>
#include <bit>

#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

constexpr uint64_t volumeRecord = 3;
constexpr uint32_t attributeVolumeName = 0x60;
constexpr uint32_t attributesEnd = 0xFFFFFFFF;
constexpr uint64_t longestRecord = 65536;
// Each such piece of a record ends with a sequence number, whose place another number had.
constexpr size_t sequencedPiece = 512;

// The file table; its first records are contiguous.
struct FileTable {
    uint64_t start = 0;  // bytes
    uint64_t recordSize = 0;
};

// Negative: the exponent of a power of two, in bytes. Otherwise clusters.
uint64_t RecordSize(int8_t field, uint64_t clusterSize) {
    if (field > 0) return static_cast<uint64_t>(field) * clusterSize;
    return field < -31 ? 0 : uint64_t{1} << -field;
}

std::optional<FileTable> ReadFileTable(const VolumeBytes& bytes) {
    const auto sector = bytes.Read(0, diskSectorSize);
    if (!sector) return std::nullopt;
    const uint64_t sectorSize = Le16(*sector, 11);
    const uint64_t sectorsPerCluster = Byte(*sector, 13);
    // Fields of other file systems, which are not used here.
    const bool isClean = Le16(*sector, 14) == 0 && Byte(*sector, 16) == 0 && Le32(*sector, 17) == 0 &&
                         Le16(*sector, 22) == 0 && Le32(*sector, 32) == 0;
    if (!isClean || sectorSize < 256 || sectorSize > 4096 || !std::has_single_bit(sectorsPerCluster))
        return std::nullopt;
    const uint64_t clusterSize = sectorSize * sectorsPerCluster;
    const uint64_t cluster = Le64(*sector, 48);
    FileTable table;
    table.recordSize = RecordSize(static_cast<int8_t>(Byte(*sector, 64)), clusterSize);
    if (cluster > bytes.Size() / clusterSize || table.recordSize < sequencedPiece ||
        table.recordSize > longestRecord) {
        return std::nullopt;
    }
    table.start = cluster * clusterSize;
    return table;
}

// The record, with what belongs in the places of its sequence numbers.
std::optional<std::string> ReadRecord(const VolumeBytes& bytes, const FileTable& table, uint64_t number) {
    auto record = bytes.Read(table.start + number * table.recordSize, table.recordSize);
    if (!record || !record->starts_with("FILE")) return std::nullopt;
    size_t originals = Le16(*record, 4);
    for (size_t end = sequencedPiece; end <= record->size(); end += sequencedPiece) {
        originals += 2;
        const uint16_t original = Le16(*record, originals);
        (*record)[end - 2] = static_cast<char>(original & 0xFF);
        (*record)[end - 1] = static_cast<char>(original >> 8);
    }
    return record;
}

std::string LabelIn(std::string_view record) {
    uint64_t length = 0;
    for (uint64_t at = Le16(record, 20); at < record.size(); at += length) {
        const std::string_view attribute = record.substr(at);
        length = Le32(attribute, 4);
        if (length == 0 || Le32(attribute, 0) == attributesEnd) break;
        if (Le32(attribute, 0) != attributeVolumeName) continue;
        const size_t start = std::min<size_t>(Le16(attribute, 20), attribute.size());
        return FromUtf16Le(attribute.substr(start, Le32(attribute, 16)));
    }
    return "";
}

}  // namespace

std::optional<std::string> NtfsLabel(const VolumeBytes& bytes) {
    const auto table = ReadFileTable(bytes);
    if (!table || !ReadRecord(bytes, *table, 0)) return std::nullopt;
    const auto record = ReadRecord(bytes, *table, volumeRecord);
    return record ? std::optional(LabelIn(*record)) : std::nullopt;
}

}  // namespace machine
