#include "machine/media/image/change_journal.h"

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "machine/media/device/disk_identity.h"
#include "machine/media/image/change_file.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

// Whether what is stored there is gone after a power cut.
bool IsVolatile(const std::string& folder) {
    struct statfs system = {};
    return statfs(folder.c_str(), &system) == 0 &&
           (system.f_type == TMPFS_MAGIC || system.f_type == RAMFS_MAGIC);
}

// A disk of this computer is on none.
bool AreOnOneFileSystem(const std::string& left, const std::string& right) {
    struct stat leftStatus = {};
    struct stat rightStatus = {};
    return !IsDisk(right) && stat(left.c_str(), &leftStatus) == 0 && stat(right.c_str(), &rightStatus) == 0 &&
           leftStatus.st_dev == rightStatus.st_dev;
}

}  // namespace

std::string JournalBeside(const std::string& image) {
    return BesideImage(image, ".kestova-journal");
}

ChangeJournal::ChangeJournal(const std::string& image, const JournalPlace& place)
    : image_(image),
      hasNoPlace_(place.kind == JournalPlace::Kind::Beside && IsDisk(image)),
      path_(place.kind == JournalPlace::Kind::Beside ? JournalBeside(image) : place.path) {}

void ChangeJournal::CheckPlace() const {
    if (hasNoPlace_)
        throw ImageError(
            image_ +
            ": a disk has no place beside it for a journal; name one with --journal, or write without one "
            "(--no-journal)");
    if (path_.empty()) return;
    const std::string folder = FolderOfFile(path_);
    const std::string advice = "; name another place with --journal, or write without one (--no-journal)";
    if (access(folder.c_str(), W_OK) != 0) {
        throw ImageError(image_ + ": its journal " + path_ + " cannot be written: " + std::strerror(errno) +
                         advice);
    }
    if (IsVolatile(folder) && !AreOnOneFileSystem(folder, image_))
        throw ImageError(image_ + ": its journal " + path_ + " would not outlive a power cut" + advice);
    std::error_code error;
    if (fs::equivalent(path_, image_, error)) throw ImageError(image_ + ": cannot be its own journal");
}

std::string ChangeJournal::Keep(const ImageChange& change, uint64_t imageSize) const {
    if (path_.empty() || WriteChangeFile(path_, journalMagic, {imageSize, {change}})) return "";
    std::string problem = "its journal " + path_ + " cannot be written: " + std::strerror(errno);
    unlink(path_.c_str());
    return problem;
}

std::optional<ImageChange> ChangeJournal::Pending(uint64_t imageSize) const {
    std::error_code error;
    if (path_.empty() || !fs::exists(path_, error)) return std::nullopt;
    const std::string advice = "; move it away to go on without it";
    ReadChanges read = ReadChangeFile(path_, journalMagic);
    if (read.state == ChangeFileState::Unreadable)
        throw ImageError(image_ + ": its journal " + path_ + " cannot be read" + advice);
    if (read.state == ChangeFileState::Damaged || read.content.changes.size() != 1)
        throw ImageError(image_ + ": " + path_ + " is no journal, or a damaged one" + advice);
    if (read.content.imageSize != imageSize)
        throw ImageError(image_ + ": its journal " + path_ + " is of an image of another size" + advice);
    return std::move(read.content.changes.front());
}

bool ChangeJournal::Drop() const {
    return path_.empty() || DropChangeFile(path_);
}

}  // namespace machine
