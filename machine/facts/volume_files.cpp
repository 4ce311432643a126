#include "machine/facts/volume_files.h"

#include <vector>

#include "base/text_case.h"
#include "machine/facts/file_stores.h"
#include "machine/facts/letters.h"
#include "machine/facts/store_path.h"
#include "machine/facts/volume_names.h"

namespace machine {

namespace {

struct FullPath {
    std::string volume;  // its name, upper case
    std::string inner;   // path below its root, with slashes
};

// The path with "." and ".." resolved; ".." never leaves the root.
std::string Resolved(std::string_view path) {
    std::vector<std::string> resolved;
    for (std::string& name : NamesOf(path)) {
        if (name == "..") {
            if (!resolved.empty()) resolved.pop_back();
        } else if (name != ".") {
            resolved.push_back(std::move(name));
        }
    }
    return Joined(resolved);
}

uint32_t Split(std::string_view path, FullPath& full) {
    const auto [volume, rest] = DividePath(path);
    if (volume.empty() && rest.empty()) return ERROR_PATH_NOT_FOUND;
    if (volume.empty()) return ERROR_FILE_NOT_FOUND;
    if (rest.find_first_of("<>\"|?*:") != std::string_view::npos) return ERROR_INVALID_NAME;
    full = {UpperCase(volume), Resolved(rest)};
    return ERROR_SUCCESS;
}

// Redirects System32 of the running system for a 32-bit program; other paths are unchanged.
void Redirect(const Pc& pc, FullPath& full) {
    constexpr std::string_view folder = "System32";
    FullPath system;
    if (Split(pc.system.windowsDirectory + "/" + std::string(folder), system) != ERROR_SUCCESS) return;
    const size_t length = system.inner.size();
    if (full.volume != system.volume || !SameName(full.inner.substr(0, length), system.inner)) return;
    if (full.inner.size() > length && full.inner[length] != '/') return;
    full.inner.replace(length - folder.size(), folder.size(), "SysWOW64");
}

uint32_t Locate(const Pc& pc, bool redirects, std::string_view path, FullPath& full) {
    const uint32_t error = Split(path, full);
    if (error == ERROR_SUCCESS && redirects) Redirect(pc, full);
    return error;
}

// The files of one volume by one of its names: those beside the host application hide the volume's where the
// application's own path has that name.
class Drive {
  public:
    Drive(Pc& pc, const std::string& name) {
        FullPath program;
        if (Split(pc.host.path, program) == ERROR_SUCCESS && program.volume == name)
            host_.emplace(program.inner, pc.host.files);
        const LocatedVolume located = FindVolume(pc, name);
        if (!located) return;
        volumeError_ = WhyUnreadable(*located.volume);
        tree_.emplace(located.volume->files);
        volume_ = located.volume->store != nullptr ? located.volume->store.get() : &*tree_;
    }

    FileKind KindOf(const std::string& inner) {
        const FileKind kind = host_ ? host_->Find(inner) : FileKind::None;
        if (kind != FileKind::None || volumeError_ != ERROR_SUCCESS) return kind;
        return volume_->Find(inner);
    }

    // The error for a path that does not exist.
    uint32_t WhyMissing(const std::string& inner) {
        if (KindOf(FolderOf(inner)) == FileKind::Folder) return ERROR_FILE_NOT_FOUND;
        return volumeError_ != ERROR_SUCCESS ? volumeError_ : ERROR_PATH_NOT_FOUND;
    }

    // The store that contains the path or would receive it. Its folder exists.
    FileStore& HolderOf(const std::string& inner) {
        const bool onVolume = volumeError_ == ERROR_SUCCESS && volume_->Find(inner) != FileKind::None;
        const bool withHost = host_ && host_->Covers(inner);
        if (withHost && (!onVolume || host_->Find(inner) != FileKind::None)) return *host_;
        return *volume_;
    }

    // 0 if a file can be written at the path, otherwise the error.
    uint32_t WhyUnwritable(const std::string& inner) {
        if (KindOf(inner) == FileKind::Folder) return ERROR_ACCESS_DENIED;
        if (KindOf(FolderOf(inner)) != FileKind::Folder)
            return volumeError_ != ERROR_SUCCESS ? volumeError_ : ERROR_PATH_NOT_FOUND;
        return host_ && host_->Covers(inner) ? uint32_t{ERROR_SUCCESS} : volumeError_;
    }

  private:
    std::optional<HostStore> host_;
    std::optional<TreeStore> tree_;
    FileStore* volume_ = nullptr;
    uint32_t volumeError_ = ERROR_PATH_NOT_FOUND;
};

}  // namespace

uint32_t VolumeFiles::Find(std::string_view path, FileKind& kind) {
    kind = FileKind::None;
    FullPath full;
    if (const uint32_t error = Locate(pc_, redirects_, path, full); error != ERROR_SUCCESS) return error;
    Drive drive(pc_, full.volume);
    kind = drive.KindOf(full.inner);
    return kind != FileKind::None ? uint32_t{ERROR_SUCCESS} : drive.WhyMissing(full.inner);
}

uint32_t VolumeFiles::Read(std::string_view path, std::string& content) {
    FileKind kind;
    if (const uint32_t error = Find(path, kind); error != ERROR_SUCCESS) return error;
    if (kind == FileKind::Folder) return ERROR_ACCESS_DENIED;
    FullPath full;
    Locate(pc_, redirects_, path, full);
    return Drive(pc_, full.volume).HolderOf(full.inner).Read(full.inner, content);
}

uint32_t VolumeFiles::Write(std::string_view path, std::string_view content) {
    FullPath full;
    if (const uint32_t error = Locate(pc_, redirects_, path, full); error != ERROR_SUCCESS) return error;
    Drive drive(pc_, full.volume);
    if (const uint32_t error = drive.WhyUnwritable(full.inner); error != ERROR_SUCCESS) return error;
    return drive.HolderOf(full.inner).Write(full.inner, content);
}

uint32_t VolumeFiles::Remove(std::string_view path) {
    FileKind kind;
    if (const uint32_t error = Find(path, kind); error != ERROR_SUCCESS) return error;
    if (kind == FileKind::Folder) return ERROR_ACCESS_DENIED;
    FullPath full;
    Locate(pc_, redirects_, path, full);
    return Drive(pc_, full.volume).HolderOf(full.inner).Remove(full.inner);
}

}  // namespace machine
