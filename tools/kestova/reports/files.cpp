#include "tools/kestova/reports/files.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/facts/store_path.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/sha256.h"
#include "tools/kestova/common/text.h"

namespace {

using machine::FileEntry;
using machine::FileKind;

std::string ErrorText(uint32_t error) {
    return " cannot be read (error " + std::to_string(error) + ")";
}

// The disk that status shows; without an internal one the first.
VolumePlace PlaceOf(Session& session, const FilePlace& place) {
    VolumePlace volume = place.volume;
    if (place.isOnInternalDisk) volume.disk = std::max(session.AskNumber("GetFirstInternalDriveNumber"), 0);
    return volume;
}

// Which part of the path is the first one missing.
std::string WhyMissing(machine::VolumeStore& files, const FilePlace& place) {
    std::string there;
    for (const std::string& name : machine::NamesOf(place.path)) {
        const std::string path = there.empty() ? name : there + "\\" + name;
        const FileKind kind = files.Find(path);
        const std::string folder = Printable(place.volumeText + "\\" + there);
        if (kind == FileKind::None) return "there is no \"" + Printable(name) + "\" in " + folder;
        if (kind == FileKind::File && path != place.path)
            return Printable(place.volumeText + "\\" + path) + " is a file, not a folder";
        there = path;
    }
    return Printable(place.volumeText + "\\" + there) + ErrorText(ERROR_FILE_NOT_FOUND);
}

bool IsBefore(const FileEntry& left, const FileEntry& right) {
    const std::string one = UpperCase(left.name);
    const std::string other = UpperCase(right.name);
    return one != other ? one < other : left.name < right.name;
}

std::vector<FileEntry> Listed(machine::VolumeStore& files, const FilePlace& place) {
    std::vector<FileEntry> entries;
    const uint32_t error = files.List(place.path, entries);
    if (error == ERROR_FILE_NOT_FOUND) throw Failed(WhyMissing(files, place));
    if (error != ERROR_SUCCESS)
        throw Failed(Printable(place.volumeText + "\\" + place.path) + ErrorText(error));
    std::ranges::sort(entries, IsBefore);
    return entries;
}

// The name of a file as the volume keeps it, in whatever case it was typed; that of a short name, which no
// folder lists, as it was typed.
std::string StoredName(machine::VolumeStore& files, const std::string& path, const std::string& typed) {
    const size_t end = path.rfind('\\');
    std::vector<FileEntry> siblings;
    files.List(end == std::string::npos ? "" : path.substr(0, end), siblings);
    const auto stored = std::ranges::find_if(
        siblings, [&](const FileEntry& entry) { return UpperCase(entry.name) == UpperCase(typed); });
    return stored != siblings.end() ? stored->name : typed;
}

// Adds the hash of a file, or the problem that it cannot be read.
void AddHash(machine::VolumeStore& files, const std::string& path, ListedFile& file, Progress& progress,
             std::string& problem) {
    Sha256 hash;
    const uint32_t error = files.ReadParts(path, [&](std::string_view part) {
        hash.Add(part);
        progress.Add(part.size());
    });
    if (error == ERROR_SUCCESS) {
        file.sha256 = hash.Text();
    } else {
        problem += (problem.empty() ? "" : "; ") + Printable(path) + ErrorText(error);
    }
}

uint64_t BytesOf(const std::vector<FileEntry>& files) {
    uint64_t bytes = 0;
    for (const FileEntry& file : files)
        bytes += file.bytes.value_or(0);
    return bytes;
}

}  // namespace

FilesReport ReadFiles(Session& session, const FilePlace& place, bool hash, const ProgressPlace& shown) {
    FilesReport report{
        .place = place, .volume = session.OnPc().VolumeAt(PlaceOf(session, place)), .hasHashes = hash};
    machine::VolumeStore& files = *report.volume.files;
    report.isFolder = files.Find(place.path) == FileKind::Folder;
    std::vector<FileEntry> entries = Listed(files, place);
    if (!report.isFolder) entries.front().name = StoredName(files, place.path, entries.front().name);
    Progress progress(shown, "Hashing", BytesOf(entries), SizeText);
    for (const FileEntry& entry : entries) {
        ListedFile& file = report.files.emplace_back(ListedFile{entry});
        if (!hash || entry.kind != FileKind::File) continue;
        const std::string below = place.path.empty() ? entry.name : place.path + "\\" + entry.name;
        AddHash(files, report.isFolder ? below : place.path, file, progress, report.problem);
    }
    return report;
}
