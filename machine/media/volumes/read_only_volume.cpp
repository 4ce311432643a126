#include "machine/media/volumes/read_only_volume.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"
#include "machine/media/device/store_errors.h"

namespace machine {

namespace {

// No file system here describes a file in fewer bytes.
constexpr uint64_t shortestEntry = 32;

template <typename Named>
bool IsBefore(const Named& left, const Named& right) {
    return left.first < right.first;
}

}  // namespace

ReadOnlyVolume::ReadOnlyVolume(VolumeBytes bytes)
    : bytes_(std::move(bytes)), entriesLeft_(bytes_.Size() / shortestEntry) {}

// Folders that share bytes can list more entries than fit into the volume.
std::optional<ReadOnlyVolume::Folder> ReadOnlyVolume::ReadFolder(const Item& folder) {
    auto entries = List(folder);
    if (!entries || entries->size() > entriesLeft_) return std::nullopt;
    entriesLeft_ -= entries->size();
    Folder read;
    for (const Entry& entry : *entries) {
        read.emplace_back(UpperCase(entry.name), entry);
        if (!entry.alias.empty()) read.emplace_back(UpperCase(entry.alias), entry);
    }
    // Of two entries with one name the first counts.
    std::stable_sort(read.begin(), read.end(), IsBefore<NamedItem>);
    return read;
}

const ReadOnlyVolume::Folder* ReadOnlyVolume::Open(const Item& folder) {
    const std::pair place(folder.place, folder.size);
    auto known = folders_.find(place);
    if (known == folders_.end()) known = folders_.emplace(place, ReadFolder(folder)).first;
    return known->second ? &*known->second : nullptr;
}

uint32_t ReadOnlyVolume::Look(std::string_view path, Item& found) {
    found = Root();
    for (const std::string& name : NamesOf(path)) {
        if (!found.isFolder) return errorFileNotFound;
        const Folder* const folder = Open(found);
        if (folder == nullptr) return errorFileCorrupt;
        const NamedItem wanted(UpperCase(name), Item());
        const auto entry = std::lower_bound(folder->begin(), folder->end(), wanted, IsBefore<NamedItem>);
        if (entry == folder->end() || entry->first != wanted.first) return errorFileNotFound;
        found = entry->second;
    }
    return 0;
}

FileKind ReadOnlyVolume::Find(std::string_view path) {
    Item found;
    if (Open(Root()) == nullptr || Look(path, found) != 0) return FileKind::None;
    return found.isFolder ? FileKind::Folder : FileKind::File;
}

uint32_t ReadOnlyVolume::Read(std::string_view path, std::string& content) {
    Item found;
    if (const uint32_t error = Look(path, found); error != 0) return error;
    if (found.isFolder) return errorAccessDenied;
    auto bytes = Content(found);
    if (!bytes) return errorFileCorrupt;
    content = std::move(*bytes);
    return 0;
}

uint32_t ReadOnlyVolume::Write(std::string_view, std::string_view) {
    return errorWriteProtect;
}

uint32_t ReadOnlyVolume::Remove(std::string_view) {
    return errorWriteProtect;
}

FileEntry ReadOnlyVolume::Described(const Entry& entry) const {
    const std::string& name = entry.name.empty() ? entry.alias : entry.name;
    if (entry.isFolder) return {name, FileKind::Folder};
    return {name, FileKind::File, Length(entry)};
}

// The names of a folder are read again, as they are stored.
uint32_t ReadOnlyVolume::List(std::string_view path, std::vector<FileEntry>& entries) {
    Item found;
    if (const uint32_t error = Look(path, found); error != 0) return error;
    const std::vector<std::string> names = NamesOf(path);
    if (!found.isFolder && names.empty()) return errorFileCorrupt;  // a root that is no folder
    if (!found.isFolder) {
        entries.push_back({names.back(), FileKind::File, Length(found)});
        return 0;
    }
    const auto listed = Open(found) != nullptr ? List(found) : std::nullopt;
    if (!listed) return errorFileCorrupt;
    for (const Entry& entry : *listed)
        entries.push_back(Described(entry));
    return 0;
}

std::string ReadOnlyVolume::WhyUnchangeable() {
    return "is not NTFS: only files on NTFS volumes are changed on an image";
}

}  // namespace machine
