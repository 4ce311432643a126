#include "machine/media/volumes/exfat_volume.h"

#include <algorithm>
#include <bit>

#include "machine/media/volumes/stored_text.h"

namespace machine {

namespace {

// --- the boot sectors ---

constexpr uint64_t bootSectors = 11;  // that the checksum in the next one covers
constexpr uint64_t leastTableSector = 24;
constexpr uint64_t mostClusters = 0xFFFFFFF5;

bool IsBootSector(std::string_view sector) {
    return sector.starts_with(
               "\xEB\x76\x90"
               "EXFAT   ") &&
           sector.substr(11, 53).find_first_not_of('\0') == std::string_view::npos &&
           sector.substr(510, 2) == "\x55\xAA";
}

// Flags and the share in use change without a new checksum.
bool IsUnchecked(size_t at) {
    return at == 106 || at == 107 || at == 112;
}

bool HasBootChecksum(const VolumeBytes& bytes, uint64_t sectorSize) {
    const auto boot = bytes.Read(0, (bootSectors + 1) * sectorSize);
    if (!boot) return false;
    uint32_t sum = 0;
    for (size_t at = 0; at < bootSectors * sectorSize; ++at) {
        if (!IsUnchecked(at)) sum = std::rotr(sum, 1) + Byte(*boot, at);
    }
    for (size_t at = bootSectors * sectorSize; at < boot->size(); at += 4) {
        if (Le32(*boot, at) != sum) return false;
    }
    return true;
}

// --- folder entries ---

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
constexpr size_t longestSet = 19;         // entries: no name needs more

// All of the set but the sum itself.
bool HasSetChecksum(std::string_view set) {
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
    : ReadOnlyVolume(std::move(bytes)), layout_(ReadLayout(Bytes())) {}

std::optional<ExfatVolume::Layout> ExfatVolume::ReadLayout(const VolumeBytes& bytes) {
    const auto sector = bytes.Read(0, diskSectorSize);
    if (!sector || !IsBootSector(*sector)) return std::nullopt;
    const uint64_t sectors = Le64(*sector, 72);
    const uint64_t tableSector = Le32(*sector, 80);
    const uint64_t tableSectors = Le32(*sector, 84);
    const uint64_t dataSector = Le32(*sector, 88);
    const uint64_t clusters = Le32(*sector, 92);
    const uint32_t sectorShift = Byte(*sector, 108);
    const uint32_t clusterShift = Byte(*sector, 109);
    const uint64_t tables = Byte(*sector, 110);
    const bool usesSecondTable = tables == 2 && (Le16(*sector, 106) & 1) != 0;
    if (sectorShift < 9 || sectorShift > 12 || clusterShift > 25 - sectorShift || tables == 0 || tables > 2)
        return std::nullopt;
    const bool isInOrder = tableSector >= leastTableSector && clusters <= mostClusters &&
                           (clusters + 2) * 4 <= tableSectors << sectorShift &&
                           tableSector + tables * tableSectors <= dataSector &&
                           dataSector + (clusters << clusterShift) <= sectors &&
                           sectors <= UINT64_MAX >> sectorShift;
    if (!isInOrder || !HasBootChecksum(bytes, uint64_t{1} << sectorShift)) return std::nullopt;
    Layout layout;
    layout.entryBits = 32;
    layout.entryMask = 0xFFFFFFFF;
    layout.clusters = static_cast<uint32_t>(clusters);
    layout.rootCluster = Le32(*sector, 96);
    layout.clusterSize = uint64_t{1} << (sectorShift + clusterShift);
    layout.table = (tableSector + (usesSecondTable ? tableSectors : 0)) << sectorShift;
    layout.data = dataSector << sectorShift;
    layout.end = sectors << sectorShift;
    return layout;
}

VolumeCondition ExfatVolume::Check() {
    constexpr size_t flagsAt = 106;
    constexpr uint8_t dirtyOrFailing = 0x06;
    const auto sector = Bytes().Read(0, diskSectorSize);
    if (!layout_ || !sector || Find("") != FileKind::Folder) return VolumeCondition::Damaged;
    return (Byte(*sector, flagsAt) & dirtyOrFailing) == 0 ? VolumeCondition::Clean : VolumeCondition::Dirty;
}

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
        const size_t size = entrySize * std::min(longestSet, 1 + size_t{Byte(*bytes, at + 1)});
        const std::string_view set = std::string_view(*bytes).substr(at, size);
        const std::string_view stream = set.substr(std::min(entrySize, set.size()));
        if (set.size() != size || !HasSetChecksum(set) || Byte(stream, 0) != entryStream) continue;
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
