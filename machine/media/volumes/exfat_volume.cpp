#include "machine/media/volumes/exfat_volume.h"

#include <algorithm>
#include <bit>

#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

constexpr size_t entrySize = 32;
constexpr uint64_t longestFolder = 16ULL * 1024 * 1024;

constexpr uint8_t endOfFolder = 0x00;
constexpr uint8_t entryLabel = 0x83;
constexpr uint8_t entryFile = 0x85;
constexpr uint8_t entryStream = 0xC0;
constexpr uint8_t entryName = 0xC1;

constexpr uint8_t attributeFolder = 0x10;
constexpr uint8_t flagContiguous = 0x02;  // the allocation table does not link the clusters
constexpr size_t longestLabel = 11;       // characters
constexpr size_t nameSize = 30;           // bytes of a name in one entry

// All of the set but the sum itself.
bool HasChecksum(std::string_view set) {
    uint16_t sum = 0;
    for (size_t at = 0; at < set.size(); ++at) {
        if (at != 2 && at != 3) sum = static_cast<uint16_t>(std::rotr(sum, 1) + Byte(set, at));
    }
    return sum == Le16(set, 2);
}

// A file is a set of entries: one with its attributes, one with its content, and those of its name.
std::string NameIn(std::string_view set) {
    const size_t length = 2 * size_t{Byte(set, entrySize + 3)};
    std::string name;
    for (size_t at = 2 * entrySize; at < set.size() && name.size() < length; at += entrySize) {
        if (Byte(set, at) != entryName) return "";
        name += set.substr(at + 2, nameSize);
    }
    return name.size() < length ? "" : FromUtf16Le(std::string_view(name).substr(0, length));
}

}  // namespace

ExfatVolume::ExfatVolume(VolumeBytes bytes)
    : ReadOnlyVolume(std::move(bytes)), layout_(ReadExfatLayout(Bytes())) {}

std::optional<std::string> ExfatVolume::Label() const {
    if (!layout_) return std::nullopt;
    const std::string folder = FolderBytes(Root()).value_or("");
    for (size_t at = 0; at < folder.size() && Byte(folder, at) != endOfFolder; at += entrySize) {
        if (Byte(folder, at) != entryLabel) continue;
        return FromUtf16Le(folder.substr(at + 2, 2 * std::min<size_t>(Byte(folder, at + 1), longestLabel)));
    }
    return "";
}

// The place of an item is its first cluster, doubled, and one more if its clusters are contiguous.
ExfatVolume::Item ExfatVolume::Root() const {
    Item root;
    root.isFolder = true;
    if (layout_) root.place = uint64_t{layout_->rootCluster} * 2;
    return root;
}

std::optional<std::string> ExfatVolume::RecordedBytes(const Item& item) const {
    const uint64_t length = item.size - item.unrecorded;
    if (length == 0) return "";
    const bool isContiguous = item.place % 2 != 0;
    return (isContiguous ? ReadClusters : ReadChain)(Bytes(), *layout_, item.place / 2, length);
}

// The length of the root folder is that of its chain.
std::optional<std::string> ExfatVolume::FolderBytes(const Item& folder) const {
    if (!layout_ || layout_->end > Bytes().Size() || folder.size > longestFolder) return std::nullopt;
    if (folder.place == Root().place)
        return ReadWholeChain(Bytes(), *layout_, folder.place / 2, longestFolder);
    return RecordedBytes(folder);
}

std::optional<std::vector<ExfatVolume::Entry>> ExfatVolume::List(const Item& folder) const {
    const auto bytes = FolderBytes(folder);
    if (!bytes) return std::nullopt;
    std::vector<Entry> entries;
    for (size_t at = 0; at < bytes->size() && Byte(*bytes, at) != endOfFolder; at += entrySize) {
        if (Byte(*bytes, at) != entryFile) continue;
        const size_t size = entrySize * (1 + size_t{Byte(*bytes, at + 1)});
        const std::string_view set = std::string_view(*bytes).substr(at, size);
        const std::string_view stream = set.substr(std::min(entrySize, set.size()));
        if (set.size() != size || !HasChecksum(set) || Byte(stream, 0) != entryStream) continue;
        Entry entry;
        entry.name = NameIn(set);
        entry.isFolder = (Le16(set, 4) & attributeFolder) != 0;
        entry.place = uint64_t{Le32(stream, 20)} * 2 + ((Byte(stream, 1) & flagContiguous) != 0 ? 1 : 0);
        entry.size = Le64(stream, 24);
        const uint64_t recorded = Le64(stream, 8);
        if (entry.name.empty() || recorded > entry.size) continue;
        entry.unrecorded = entry.size - recorded;
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::optional<std::string> ExfatVolume::Content(const Item& file) const {
    if (file.size > std::min(Bytes().Size(), longestFile)) return std::nullopt;
    auto content = RecordedBytes(file);
    if (content) content->resize(static_cast<size_t>(file.size));
    return content;
}

}  // namespace machine
