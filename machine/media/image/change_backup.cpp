#include "machine/media/image/change_backup.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <utility>

#include "machine/media/device/disk_identity.h"

namespace machine {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view suffix = ".kestova-backup-";

using Sectors = std::map<uint64_t, ChangedRun>;  // of one sector each, by offset

void AddSectors(const ImageChange& change, Sectors& sectors) {
    for (const ChangedRun& run : change) {
        for (size_t at = 0; at < run.before.size(); at += diskSectorSize) {
            ChangedRun sector{.offset = run.offset + at,
                              .before = run.before.substr(at, diskSectorSize),
                              .after = run.after.substr(at, diskSectorSize),
                              .mark = run.mark.empty() ? "" : run.mark.substr(at, diskSectorSize)};
            const auto [known, isNew] = sectors.try_emplace(sector.offset, sector);
            if (isNew) continue;
            known->second.after = std::move(sector.after);
            if (!sector.mark.empty()) known->second.mark = std::move(sector.mark);
        }
    }
}

}  // namespace

std::string BackupBeside(const std::string& image) {
    const std::string start = BesideImage(image, suffix);
    std::error_code error;
    int number = 1;
    while (fs::exists(start + std::to_string(number), error))
        ++number;
    return start + std::to_string(number);
}

ImageChange Joined(const ImageChange& first, const ImageChange& second) {
    Sectors sectors;
    AddSectors(first, sectors);
    AddSectors(second, sectors);
    ImageChange joined;
    for (auto& [offset, sector] : sectors)
        AppendRun(joined, std::move(sector));
    return joined;
}

std::string ImageOfBackup(const std::string& backup) {
    const size_t at = backup.rfind(suffix);
    return at == std::string::npos ? "" : backup.substr(0, at);
}

ChangesOfImage ReadBackup(const std::string& path) {
    ReadChanges read = ReadChangeFile(path, backupMagic);
    if (read.state == ChangeFileState::Unreadable) {
        std::error_code error;
        throw ImageError(path + (fs::exists(path, error) ? ": cannot be read"
                                                         : ": cannot be read: there is no such file"));
    }
    if (read.state == ChangeFileState::Damaged || read.content.changes.size() > 2)
        throw ImageError(path + ": no backup of a change, or a damaged one");
    return std::move(read.content);
}

ChangeBackup::ChangeBackup(const std::string& image, const JournalPlace& place)
    : image_(image), place_(place), path_(place.path) {}

void ChangeBackup::CheckPlace() const {
    if (place_.kind == JournalPlace::Kind::None) return;
    if (place_.kind == JournalPlace::Kind::Beside && IsDisk(image_))
        throw ImageError(
            image_ +
            ": a disk has no place beside it for a backup; name a file with --backup, or change without one "
            "(--no-backup)");
    const std::string advice = "; name another file with --backup, or change without one (--no-backup)";
    std::error_code error;
    const bool isJournal =
        !path_.empty() && fs::weakly_canonical(fs::absolute(path_), error) == JournalBeside(image_);
    if (isJournal) throw ImageError(path_ + ": is the place of the journal" + advice);
    if (!path_.empty() && fs::exists(path_, error)) throw ImageError(path_ + ": exists already" + advice);
    if (access(FolderOfFile(path_.empty() ? BackupBeside(image_) : path_).c_str(), W_OK) == 0) return;
    throw ImageError(image_ + ": a backup of what changes cannot be written: " + std::strerror(errno) +
                     advice);
}

std::string ChangeBackup::Add(const ImageChange& change, uint64_t imageSize) {
    if (place_.kind == JournalPlace::Kind::None) return "";
    if (path_.empty()) path_ = BackupBeside(image_);
    if (changes_.size() == 2) changes_ = {Joined(changes_[0], changes_[1])};
    changes_.push_back(change);
    if (WriteChangeFile(path_, backupMagic, {imageSize, changes_})) return "";
    std::string problem = "its backup " + path_ + " cannot be written: " + std::strerror(errno);
    changes_.pop_back();
    if (changes_.empty()) DropChangeFile(path_);
    return problem;
}

void ChangeBackup::TakeBack(uint64_t imageSize) {
    if (changes_.empty()) return;
    changes_.pop_back();
    if (changes_.empty()) {
        DropChangeFile(path_);
    } else {
        WriteChangeFile(path_, backupMagic, {imageSize, changes_});
    }
}

}  // namespace machine
