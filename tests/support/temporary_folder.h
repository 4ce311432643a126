// A folder that no other run has, removed with all that is in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string path = (std::filesystem::temp_directory_path() / "kestova-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no folder for temporary files");
        path_ = path;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

  private:
    std::filesystem::path path_;
};
