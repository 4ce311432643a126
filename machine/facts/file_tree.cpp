#include "machine/facts/file_tree.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"

namespace machine {

namespace {

// Where the normalised path is among the sorted entries, or would be inserted.
template <typename Entries>
auto Position(Entries& entries, const std::string& normalized) {
    return std::lower_bound(entries.begin(), entries.end(), UpperCase(normalized),
                            [](const FileTree::Entry& entry, const std::string& folded) {
                                return UpperCase(entry.path) < folded;
                            });
}

}  // namespace

FileTree::FileTree(std::initializer_list<std::pair<std::string, std::string>> files) {
    for (const auto& [path, content] : files) {
        if (path.ends_with('/') || path.ends_with('\\')) {
            PutFolder(path);
        } else {
            PutFile(path, content);
        }
    }
}

void FileTree::PutFile(std::string_view path, std::string content) {
    const std::string normalized = Normalized(path);
    PutFolder(FolderOf(normalized));
    const auto at = Position(entries_, normalized);
    if (at != entries_.end() && SameName(at->path, normalized)) {
        at->content = std::move(content);
    } else {
        entries_.insert(at, {normalized, false, std::move(content)});
    }
}

void FileTree::PutFolder(std::string_view path) {
    const std::string normalized = Normalized(path);
    if (normalized.empty() || Find(normalized) != nullptr) return;
    PutFolder(FolderOf(normalized));
    entries_.insert(Position(entries_, normalized), {normalized, true, {}});
}

bool FileTree::RemoveFile(std::string_view path) {
    const Entry* const entry = Find(path);
    if (entry == nullptr || entry->folder) return false;
    entries_.erase(entries_.begin() + (entry - entries_.data()));
    return true;
}

const FileTree::Entry* FileTree::Find(std::string_view path) const {
    const std::string normalized = Normalized(path);
    const auto at = Position(entries_, normalized);
    return at != entries_.end() && SameName(at->path, normalized) ? &*at : nullptr;
}

}  // namespace machine
