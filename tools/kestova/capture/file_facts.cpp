#include "tools/kestova/capture/file_facts.h"

#include <algorithm>

#include "base/owners.h"
#include "base/utf.h"
#include "machine/seen/looked_for_files.h"
#include "tools/kestova/capture/open_device.h"

namespace {

// An INI file of the factory has a few lines.
constexpr DWORD largestFile = 65536;

}  // namespace

std::optional<std::string> ReadSmallFile(const std::string& path, std::vector<std::string>& notes) {
    const WideString name = ToWide(path);
    if (!PathFileExistsW(name.c_str())) return std::nullopt;
    const FileHandle file = OpenShared(path, GENERIC_READ);
    std::string content(largestFile, '\0');
    DWORD read = 0;
    if (!file || !ReadFile(file.Get(), content.data(), largestFile, &read, nullptr)) {
        notes.push_back(path + ": its content cannot be read, error " + std::to_string(GetLastError()));
        read = 0;
    }
    if (read == largestFile) notes.push_back(path + ": only the first 64 KiB of it are described");
    content.resize(read);
    return content;
}

machine::FileTree CapturedFiles(const std::string& root, std::vector<std::string>& notes) {
    machine::FileTree files;
    // What is in a folder makes it one, whatever is said of it.
    for (const std::string_view path : machine::lookedForFiles) {
        if (files.Find(path) != nullptr) continue;
        std::string whole = root + std::string(path);
        std::ranges::replace(whole, '/', '\\');
        if (!PathFileExistsW(ToWide(whole).c_str())) continue;
        if (PathIsDirectoryW(ToWide(whole).c_str())) {
            files.PutFolder(path);
        } else {
            const bool isRead = path == machine::systemVolumeFile;
            files.PutFile(path, isRead ? ReadSmallFile(whole, notes).value_or("") : "");
        }
    }
    return files;
}
