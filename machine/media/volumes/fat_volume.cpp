#include "machine/media/volumes/fat_volume.h"

#include <algorithm>

#include "base/utf.h"
#include "machine/api/text/oem_code_page.h"

namespace machine {

namespace {

constexpr uint64_t entrySize = 32;
// The longest folder that the format allows.
constexpr uint64_t longestFolder = 65536 * entrySize;

// --- folder entries ---

constexpr uint8_t endOfFolder = 0x00;
constexpr uint8_t deletedEntry = 0xE5;
constexpr uint8_t attributeLabel = 0x08;
constexpr uint8_t attributeFolder = 0x10;
constexpr uint8_t attributesOfLongName = 0x0F;
constexpr uint8_t attributesMask = 0x3F;
constexpr uint8_t lastOfLongName = 0x40;
constexpr size_t charactersAPart = 13;
constexpr size_t longestName = 255;

uint8_t ShortNameSum(std::string_view entry) {
    uint8_t sum = 0;
    for (size_t i = 0; i < 11; ++i)
        sum = static_cast<uint8_t>(((sum & 1) << 7) + (sum >> 1) + Byte(entry, i));
    return sum;
}

// A name that begins with the mark of deleted entries has another byte there.
std::string WithFirstByte(std::string_view name) {
    constexpr char insteadOfDeleted = 0x05;
    std::string whole(name);
    if (whole.starts_with(insteadOfDeleted)) whole[0] = static_cast<char>(deletedEntry);
    return whole;
}

std::string LowerCase(std::string text) {
    for (char& unit : text)
        unit = unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit - 'A' + 'a') : unit;
    return text;
}

// Converts "README  TXT" to README.TXT. Windows keeps in two bits of the entry that a part is in lower case.
std::string ShortName(std::string_view entry) {
    constexpr uint8_t baseIsLower = 0x08;
    constexpr uint8_t extensionIsLower = 0x10;
    const std::string name = WithFirstByte(entry.substr(0, 11));
    const auto trimmed = [&](size_t at, size_t length, uint8_t isLower) {
        std::string part = name.substr(at, length);
        part.erase(part.find_last_not_of(' ') + 1);
        return FromOem((Byte(entry, 12) & isLower) != 0 ? LowerCase(part) : part);
    };
    const std::string base = trimmed(0, 8, baseIsLower);
    const std::string extension = trimmed(8, 3, extensionIsLower);
    return extension.empty() ? base : base + '.' + extension;
}

// --- labels: eleven bytes, padded with blanks ---

constexpr std::string_view unnamed = "NO NAME    ";

// The first entry that is a label; empty if there is none.
std::string RootLabel(std::string_view folder) {
    for (size_t at = 0; at < folder.size() && Byte(folder, at) != endOfFolder; at += entrySize) {
        const std::string_view raw = folder.substr(at, entrySize);
        const uint8_t attributes = Byte(raw, 11);
        const bool isLongName = (attributes & attributesMask) == attributesOfLongName;
        const bool hasContent = Le16(raw, 20) != 0 || Le16(raw, 26) != 0;
        const bool isLabel = (attributes & (attributeLabel | attributeFolder)) == attributeLabel;
        if (Byte(raw, 0) != deletedEntry && isLabel && !isLongName && !hasContent)
            return WithFirstByte(raw.substr(0, unnamed.size()));
    }
    return "";
}

// Where the boot sector has one, a mark precedes it and the serial number.
std::string BootSectorLabel(std::string_view sector) {
    constexpr uint8_t mark = 0x29;
    const size_t at = Le16(sector, 22) == 0 ? 66 : 38;
    return Byte(sector, at) == mark ? std::string(sector.substr(at + 5, unnamed.size())) : "";
}

// The entries of a long name precede the short entry, the last part first.
class LongName {
  public:
    void Clear() {
        characters_.clear();
        expected_ = noPart;
    }

    void Add(std::string_view entry) {
        const uint8_t order = Byte(entry, 0);
        if ((order & lastOfLongName) != 0) {
            Clear();
            sum_ = Byte(entry, 13);
        } else if (expected_ != (order & 0x1F) || sum_ != Byte(entry, 13)) {
            Clear();
            return;
        }
        expected_ = static_cast<uint8_t>((order & 0x1F) - 1);
        std::u16string part;
        for (const auto& [at, count] : {std::pair<size_t, size_t>{1, 5}, {14, 6}, {28, 2}}) {
            for (size_t i = 0; i < count; ++i)
                part += static_cast<char16_t>(Le16(entry, at + 2 * i));
        }
        characters_.insert(0, part);
        if (characters_.size() > longestName + charactersAPart) Clear();
    }

    // The long name of the short entry that follows; empty if it belongs to another entry.
    std::string Of(std::string_view shortEntry) const {
        if (characters_.empty() || expected_ != 0 || sum_ != ShortNameSum(shortEntry)) return "";
        return ToUtf8(std::u16string_view(characters_).substr(0, characters_.find(u'\0')));
    }

  private:
    static constexpr uint8_t noPart = 0xFF;

    std::u16string characters_;
    uint8_t expected_ = noPart;  // number of the next part
    uint8_t sum_ = 0;
};

}  // namespace

// --- the volume ---

FatVolume::FatVolume(VolumeBytes bytes) : ReadOnlyVolume(std::move(bytes)), layout_(ReadFatLayout(Bytes())) {
    const auto isWhole = [&](const FatLayout& layout) {
        return layout.end <= Bytes().Size() &&
               (uint64_t{layout.clusters} + firstCluster) * layout.entryBits <= layout.tableSize * 8;
    };
    if (layout_ && !isWhole(*layout_)) layout_.reset();
}

std::optional<std::string> FatVolume::FolderBytes(const Item& folder) const {
    if (!layout_ || (folder.place == 0 && layout_->rootFolderSize == 0)) return std::nullopt;
    if (folder.place != 0) return ReadWholeChain(Bytes(), *layout_, folder.place, longestFolder);
    return Bytes().Read(layout_->rootFolder, layout_->rootFolderSize);
}

FatVolume::Item FatVolume::Root() const {
    Item root;
    root.isFolder = true;
    if (layout_ && layout_->entryBits == 32) root.place = layout_->rootCluster;
    return root;
}

std::optional<std::vector<FatVolume::Entry>> FatVolume::List(const Item& folder) const {
    const auto bytes = FolderBytes(folder);
    if (!bytes) return std::nullopt;
    std::vector<Entry> entries;
    LongName longName;
    for (size_t at = 0; at < bytes->size(); at += entrySize) {
        const std::string_view raw = std::string_view(*bytes).substr(at, entrySize);
        const uint8_t attributes = Byte(raw, 11);
        if (Byte(raw, 0) == endOfFolder) break;
        if (Byte(raw, 0) != deletedEntry && (attributes & attributesMask) == attributesOfLongName) {
            longName.Add(raw);
            continue;
        }
        const bool isUsed = Byte(raw, 0) != deletedEntry && (attributes & attributeLabel) == 0;
        Entry entry;
        entry.alias = ShortName(raw);
        entry.name = longName.Of(raw);
        entry.isFolder = (attributes & attributeFolder) != 0;
        const uint64_t high = layout_->entryBits == 32 ? Le16(raw, 20) : 0;
        entry.place = high << 16 | Le16(raw, 26);
        entry.size = Le32(raw, 28);
        longName.Clear();
        // Only the root is outside the clusters, and no entry but ".." refers to it.
        const bool isPossible = !entry.isFolder || IsCluster(*layout_, entry.place);
        if (isUsed && isPossible && entry.alias != "." && entry.alias != "..")
            entries.push_back(std::move(entry));
    }
    return entries;
}

std::string FatVolume::Label() const {
    std::string label;
    if (const auto bytes = FolderBytes(Root())) label = RootLabel(*bytes);
    if (label.empty() || label == unnamed)
        label = BootSectorLabel(Bytes().Read(0, diskSectorSize).value_or(""));
    return label == unnamed ? "" : FromOem(label);
}

// Entry 1 of the table is no cluster's: its highest bits are set on a volume that was shut down, and without
// errors of the medium.
VolumeCondition FatVolume::Check() {
    if (!layout_ || Find("") != FileKind::Folder) return VolumeCondition::Damaged;
    if (layout_->entryBits == 12) return VolumeCondition::Unknown;
    const uint64_t bytes = layout_->entryBits / 8;
    const auto entry = Bytes().Read(layout_->table + bytes, bytes);
    if (!entry) return VolumeCondition::Damaged;
    const uint32_t marks = bytes == 4 ? 0x0C000000 : 0xC000;
    const uint32_t value = bytes == 4 ? Le32(*entry, 0) : Le16(*entry, 0);
    return (value & marks) == marks ? VolumeCondition::Clean : VolumeCondition::Dirty;
}

std::optional<std::string> FatVolume::Content(const Item& file) const {
    if (file.size > std::min(Bytes().Size(), longestFile)) return std::nullopt;
    return ReadChain(Bytes(), *layout_, file.place, file.size);
}

}  // namespace machine
