// Implementations of FileStore for files in the facts.
#pragma once

#include "machine/facts/pc.h"

namespace machine {

// The files of a described volume.
class TreeStore final : public VolumeStore {
  public:
    explicit TreeStore(FileTree& tree) : tree_(tree) {}

    FileKind Find(std::string_view path) override;
    uint32_t Read(std::string_view path, std::string& content) override;
    uint32_t List(std::string_view path, std::vector<FileEntry>& entries) override;
    std::string WhyUnchangeable() override { return ""; }
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;

  private:
    FileTree& tree_;
};

// The host application and the files beside it, as they appear on its drive. `program` is its path without
// the drive. The program itself exists but cannot be read, overwritten or deleted.
class HostStore final : public FileStore {
  public:
    HostStore(std::string_view program, FileTree& files);

    FileKind Find(std::string_view path) override;
    uint32_t Read(std::string_view path, std::string& content) override;
    uint32_t Write(std::string_view path, std::string_view content) override;
    uint32_t Remove(std::string_view path) override;

    // Whether the path is inside the program's folder.
    bool Covers(std::string_view path) const;

  private:
    std::string program_;  // upper case, with slashes
    std::string folder_;   // its folder with the trailing slash; empty for the root
    TreeStore files_;
};

}  // namespace machine
