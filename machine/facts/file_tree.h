// The files of a described volume: a small in-memory file system, case-insensitive.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "machine/facts/file_store.h"

namespace machine {

class FileTree {
  public:
    struct Entry {
        std::string path;  // as first spelled, with slashes but no leading one
        bool folder = false;
        std::string content;  // of a file
        bool operator==(const Entry&) const = default;
    };

    FileTree() = default;
    // Files with their contents; a path that ends in a slash is an empty folder.
    FileTree(std::initializer_list<std::pair<std::string, std::string>> files);

    // Adds or replaces a file and creates the folders above it.
    void PutFile(std::string_view path, std::string content);
    // Adds a folder and the folders above it; an existing one is kept.
    void PutFolder(std::string_view path);
    // Deletes a file; false if there is none of that name.
    bool RemoveFile(std::string_view path);
    // The entry, or null. The empty path is the root, which always exists and has no entry.
    const Entry* Find(std::string_view path) const;
    bool IsEmpty() const { return entries_.empty(); }

    struct ByUpperCasePath {
        using is_transparent = void;
        bool operator()(const Entry& left, const Entry& right) const;
        bool operator()(const Entry& left, std::string_view right) const;
        bool operator()(std::string_view left, const Entry& right) const;
    };
    using Sorted = std::set<Entry, ByUpperCasePath>;
    const Sorted& Entries() const { return entries_; }

    bool operator==(const FileTree&) const = default;

  private:
    Sorted entries_;
};

}  // namespace machine
