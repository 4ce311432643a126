#include "machine/media/image/change_file.h"

#include <fcntl.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "machine/media/device/descriptor.h"
#include "machine/media/device/disk_identity.h"
#include "machine/media/device/little_endian.h"
#include "machine/media/device/transfer.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

constexpr uint64_t longestFile = uint64_t{1} << 30;

// --- the format: for each change the magic, the size of the image, the number of runs, the runs, and a
// checksum of all that; numbers are little-endian, texts have their length in front ---

void AppendText(std::string& bytes, const std::string& text) {
    AppendLe64(bytes, text.size());
    bytes += text;
}

uint64_t Checksum(std::string_view bytes) {
    return crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
}

std::string BytesOf(std::string_view magic, const ImageChange& change, uint64_t imageSize) {
    std::string bytes(magic);
    AppendLe64(bytes, imageSize);
    AppendLe64(bytes, change.size());
    for (const ChangedRun& run : change) {
        AppendLe64(bytes, run.offset);
        AppendText(bytes, run.before);
        AppendText(bytes, run.after);
        AppendText(bytes, run.mark);
    }
    AppendLe64(bytes, Checksum(bytes));
    return bytes;
}

// Takes numbers and texts from the front; what is not there is zero, and marks the rest as bad.
class Taker {
  public:
    explicit Taker(std::string_view bytes) : rest_(bytes) {}

    uint64_t Number() {
        const uint64_t number = Le64(rest_, 0);
        Skip(8);
        return number;
    }
    std::string Text() {
        const uint64_t length = Number();
        std::string text(rest_.substr(0, length));
        Skip(length);
        return text;
    }
    bool TakeMagic(std::string_view magic) {
        isGood_ = isGood_ && rest_.starts_with(magic);
        Skip(magic.size());
        return isGood_;
    }
    size_t Left() const { return rest_.size(); }
    bool IsGood() const { return isGood_; }

  private:
    void Skip(uint64_t length) {
        isGood_ = isGood_ && length <= rest_.size();
        rest_.remove_prefix(isGood_ ? length : rest_.size());
    }

    std::string_view rest_;
    bool isGood_ = true;
};

// `start` is where the run before it ends.
bool IsSound(const ChangedRun& run, uint64_t start, uint64_t imageSize) {
    const uint64_t length = run.before.size();
    return length > 0 && length % diskSectorSize == 0 && run.offset % diskSectorSize == 0 &&
           run.offset >= start && length <= imageSize && run.offset <= imageSize - length &&
           run.after.size() == length && (run.mark.empty() || run.mark.size() == length);
}

// Nothing if it is damaged.
std::optional<ImageChange> TakeRuns(Taker& taker, uint64_t imageSize) {
    ImageChange change;
    uint64_t end = 0;
    for (uint64_t count = taker.Number(); count > 0 && taker.IsGood(); --count) {
        ChangedRun& run = change.emplace_back();
        run.offset = taker.Number();
        run.before = taker.Text();
        run.after = taker.Text();
        run.mark = taker.Text();
        if (!IsSound(run, end, imageSize)) return std::nullopt;
        end = run.offset + run.before.size();
    }
    return change;
}

// Nothing if they are damaged, or of images of different sizes.
std::optional<ChangesOfImage> ChangesIn(std::string_view bytes, std::string_view magic) {
    ChangesOfImage content;
    Taker taker(bytes);
    do {
        const std::string_view start = bytes.substr(bytes.size() - taker.Left());
        if (!taker.TakeMagic(magic)) return std::nullopt;
        const uint64_t imageSize = taker.Number();
        std::optional<ImageChange> change = TakeRuns(taker, imageSize);
        const std::string_view summed = start.substr(0, start.size() - taker.Left());
        const bool isSound = change && taker.Number() == Checksum(summed) && taker.IsGood() &&
                             (content.changes.empty() || imageSize == content.imageSize);
        if (!isSound) return std::nullopt;
        content.imageSize = imageSize;
        content.changes.push_back(std::move(*change));
    } while (taker.Left() > 0);
    return content;
}

// --- files ---

Descriptor Open(const std::string& path, int flags) {
    return Descriptor(open(path.c_str(), flags | O_CLOEXEC, 0600));
}

bool Flush(const Descriptor& file) {
    return fsync(file.Number()) == 0;
}

// A name is on the medium once its folder is.
bool FlushFolder(const std::string& path) {
    const Descriptor folder = Open(FolderOfFile(path), O_RDONLY | O_DIRECTORY);
    return folder && Flush(folder);
}

// What a program that was killed has left of that name is not written through: in a shared folder it can be
// somebody else's.
bool WriteNewFile(const std::string& path, std::string_view bytes) {
    unlink(path.c_str());
    const Descriptor file = Open(path, O_WRONLY | O_CREAT | O_EXCL);
    return file && WriteAll(file.Number(), bytes) && Flush(file);
}

}  // namespace

std::string BesideImage(const std::string& image, std::string_view ending) {
    if (IsDisk(image)) return "";
    std::error_code error;
    const fs::path real = fs::canonical(image, error);
    return (error ? image : real.string()) + std::string(ending);
}

std::string FolderOfFile(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return folder.empty() ? "." : folder.string();
}

bool WriteChangeFile(const std::string& path, std::string_view magic, const ChangesOfImage& changes) {
    const std::string unnamed = path + ".new";
    std::string bytes;
    for (const ImageChange& change : changes.changes)
        bytes += BytesOf(magic, change, changes.imageSize);
    if (WriteNewFile(unnamed, bytes) && std::rename(unnamed.c_str(), path.c_str()) == 0 &&
        FlushFolder(path)) {
        return true;
    }
    const int error = errno;
    unlink(unnamed.c_str());
    errno = error;
    return false;
}

ReadChanges ReadChangeFile(const std::string& path, std::string_view magic) {
    std::error_code error;
    std::ifstream file(path, std::ios::binary);
    const uint64_t length = fs::file_size(path, error);
    if (!file || error) return {ChangeFileState::Unreadable};
    std::string bytes(static_cast<size_t>(std::min(length, longestFile)), '\0');
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::optional<ChangesOfImage> content = ChangesIn(bytes, magic);
    if (!content) return {ChangeFileState::Damaged};
    return {ChangeFileState::Sound, std::move(*content)};
}

bool DropChangeFile(const std::string& path) {
    return unlink(path.c_str()) == 0 && FlushFolder(path);
}

}  // namespace machine
