#include "machine/facts/file_stores.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"
#include "platform/windows_api.h"

namespace machine {

namespace {

std::string Folded(std::string_view path) {
    std::string folded = UpperCase(path);
    std::replace(folded.begin(), folded.end(), '\\', '/');
    return folded;
}

}  // namespace

FileKind TreeStore::Find(std::string_view path) {
    if (path.empty()) return FileKind::Folder;
    const FileTree::Entry* const entry = tree_.Find(path);
    if (entry == nullptr) return FileKind::None;
    return entry->folder ? FileKind::Folder : FileKind::File;
}

uint32_t TreeStore::Read(std::string_view path, std::string& content) {
    if (Find(path) != FileKind::File) return ERROR_FILE_NOT_FOUND;
    content = tree_.Find(path)->content;
    return ERROR_SUCCESS;
}

uint32_t TreeStore::List(std::string_view path, std::vector<FileEntry>& entries) {
    if (Find(path) == FileKind::None) return ERROR_FILE_NOT_FOUND;
    const std::string asked = Normalized(path);
    for (const FileTree::Entry& entry : tree_.Entries()) {
        const bool isAsked = SameName(entry.path, asked);
        if (isAsked ? entry.folder : !SameName(FolderOf(entry.path), asked)) continue;
        if (entry.folder) {
            entries.push_back({NamesOf(entry.path).back(), FileKind::Folder});
        } else {
            entries.push_back({NamesOf(entry.path).back(), FileKind::File, entry.content.size()});
        }
    }
    return ERROR_SUCCESS;
}

uint32_t TreeStore::Write(std::string_view path, std::string_view content) {
    tree_.PutFile(path, std::string(content));
    return ERROR_SUCCESS;
}

uint32_t TreeStore::Remove(std::string_view path) {
    return tree_.RemoveFile(path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
}

HostStore::HostStore(std::string_view program, FileTree& files) : program_(Folded(program)), files_(files) {
    const size_t slash = program_.rfind('/');
    if (slash != std::string::npos) folder_ = program_.substr(0, slash + 1);
}

FileKind HostStore::Find(std::string_view path) {
    const std::string folded = Folded(path);
    if (folded.empty() || folder_.starts_with(folded + '/')) return FileKind::Folder;
    if (folded == program_) return FileKind::File;
    return Covers(path) ? files_.Find(path.substr(folder_.size())) : FileKind::None;
}

uint32_t HostStore::Read(std::string_view path, std::string& content) {
    if (Folded(path) == program_) return ERROR_ACCESS_DENIED;
    return files_.Read(path.substr(folder_.size()), content);
}

uint32_t HostStore::Write(std::string_view path, std::string_view content) {
    if (Folded(path) == program_) return ERROR_ACCESS_DENIED;
    return files_.Write(path.substr(folder_.size()), content);
}

uint32_t HostStore::Remove(std::string_view path) {
    if (Folded(path) == program_) return ERROR_ACCESS_DENIED;
    return files_.Remove(path.substr(folder_.size()));
}

bool HostStore::Covers(std::string_view path) const {
    return path.size() > folder_.size() && Folded(path).starts_with(folder_);
}

}  // namespace machine
