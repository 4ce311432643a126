// A base image with the changes that an input of the fuzzer stands for. An input lists changes of sectors
// that hold something: so a short one reaches the structures of an image of many MiB.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class PatchedImage {
  public:
    // Makes checksums fit what was changed, so that a reader goes on.
    using Repair = void (*)(PatchedImage& image);

    // The name of a base image that the build has made. Ends the program if it cannot be read.
    explicit PatchedImage(const std::string& name, Repair repair = nullptr);
    PatchedImage(const PatchedImage&) = delete;
    PatchedImage& operator=(const PatchedImage&) = delete;

    // Changes the image, calls `ask` with its path and takes the changes back. It may throw ImageError.
    void Ask(FuzzedDataProvider& input, const std::function<void(const std::string& path)>& ask);

    std::string_view Bytes() const { return {bytes_, size_}; }
    // The offsets of the changes.
    const std::vector<uint64_t>& Changed() const { return changed_; }
    // Changes bytes; nothing beyond the end.
    void Put(uint64_t at, std::string_view bytes);

  private:
    struct Undo {
        uint64_t at;
        std::string before;
    };

    char* bytes_ = nullptr;
    size_t size_ = 0;
    std::string path_;
    Repair repair_;
    std::vector<uint64_t> usedSectors_;
    std::vector<uint64_t> changed_;
    std::vector<Undo> undo_;
};

// One of the images, as the input chooses.
PatchedImage& Chosen(FuzzedDataProvider& input, const std::vector<std::unique_ptr<PatchedImage>>& images);
