#include "machine/media/volumes/iso_volume.h"

#include <algorithm>

#include "machine/api/text/oem_code_page.h"
#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

constexpr uint64_t sectorSize = 2048;
constexpr uint64_t firstDescriptor = 16;
constexpr uint64_t mostDescriptors = 64;
constexpr uint64_t longestFolder = 16ULL * 1024 * 1024;

constexpr uint8_t descriptorPrimary = 1;
constexpr uint8_t descriptorSupplementary = 2;
constexpr uint8_t descriptorEnd = 255;

constexpr uint8_t flagFolder = 0x02;
constexpr uint8_t flagAssociated = 0x04;  // a second stream of the preceding file
constexpr uint8_t flagContinued = 0x80;

constexpr size_t recordHeader = 33;
// Longer than any file, and than the sections of any folder together.
constexpr uint64_t unreadable = uint64_t{1} << 62;

// A Joliet descriptor contains the UCS-2 level of its names.
bool IsJoliet(std::string_view descriptor) {
    const std::string_view escape = descriptor.substr(88, 3);
    return escape == "%/@" || escape == "%/C" || escape == "%/E";
}

std::string WithoutVersion(std::string name) {
    name.erase(std::min(name.find(';'), name.size()));
    if (name.ends_with('.')) name.pop_back();
    return name;
}

// A folder lists itself with the name 0, its parent with the name 1.
bool IsSelfOrParent(std::string_view record) {
    return Byte(record, 32) == 1 && Byte(record, recordHeader) <= 1;
}

}  // namespace

IsoVolume::IsoVolume(VolumeBytes bytes) : ReadOnlyVolume(std::move(bytes)) {
    ReadDescriptors();
}

void IsoVolume::ReadDescriptors() {
    for (uint64_t sector = firstDescriptor; sector < firstDescriptor + mostDescriptors; ++sector) {
        const auto descriptor = Bytes().Read(sector * sectorSize, sectorSize);
        if (!descriptor || descriptor->compare(1, 5, "CD001") != 0) return;
        const uint8_t kind = Byte(*descriptor, 0);
        if (kind == descriptorEnd) return;
        const bool isJoliet = kind == descriptorSupplementary && IsJoliet(*descriptor);
        if (kind != descriptorPrimary && !isJoliet) continue;
        const std::string_view label = std::string_view(*descriptor).substr(40, 32);
        (isJoliet ? jolietLabel_ : label_) = WithoutPadding(isJoliet ? FromUtf16Be(label) : FromOem(label));
        const uint64_t blockSize = Le16(*descriptor, 128);
        if (blockSize != 512 && blockSize != 1024 && blockSize != sectorSize) continue;
        blockSize_ = blockSize;
        isJoliet_ = isJoliet;
        const Entry root = EntryOf(std::string_view(*descriptor).substr(156, 34));
        root_ = static_cast<const Item&>(root);
        root_.isFolder = true;
        if (isJoliet) return;
    }
}

std::string IsoVolume::Label() const {
    return label_.starts_with(jolietLabel_) ? label_ : jolietLabel_;
}

IsoVolume::Entry IsoVolume::EntryOf(std::string_view record) const {
    const std::string_view name =
        record.substr(std::min(recordHeader, record.size())).substr(0, Byte(record, 32));
    const uint8_t flags = Byte(record, 25);
    const bool isInterleaved = Byte(record, 26) != 0;
    const bool isFolderInSections = (flags & flagFolder) != 0 && (flags & flagContinued) != 0;
    Entry entry;
    entry.isFolder = (flags & flagFolder) != 0;
    entry.name = isJoliet_ ? FromUtf16Be(name) : std::string(name);
    if (!entry.isFolder) entry.name = WithoutVersion(entry.name);
    if (entry.isFolder) entry.place = StartOf(record);
    entry.size = isInterleaved || isFolderInSections ? unreadable : Le32(record, 10);
    return entry;
}

// The content follows the extended attributes, whose length in blocks is in the record.
uint64_t IsoVolume::StartOf(std::string_view record) const {
    return (uint64_t{Le32(record, 2)} + Byte(record, 1)) * blockSize_;
}

std::optional<std::vector<IsoVolume::Entry>> IsoVolume::List(const Item& folder) const {
    if (blockSize_ == 0 || folder.size > longestFolder) return std::nullopt;
    const auto bytes = Bytes().Read(folder.place, folder.size);
    if (!bytes) return std::nullopt;
    std::vector<Entry> entries;
    bool isContinued = false;
    for (size_t at = 0; at < bytes->size();) {
        const size_t length = Byte(*bytes, at);
        if (length == 0) {  // no record crosses the end of a sector, which has one block or more
            at = (at / blockSize_ + 1) * blockSize_;
            continue;
        }
        const std::string_view record = std::string_view(*bytes).substr(at, length);
        if (length < recordHeader || record.size() < recordHeader + Byte(record, 32)) return std::nullopt;
        const bool isAssociated = (Byte(record, 25) & flagAssociated) != 0;
        if (!isAssociated && !IsSelfOrParent(record)) {
            Entry entry = EntryOf(record);
            if (isContinued && entry.name == entries.back().name) {
                entries.back().size = std::min(unreadable, entries.back().size + entry.size);
            } else {
                if (isContinued) entries.back().size = unreadable;
                // A file is found by its first record, since each of its sections has one.
                if (!entry.isFolder) entry.place = folder.place + at;
                entries.push_back(std::move(entry));
            }
            isContinued = (Byte(record, 25) & flagContinued) != 0;
        }
        at += length;
    }
    if (isContinued) entries.back().size = unreadable;
    return entries;
}

// The records are those that the folder was listed by.
std::optional<std::string> IsoVolume::Content(const Item& file) const {
    if (file.size > longestFile) return std::nullopt;
    std::string content;
    for (uint64_t at = file.place; content.size() < file.size;) {
        const auto length = Bytes().Read(at, 1);
        const auto record = length ? Bytes().Read(at, Byte(*length, 0)) : std::nullopt;
        if (!record) return std::nullopt;
        if (record->empty()) {
            at = (at / blockSize_ + 1) * blockSize_;
            continue;
        }
        at += record->size();
        if ((Byte(*record, 25) & flagAssociated) != 0) continue;
        const auto section = Bytes().Read(StartOf(*record), Le32(*record, 10));
        if (!section) return std::nullopt;
        content += *section;
    }
    return content;
}

}  // namespace machine
