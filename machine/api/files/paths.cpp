// Path texts, and whether a path leads somewhere. The calls that only cut and join text leave the last error
// alone.

#include <algorithm>

#include "machine/api/files/redirection.h"
#include "machine/api/call/outcome.h"

using namespace machine;

namespace {

bool HasDrive(WideView path) {
    return path.size() >= 2 && path[1] == TEXT(':');
}

// What ".." cannot climb over and no cut removes: "C:\\", "C:", "\\\\", "\\".
size_t RootLength(WideView path) {
    if (HasDrive(path)) return path.size() > 2 && path[2] == TEXT('\\') ? 3 : 2;
    const size_t backslashes = std::min(path.find_first_not_of(TEXT('\\')), path.size());
    return std::min<size_t>(backslashes, 2);
}

// Where the last part of the path and the backslash before it begin, but never inside the root.
size_t LastPart(WideView path) {
    const size_t root = RootLength(path);
    const size_t slash = path.rfind(TEXT('\\'));
    return slash == WideView::npos ? root : std::max(slash, root);
}

// Adds one part; "." adds nothing, ".." takes the last part away.
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

// TRUE for a file, a folder, and the drive of a volume that can be read. Errors as VolumeFiles has them.
extern "C" BOOL WINAPI PathFileExistsW(LPCWSTR path) {
    const std::string name = ToUtf8(path);
    return Answer<BOOL>("PathFileExistsW", {name}, [&](EmulatedPc& pc) {
        FileKind kind;
        return Outcome(pc, FilesOf(pc).Find(name, kind));
    });
}

// Joins in place; the buffer has MAX_PATH characters. What has a drive of its own, or a server, replaces the
// path; one leading backslash does not. FALSE for a null argument, and with an emptied path for a result that
// is too long.
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

// Cuts the last part and its backslash off, never the root. FALSE when there was nothing to cut.
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
