// The names of volumes: all of them, and that of a drive letter.

#include <algorithm>

#include "machine/api/call/handle_table.h"
#include "machine/api/call/outcome.h"
#include "machine/facts/volume_names.h"

using namespace machine;

namespace {

// The names that a search still has to return.
struct VolumeSearch {
    static constexpr const char* kind = "volume search";
    std::vector<std::string> names;
};

using VolumeSearches = HandleTable<VolumeSearch>;

// "\\\\?\\Volume{...}\\" with its terminator; error 206 for a short buffer.
uint32_t PutName(const std::string& name, WCHAR* buffer, DWORD size) {
    const WideString whole = ToWide("\\\\?\\" + name + "\\");
    if (buffer == nullptr || size <= whole.size()) return ERROR_FILENAME_EXCED_RANGE;
    std::copy_n(whole.c_str(), whole.size() + 1, buffer);
    return ERROR_SUCCESS;
}

uint32_t PutNext(VolumeSearch& search, WCHAR* buffer, DWORD size) {
    if (search.names.empty()) return ERROR_NO_MORE_FILES;
    if (const uint32_t error = PutName(search.names.front(), buffer, size)) return error;
    search.names.erase(search.names.begin());
    return ERROR_SUCCESS;
}

std::string NameOfRoot(EmulatedPc& pc, const std::string& root) {
    const LocatedVolume located = FindVolume(pc.facts, DividePath(root).volume);
    for (const NamedVolume& named : NamedVolumes(pc.facts)) {
        if (named.volume.volume == located.volume) return named.name;
    }
    return "";
}

}  // namespace

// The first name, and a search for the others, which the caller closes with FindVolumeClose. Error 18 without
// any volume, 206 for a buffer of fewer than 50 characters.
extern "C" HANDLE WINAPI FindFirstVolumeW(LPWSTR name, DWORD size) {
    return Answer<HANDLE>("FindFirstVolumeW", {std::to_string(size)}, [&](EmulatedPc& pc) -> HANDLE {
        VolumeSearch search;
        for (const NamedVolume& named : NamedVolumes(pc.facts))
            search.names.push_back(named.name);
        if (const uint32_t error = PutNext(search, name, size))
            return Failure<HANDLE>(pc, FailsWith::InvalidHandle, error);
        return VolumeSearches::Of(pc).Open(pc, std::move(search));
    });
}

// Error 6 for a search that is not open, 18 at its end, 206 as above; the name is returned by the next call
// then.
extern "C" BOOL WINAPI FindNextVolumeW(HANDLE search, LPWSTR name, DWORD size) {
    return Answer<BOOL>("FindNextVolumeW", {std::to_string(size)}, [&](EmulatedPc& pc) {
        VolumeSearch* const open = VolumeSearches::Of(pc).Find(search);
        return Outcome(pc, open != nullptr ? PutNext(*open, name, size) : uint32_t{ERROR_INVALID_HANDLE});
    });
}

// Error 6 for a search that is not open, which is a violation in the ledger.
extern "C" BOOL WINAPI FindVolumeClose(HANDLE search) {
    return Answer<BOOL>("FindVolumeClose", {}, [&](EmulatedPc& pc) {
        const bool closed = VolumeSearches::Of(pc).Close(pc, search);
        return Outcome(pc, closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
    });
}

// The volume name of a root like "C:\\". Error 2 for a letter without a volume, 87 for a volume without a
// name, 123 for a path without a backslash at its
// end, 4390 for a folder, 206 for a short buffer.
extern "C" BOOL WINAPI GetVolumeNameForVolumeMountPointW(LPCWSTR root, LPWSTR name, DWORD size) {
    const std::string path = ToUtf8(root);
    return Answer<BOOL>(
        "GetVolumeNameForVolumeMountPointW", {path, std::to_string(size)}, [&](EmulatedPc& pc) {
            if (!path.ends_with('\\')) return Outcome(pc, ERROR_INVALID_NAME);
            const auto [volume, rest] = DividePath(path);
            if (!FindVolume(pc.facts, volume)) return Outcome(pc, ERROR_FILE_NOT_FOUND);
            if (rest != "\\") return Outcome(pc, ERROR_NOT_A_REPARSE_POINT);
            const std::string found = NameOfRoot(pc, path);
            return Outcome(pc,
                           found.empty() ? uint32_t{ERROR_INVALID_PARAMETER} : PutName(found, name, size));
        });
}
