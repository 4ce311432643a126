// Files and folders, by paths that the library looks at and some that are not there.

#include "base/owners.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

// Below the root of a drive.
constexpr const WCHAR* paths[] = {TEXT(""),
                                  TEXT("Windows"),
                                  TEXT("Windows\\"),
                                  TEXT("Windows\\System32\\Winload.exe"),
                                  TEXT("sources"),
                                  TEXT("sources\\idf"),
                                  TEXT("sources\\boot.wim"),
                                  TEXT("SystemVolume.ini"),
                                  TEXT("no such file"),
                                  TEXT("no such folder\\no such file"),
                                  TEXT("wrong|name"),
                                  TEXT("Windows\\..\\Windows")};

void ProbeExistence(Probes& probes, const WCHAR* path) {
    const BOOL result = PathFileExistsW(path);
    const std::string answer = TruthWords(result);
    probes.Add("PathFileExistsW", Quoted(path), answer);
    const BOOL isFolder = PathIsDirectoryW(path);
    probes.Add("PathIsDirectoryW", Quoted(path), std::to_string(isFolder));
}

void ProbeOpening(Probes& probes, const WideString& path, DWORD flags, const char* words) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, flags, nullptr));
    const std::string answer = file ? "opened" : TruthWords(FALSE);
    probes.Add("CreateFileW", Quoted(path) + words, answer);
}

}  // namespace

void ProbeFiles(Probes& probes) {
    for (const WCHAR letter : LettersInUse()) {
        const WideString root = WideString(1, letter) + TEXT(":\\");
        for (const WCHAR* const path : paths)
            ProbeExistence(probes, (root + path).c_str());
    }
    for (const WCHAR* const path : {TEXT(""), TEXT("no such file"), TEXT("1:\\"), TEXT("\\\\.\\C:")})
        ProbeExistence(probes, path);
    const WideString windows = WideString(1, WindowsLetter()) + TEXT(":\\");
    for (const WCHAR* const path : paths) {
        ProbeOpening(probes, windows + path, FILE_ATTRIBUTE_NORMAL, "");
        ProbeOpening(probes, windows + path, FILE_FLAG_BACKUP_SEMANTICS, " with FILE_FLAG_BACKUP_SEMANTICS");
    }
}
