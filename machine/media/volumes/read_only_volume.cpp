#include "machine/media/volumes/read_only_volume.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"
#include "machine/media/device/store_errors.h"

namespace machine {

uint32_t ReadOnlyVolume::Look(std::string_view path, Entry& found) const {
    found = Root();
    for (const std::string& name : NamesOf(path)) {
        if (!found.isFolder) return errorFileNotFound;
        const auto entries = List(found);
        if (!entries) return errorFileCorrupt;
        const auto entry = std::find_if(entries->begin(), entries->end(), [&](const Entry& candidate) {
            return SameName(candidate.name, name) || SameName(candidate.alias, name);
        });
        if (entry == entries->end()) return errorFileNotFound;
        found = *entry;
    }
    return 0;
}

FileKind ReadOnlyVolume::Find(std::string_view path) {
    Entry found;
    if (!IsReadable() || Look(path, found) != 0) return FileKind::None;
    return found.isFolder ? FileKind::Folder : FileKind::File;
}

uint32_t ReadOnlyVolume::Read(std::string_view path, std::string& content) {
    Entry found;
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

}  // namespace machine
