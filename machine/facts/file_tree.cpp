#include "machine/facts/file_tree.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"

namespace machine {

namespace {

std::string Folded(std::string_view path) {
    return UpperCase(Normalized(path));
}

template <typename Entries>
auto Position(Entries& entries, const std::string& folded) {
    return std::lower_bound(
        entries.begin(), entries.end(), folded,
        [](const FileTree::Entry& entry, const std::string& path) { return Folded(entry.path) < path; });
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
    const auto at = Position(entries_, Folded(normalized));
    if (at != entries_.end() && Folded(at->path) == Folded(normalized)) {
        at->content = std::move(content);
    } else {
        entries_.insert(at, {normalized, false, std::move(content)});
    }
}

void FileTree::PutFolder(std::string_view path) {
    const std::string normalized = Normalized(path);
    if (normalized.empty() || Find(normalized) != nullptr) return;
    PutFolder(FolderOf(normalized));
    entries_.insert(Position(entries_, Folded(normalized)), {normalized, true, {}});
}

bool FileTree::RemoveFile(std::string_view path) {
    const Entry* const entry = Find(path);
    if (entry == nullptr || entry->folder) return false;
    entries_.erase(entries_.begin() + (entry - entries_.data()));
    return true;
}

const FileTree::Entry* FileTree::Find(std::string_view path) const {
    const std::string folded = Folded(path);
    const auto at = Position(entries_, folded);
    return at != entries_.end() && Folded(at->path) == folded ? &*at : nullptr;
}

}  // namespace machine
