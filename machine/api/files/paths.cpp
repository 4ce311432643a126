// Path texts, and whether a path exists. The calls that only join and cut text leave the last error
// unchanged.

#include <algorithm>

#include "machine/api/call/outcome.h"
#include "machine/api/files/redirection.h"

using namespace machine;

namespace {

bool HasDrive(WideView path) {
    return path.size() >= 2 && path[1] == TEXT(':');
}

// The length of the root, which ".." and cutting never remove: "C:\\", "C:", "\\\\", "\\".
size_t RootLength(WideView path) {
    if (HasDrive(path)) return path.size() > 2 && path[2] == TEXT('\\') ? 3 : 2;
    const size_t backslashes = std::min(path.find_first_not_of(TEXT('\\')), path.size());
    return std::min<size_t>(backslashes, 2);
}

// Where the last part of the path begins, including the backslash before it; never inside the root.
size_t LastPart(WideView path) {
    const size_t root = RootLength(path);
    const size_t slash = path.rfind(TEXT('\\'));
    return slash == WideView::npos ? root : std::max(slash, root);
}

// Appends one part; "." appends nothing, ".." removes the last part.
void AddPart(WideString& path, WideView part) {
    if (part == TEXT(".")) return;
    if (part == TEXT("..")) {
        path.erase(LastPart(path));
        return;
    }
    const bool separated = path.empty() || path.back() == TEXT('\\');
    if (!separated) path += TEXT('\\');
    path += part;
}

WideString Joined(WideView path, WideView more) {
    const bool replaces = HasDrive(more) || more.starts_with(TEXT("\\\\"));
    const WideView base = replaces ? more : path;
    const size_t root = RootLength(base);
    WideString joined(base.substr(0, root));
    const WideView rests[] = {base.substr(root), replaces ? WideView() : more};
    for (WideView rest : rests) {
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(TEXT('\\')), rest.size());
            if (end > 0) AddPart(joined, rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    if (joined.size() == 2 && HasDrive(joined)) joined += TEXT('\\');
    return joined;
}

}  // namespace

// TRUE for a file, a folder, and the root of a readable volume. Errors are those of VolumeFiles.
extern "C" BOOL WINAPI PathFileExistsW(LPCWSTR path) {
    const std::string name = ToUtf8(path);
    return Answer<BOOL>("PathFileExistsW", {name}, [&](EmulatedPc& pc) {
        FileKind kind;
        return Outcome(pc, FilesOf(pc).Find(name, kind));
    });
}

// TRUE for a folder and for the root of a readable volume. Errors are those of VolumeFiles; a file is none,
// and sets no error.
extern "C" BOOL WINAPI PathIsDirectoryW(LPCWSTR path) {
    const std::string name = ToUtf8(path);
    return Answer<BOOL>("PathIsDirectoryW", {name}, [&](EmulatedPc& pc) -> BOOL {
        FileKind kind;
        const BOOL found = Outcome(pc, FilesOf(pc).Find(name, kind));
        return found && kind == FileKind::Folder ? BOOL{FILE_ATTRIBUTE_DIRECTORY} : FALSE;
    });
}

// Joins in place; the buffer has MAX_PATH characters. An addition with a drive or server of its own
// replaces the path; one with a single leading backslash does not. FALSE for a null argument, and, with the
// path emptied, for a result that is too long.
extern "C" BOOL WINAPI PathAppendW(LPWSTR path, LPCWSTR more) {
    return Answer<BOOL>("PathAppendW", {ToUtf8(path), ToUtf8(more)}, [&](EmulatedPc&) -> BOOL {
        if (path == nullptr || more == nullptr) return FALSE;
        const WideString joined = Joined(path, more);
        if (joined.size() >= MAX_PATH) {
            path[0] = TEXT('\0');
            return FALSE;
        }
        std::copy_n(joined.c_str(), joined.size() + 1, path);
        return TRUE;
    });
}

// Removes the last part and its backslash, never the root. FALSE if there was nothing to remove.
extern "C" BOOL WINAPI PathRemoveFileSpecW(LPWSTR path) {
    return Answer<BOOL>("PathRemoveFileSpecW", {ToUtf8(path)}, [&](EmulatedPc&) -> BOOL {
        if (path == nullptr) return FALSE;
        const WideView text = path;
        const size_t cut = LastPart(text);
        if (cut == text.size()) return FALSE;
        path[cut] = TEXT('\0');
        return TRUE;
    });
}
