#include "machine/media/table/gpt_copy.h"

#include <zlib.h>

#include <cstring>

#include "base/utf.h"
#include "machine/media/device/little_endian.h"

namespace machine {

namespace {

// Offsets in a header.
constexpr size_t revisionAt = 8;
constexpr size_t sizeAt = 12;
constexpr size_t checksumAt = 16;
constexpr size_t placeAt = 24;
constexpr size_t otherPlaceAt = 32;
constexpr size_t firstUsableAt = 40;
constexpr size_t lastUsableAt = 48;
constexpr size_t diskAt = 56;
constexpr size_t entriesPlaceAt = 72;
constexpr size_t entryCountAt = 80;
constexpr size_t entrySizeAt = 84;
constexpr size_t entriesChecksumAt = 88;
constexpr size_t headerSize = 92;

// And in an entry.
constexpr size_t idAt = 16;
constexpr size_t firstAt = 32;
constexpr size_t lastAt = 40;
constexpr size_t attributesAt = 48;
constexpr size_t nameAt = 56;
constexpr size_t nameUnits = 36;
constexpr size_t entrySize = 128;

constexpr std::string_view signature = "EFI PART";
constexpr uint32_t revision = 0x00010000;

uint32_t Checksum(std::string_view bytes) {
    return static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

Guid GuidAt(std::string_view bytes, size_t at) {
    Guid guid;
    std::memcpy(static_cast<GUID*>(&guid), bytes.substr(at, sizeof(GUID)).data(), sizeof(GUID));
    return guid;
}

std::string NameAt(std::string_view bytes, size_t at) {
    WideString name;
    for (size_t unit = 0; unit < nameUnits; ++unit) {
        const auto character = static_cast<WCHAR>(Le16(bytes, at + unit * 2));
        if (character == 0) break;
        name += character;
    }
    return ToUtf8(name);
}

uint32_t HeaderChecksum(std::string header, uint32_t size) {
    header.replace(checksumAt, 4, 4, '\0');
    return Checksum(std::string_view(header).substr(0, size));
}

std::optional<std::string> HeaderProblem(const std::string& header, uint64_t place) {
    if (!header.starts_with(signature)) return "is missing";
    const uint32_t size = Le32(header, sizeAt);
    if (size < headerSize || size > header.size()) return "is damaged: its header has an impossible length";
    if (HeaderChecksum(header, size) != Le32(header, checksumAt))
        return "is damaged: the checksum of its header is wrong";
    if (Le32(header, revisionAt) != revision) return "is of a revision that is not known here";
    if (Le64(header, placeAt) != place) return "is damaged: it was written for another place";
    return std::nullopt;
}

std::optional<std::string> ReadEntries(const ImageFile& image, uint64_t sectorSize, uint32_t checksum,
                                       GptCopy& copy) {
    constexpr uint64_t longest = uint64_t{1} << 20;  // 64 times the usual length
    const uint64_t length = uint64_t{copy.entrySize} * copy.entryCount;
    if (length > longest) return "is damaged: its entries claim to take " + std::to_string(length) + " bytes";
    if (copy.entrySize < entrySize) return "is damaged: its entries have an impossible length";
    copy.entryBytes.resize(static_cast<size_t>(length));
    const bool isInside = copy.entriesPlace <= image.Size() / sectorSize;
    if (!isInside ||
        !image.Read(copy.entriesPlace * sectorSize, copy.entryBytes.data(), copy.entryBytes.size()))
        return "has entries that cannot be read";
    if (Checksum(copy.entryBytes) != checksum) return "is damaged: the checksum of its entries is wrong";
    return std::nullopt;
}

GptEntry EntryOf(std::string_view bytes) {
    return {.type = GuidAt(bytes, 0),
            .id = GuidAt(bytes, idAt),
            .first = Le64(bytes, firstAt),
            .last = Le64(bytes, lastAt),
            .attributes = Le64(bytes, attributesAt),
            .name = NameAt(bytes, nameAt)};
}

std::vector<GptEntry> UsedEntries(const GptCopy& copy) {
    std::vector<GptEntry> used;
    for (size_t at = 0; at < copy.entryBytes.size(); at += copy.entrySize) {
        GptEntry entry = EntryOf(std::string_view(copy.entryBytes).substr(at, copy.entrySize));
        entry.slot = static_cast<uint32_t>(at / copy.entrySize + 1);
        if (entry.type != Guid()) used.push_back(std::move(entry));
    }
    return used;
}

}  // namespace

bool GptCopy::Agrees(const GptCopy& other) const {
    return disk == other.disk && firstUsable == other.firstUsable && lastUsable == other.lastUsable &&
           entries == other.entries;
}

GptCopy ReadGptCopy(const ImageFile& image, uint64_t place, uint64_t sectorSize) {
    GptCopy copy;
    copy.place = place;
    std::string header(static_cast<size_t>(sectorSize), '\0');
    if (place >= image.Size() / sectorSize || !image.Read(place * sectorSize, header.data(), header.size())) {
        copy.problem = "cannot be read";
        return copy;
    }
    copy.problem = HeaderProblem(header, place);
    if (copy.problem) return copy;
    copy.otherPlace = Le64(header, otherPlaceAt);
    copy.firstUsable = Le64(header, firstUsableAt);
    copy.lastUsable = Le64(header, lastUsableAt);
    copy.disk = GuidAt(header, diskAt);
    copy.entriesPlace = Le64(header, entriesPlaceAt);
    copy.entryCount = Le32(header, entryCountAt);
    copy.entrySize = Le32(header, entrySizeAt);
    copy.problem = ReadEntries(image, sectorSize, Le32(header, entriesChecksumAt), copy);
    if (!copy.problem) copy.entries = UsedEntries(copy);
    return copy;
}

std::string GptHeaderSector(const GptCopy& copy, uint64_t sectorSize) {
    std::string header(static_cast<size_t>(sectorSize), '\0');
    header.replace(0, signature.size(), signature);
    PutLe32(header, revisionAt, revision);
    PutLe32(header, sizeAt, headerSize);
    PutLe64(header, placeAt, copy.place);
    PutLe64(header, otherPlaceAt, copy.otherPlace);
    PutLe64(header, firstUsableAt, copy.firstUsable);
    PutLe64(header, lastUsableAt, copy.lastUsable);
    header.replace(diskAt, sizeof(GUID), reinterpret_cast<const char*>(static_cast<const GUID*>(&copy.disk)),
                   sizeof(GUID));
    PutLe64(header, entriesPlaceAt, copy.entriesPlace);
    PutLe32(header, entryCountAt, copy.entryCount);
    PutLe32(header, entrySizeAt, copy.entrySize);
    PutLe32(header, entriesChecksumAt, Checksum(copy.entryBytes));
    PutLe32(header, checksumAt, HeaderChecksum(header, headerSize));
    return header;
}

}  // namespace machine
