#include <cstdio>

#include "platform/windows_api.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/output_file.h"

namespace {

namespace fs = std::filesystem;

// The file that writing to this path creates or changes: symbolic links are followed, also to a missing file.
fs::path WithoutLinks(const fs::path& file) {
    constexpr int mostLinks = 40;
    std::error_code error;
    fs::path target = fs::absolute(file, error);
    for (int links = 0; links < mostLinks && fs::is_symlink(target, error); ++links)
        target = target.parent_path() / fs::read_symlink(target, error);
    const fs::path canonical = fs::weakly_canonical(target, error);
    return error ? target : canonical;
}

// Creates a new file beside the target; empty on failure.
fs::path MakeFresh(const fs::path& target) {
    WCHAR name[MAX_PATH];
    return GetTempFileNameW(target.parent_path().c_str(), TEXT("pc"), 0, name) != 0 ? name : fs::path();
}

bool WriteAll(const fs::path& file, const std::string& text) {
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    return !stream.fail();
}

}  // namespace

struct OutputFile::Place {
    fs::path target;
};

OutputFile::OutputFile(const std::string& option, const std::string& path)
    : option_(option), path_(path), place_(std::make_unique<Place>(Place{WithoutLinks(path)})) {
    std::error_code missing;
    if (fs::is_directory(place_->target.parent_path(), missing)) folder_ = place_->target.parent_path();
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&&) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&&) noexcept = default;

bool OutputFile::Is(const std::string& path) const {
    std::error_code missing;
    if (fs::is_character_file(path_, missing)) return false;
    return fs::equivalent(path_, path, missing) || place_->target == WithoutLinks(path);
}

bool OutputFile::Is(const OutputFile& other) const {
    return Is(other.path_);
}

bool OutputFile::FolderTakesFiles() const {
    const fs::path fresh = MakeFresh(place_->target);
    return !fresh.empty() && DeleteFileW(fresh.c_str());
}

bool OutputFile::CanBeReplaced() const {
    std::error_code missing;
    return !fs::exists(path_, missing) || fs::is_regular_file(path_, missing);
}

std::optional<std::string> OutputFile::Beginning(size_t most) const {
    std::error_code missing;
    std::ifstream stream(fs::path(path_), std::ios::binary);
    if (!fs::is_regular_file(path_, missing) || !stream) return std::nullopt;
    std::string text(most, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(most));
    text.resize(static_cast<size_t>(stream.gcount()));
    return text;
}

std::ofstream OutputFile::Stream() {
    return StreamAfter(0);
}

std::ofstream OutputFile::StreamAfter(uint64_t bytes) {
    if (bytes != 0) fs::resize_file(fs::path(path_), bytes);
    std::ofstream stream(fs::path(path_), bytes == 0 ? std::ios::binary : std::ios::binary | std::ios::app);
    if (!stream) throw WrongUse(option_ + ": " + path_ + " cannot be written");
    return stream;
}

bool OutputFile::Replace(const std::string& text) {
    const fs::path fresh = MakeFresh(place_->target);
    if (fresh.empty()) return false;
    if (WriteAll(fresh, text) && MoveFileExW(fresh.c_str(), place_->target.c_str(),
                                             MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
        return true;
    }
    DeleteFileW(fresh.c_str());
    return false;
}
