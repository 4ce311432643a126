#include "machine/facts/file_tree.h"

#include <algorithm>

namespace machine {

namespace {

// The path with slashes only, none at either end.
std::string Normal(std::string_view path) {
    std::string normal(path);
    std::replace(normal.begin(), normal.end(), '\\', '/');
    while (!normal.empty() && normal.back() == '/')
        normal.pop_back();
    const size_t start = normal.find_first_not_of('/');
    return start == std::string::npos ? std::string() : normal.substr(start);
}

std::string Folded(std::string_view path) {
    std::string folded = Normal(path);
    std::transform(folded.begin(), folded.end(), folded.begin(), [](char unit) {
        return unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 'a' + 'A') : unit;
    });
    return folded;
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
    const std::string normal = Normal(path);
    if (const size_t slash = normal.rfind('/'); slash != std::string::npos)
        PutFolder(normal.substr(0, slash));
    const auto at = Position(entries_, Folded(normal));
    if (at != entries_.end() && Folded(at->path) == Folded(normal)) {
        at->content = std::move(content);
    } else {
        entries_.insert(at, {normal, false, std::move(content)});
    }
}

void FileTree::PutFolder(std::string_view path) {
    const std::string normal = Normal(path);
    if (normal.empty() || Find(normal) != nullptr) return;
    if (const size_t slash = normal.rfind('/'); slash != std::string::npos)
        PutFolder(normal.substr(0, slash));
    entries_.insert(Position(entries_, Folded(normal)), {normal, true, {}});
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
