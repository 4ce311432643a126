// A file that the program writes. It is found first and written later, exactly where it was found.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

class OutputFile {
  public:
    // Follows the links in the path; makes and opens nothing. `option` is the one that named it, for
    // messages. Throws WrongUse for a link that another user has put into a folder which all users share.
    OutputFile(const std::string& option, const std::string& path);
    ~OutputFile();
    OutputFile(OutputFile&&) noexcept;
    OutputFile& operator=(OutputFile&&) noexcept;

    // As it was named.
    const std::string& Path() const { return path_; }
    // The folder that it is in, without links; empty if that does not exist.
    const std::filesystem::path& Folder() const { return folder_; }
    // The same file by any name or link, also where there is none yet. A character device is never the same:
    // writing to it overwrites nothing.
    bool Is(const std::string& path) const;
    bool Is(const OutputFile& other) const;
    // Whether its folder takes a new file: makes one there, and removes it.
    bool FolderTakesFiles() const;
    // A regular file or a new one.
    bool CanBeReplaced() const;
    // What it holds, up to that many bytes; nothing unless it is a regular file that can be read and may be
    // written.
    std::optional<std::string> Beginning(size_t most) const;

    // Empties the file, or makes it. Throws WrongUse if it cannot be written, is neither a regular file nor a
    // terminal nor a device that takes or refuses everything (/dev/null, /dev/full), or is not the file that
    // was found.
    std::ofstream Stream();
    // The same for what is added behind that many bytes of the file, which stay.
    std::ofstream StreamAfter(uint64_t bytes);
    // Replaces the file atomically by a new one with this text. It keeps the permissions, but neither owner
    // nor set-user-ID. False if that fails; the file is then unchanged.
    bool Replace(const std::string& text);

  private:
    struct Place;

    std::string option_;
    std::string path_;
    std::filesystem::path folder_;
    std::unique_ptr<Place> place_;
};
