#include "tools/kestova/common/output_file.h"

#include <fcntl.h>
#include <sys/random.h>

#include <cerrno>
#include <cstdio>

#include "base/hexadecimal.h"
#include "machine/media/device/transfer.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/memory_device.h"
#include "tools/kestova/common/output_place.h"

namespace {

using machine::Descriptor;

bool IsSame(const struct stat& left, const struct stat& right) {
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

bool IsNullDevice(const struct stat& status) {
    return IsMemoryDevice(status, MemoryDevice::Null) || IsMemoryDevice(status, MemoryDevice::Full);
}

bool IsStream(const Descriptor& opened, const struct stat& status) {
    return S_ISREG(status.st_mode) || IsNullDevice(status) || isatty(opened.Number()) != 0;
}

// Of pipes and block devices even the opening has an effect.
bool MayBeOpened(const struct stat& status) {
    return S_ISREG(status.st_mode) || S_ISCHR(status.st_mode);
}

// The file itself, or a second name of another user's file.
bool IsTrap(const Descriptor& folder, const struct stat& file) {
    struct stat status = {};
    if (!S_ISREG(file.st_mode) || fstat(folder.Number(), &status) != 0) return false;
    struct stat nobodys = file;
    if (file.st_nlink > 1) nobodys.st_uid = static_cast<uid_t>(-1);
    return IsForeign(status, nobodys);
}

std::string PathOf(const Descriptor& descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor.Number());
}

// A new file beside the target.
Descriptor MakeFresh(const OutputPlace& place, std::string& name) {
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        uint32_t random = 0;
        if (getrandom(&random, sizeof random, 0) != sizeof random) break;
        name = place.name + "." + Hex(random, 8).substr(2);
        Descriptor fresh(
            openat(place.folder.Number(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (fresh || errno != EEXIST) return fresh;
    }
    return Descriptor();
}

// A new owner must not inherit set-user-ID.
mode_t PermissionsOf(const OutputPlace& place) {
    if (place.found) return place.found->st_mode & 0777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

bool Finish(Descriptor& file, const std::string& text, mode_t mode) {
    const bool written = machine::WriteAll(file.Number(), text) && fchmod(file.Number(), mode) == 0 &&
                         fsync(file.Number()) == 0;
    return file.Close() && written;
}

// Makes the new name durable. Failure is ignored: the file is in place all the same.
void SynchroniseFolder(const Descriptor& folder) {
    const Descriptor opened(openat(folder.Number(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened) fsync(opened.Number());
}

}  // namespace

namespace {

std::filesystem::path FolderOf(const OutputPlace& place) {
    std::error_code error;
    return place.folder ? std::filesystem::read_symlink(PathOf(place.folder), error)
                        : std::filesystem::path();
}

}  // namespace

struct OutputFile::Place : OutputPlace {
    explicit Place(const std::string& path) : OutputPlace(FindPlace(path)) {}
};

OutputFile::OutputFile(const std::string& option, const std::string& path)
    : option_(option), path_(path), place_(std::make_unique<Place>(path)) {
    if (!place_->foreignLink.empty()) {
        throw WrongUse(option + ": " + path + " leads through the link " + place_->foreignLink +
                       ", which another user has put into a folder that all users share");
    }
    folder_ = FolderOf(*place_);
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&&) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&&) noexcept = default;

bool OutputFile::Is(const std::string& path) const {
    struct stat other = {};
    if (stat(path.c_str(), &other) == 0)
        return place_->found && !S_ISCHR(place_->found->st_mode) && IsSame(*place_->found, other);
    if (place_->found) return false;
    const OutputPlace place = FindPlace(path);
    return !folder_.empty() && folder_ == FolderOf(place) && place_->name == place.name;
}

bool OutputFile::Is(const OutputFile& other) const {
    return Is(other.path_);
}

bool OutputFile::FolderTakesFiles() const {
    std::string name;
    if (!MakeFresh(*place_, name)) return false;
    unlinkat(place_->folder.Number(), name.c_str(), 0);
    return true;
}

bool OutputFile::CanBeReplaced() const {
    return !place_->found || S_ISREG(place_->found->st_mode);
}

std::optional<std::string> OutputFile::Beginning(size_t most) const {
    if (!CanBeReplaced() || !place_->found || IsTrap(place_->folder, *place_->found)) return std::nullopt;
    const Descriptor opened(openat(place_->folder.Number(), place_->name.c_str(),
                                   O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!opened) return std::nullopt;
    std::ifstream stream(PathOf(opened), std::ios::binary);
    std::string text(most, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(most));
    text.resize(static_cast<size_t>(stream.gcount()));
    return text;
}

std::ofstream OutputFile::Stream() {
    return StreamAfter(0);
}

std::ofstream OutputFile::StreamAfter(uint64_t bytes) {
    const auto refused = [&](const char* why) { return WrongUse(option_ + ": " + path_ + why); };
    constexpr const char* noStream = " is neither a regular file nor a terminal nor /dev/null";
    if (place_->found && !MayBeOpened(*place_->found)) throw refused(noStream);
    const int flags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const Descriptor opened(openat(place_->folder.Number(), place_->name.c_str(),
                                   place_->found ? flags : flags | O_CREAT | O_EXCL, 0666));
    struct stat status = {};
    if (!opened || fstat(opened.Number(), &status) != 0) throw refused(" cannot be written");
    if (place_->found && !IsSame(status, *place_->found))
        throw refused(" was replaced by another file meanwhile");
    if (!IsStream(opened, status)) throw refused(noStream);
    if (IsTrap(place_->folder, status))
        throw refused(" is, or may be, another user's file in a folder that all users share");
    std::ofstream stream(PathOf(opened), bytes == 0 ? std::ios::binary : std::ios::binary | std::ios::app);
    if (bytes != 0 && ftruncate(opened.Number(), static_cast<off_t>(bytes)) != 0)
        throw refused(" cannot be cut");
    if (!stream) throw refused(" cannot be written");
    return stream;
}

bool OutputFile::Replace(const std::string& text) {
    std::string name;
    Descriptor fresh = MakeFresh(*place_, name);
    if (!fresh) return false;
    const int folder = place_->folder.Number();
    if (!Finish(fresh, text, PermissionsOf(*place_)) ||
        renameat(folder, name.c_str(), folder, place_->name.c_str()) != 0) {
        unlinkat(folder, name.c_str(), 0);
        return false;
    }
    SynchroniseFolder(place_->folder);
    return true;
}
