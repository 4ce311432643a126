#include "machine/facts/file_tree.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"

namespace machine {

namespace {

bool IsBefore(std::string_view left, std::string_view right) {
    const auto isLess = [](char one, char other) {
        return static_cast<unsigned char>(FoldCase(one)) < static_cast<unsigned char>(FoldCase(other));
    };
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(), isLess);
}

// The folder of that normalised path, and those above it.
void AddFolders(FileTree::Sorted& entries, std::string folder) {
    while (!folder.empty() && entries.insert({folder, true, {}}).second)
        folder = FolderOf(folder);
}

}  // namespace

bool FileTree::ByUpperCasePath::operator()(const Entry& left, const Entry& right) const {
    return IsBefore(left.path, right.path);
}

bool FileTree::ByUpperCasePath::operator()(const Entry& left, std::string_view right) const {
    return IsBefore(left.path, right);
}

bool FileTree::ByUpperCasePath::operator()(std::string_view left, const Entry& right) const {
    return IsBefore(left, right.path);
}

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
    AddFolders(entries_, FolderOf(normalized));
    const auto known = entries_.find(normalized);
    if (known == entries_.end()) {
        entries_.insert({normalized, false, std::move(content)});
        return;
    }
    auto node = entries_.extract(known);
    node.value().content = std::move(content);
    entries_.insert(std::move(node));
}

void FileTree::PutFolder(std::string_view path) {
    AddFolders(entries_, Normalized(path));
}

bool FileTree::RemoveFile(std::string_view path) {
    const auto entry = entries_.find(Normalized(path));
    if (entry == entries_.end() || entry->folder) return false;
    entries_.erase(entry);
    return true;
}

const FileTree::Entry* FileTree::Find(std::string_view path) const {
    const auto entry = entries_.find(Normalized(path));
    return entry != entries_.end() ? &*entry : nullptr;
}

}  // namespace machine
