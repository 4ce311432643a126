// The names that volumes have without a letter. They are each system's own.

#include "base/owners.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr DWORD nameUnits = 50;  // of "\\?\Volume{GUID}\" with its terminator

struct VolumeSearch {
    using Type = HANDLE;
    static Type None() { return INVALID_HANDLE_VALUE; }
    static void Release(Type search) { FindVolumeClose(search); }
};

std::string NameWords(const WCHAR* name) {
    return WideView(name).starts_with(TEXT("\\\\?\\Volume{")) ? ", a name" : ", no name";
}

void ProbeSearch(Probes& probes, DWORD size) {
    WCHAR name[MAX_PATH] = {};
    const Owner<VolumeSearch> search(FindFirstVolumeW(name, size));
    const std::string first = search ? "given" + NameWords(name) : TruthWords(FALSE);
    probes.Add("FindFirstVolumeW", Count(size, "unit"), first);
    constexpr int most = 256;
    for (int number = 0; search && number < most; ++number) {
        const BOOL result = FindNextVolumeW(search.Get(), name, size);
        const std::string next = TruthWords(result) + (result ? NameWords(name) : "");
        probes.Add("FindNextVolumeW", Count(size, "unit"), next);
        if (!result) break;
    }
}

void ProbeName(Probes& probes, const WideString& root, DWORD size) {
    WCHAR name[MAX_PATH] = {};
    const BOOL result = GetVolumeNameForVolumeMountPointW(root.c_str(), name, size);
    const std::string answer = TruthWords(result) + (result ? NameWords(name) : "");
    probes.Add("GetVolumeNameForVolumeMountPointW", Quoted(root) + ", " + Count(size, "unit"), answer);
}

}  // namespace

void ProbeVolumeNames(Probes& probes) {
    for (const DWORD size : {DWORD{1}, nameUnits - 1, nameUnits, DWORD{MAX_PATH}})
        ProbeSearch(probes, size);
    for (const WCHAR letter : LocalLetters())
        ProbeName(probes, WideString(1, letter) + TEXT(":\\"), nameUnits);
    const WideString windows(1, WindowsLetter());
    ProbeName(probes, windows + TEXT(":\\"), nameUnits - 1);
    ProbeName(probes, windows + TEXT(":"), nameUnits);
    ProbeName(probes, windows + TEXT(":\\no such folder\\"), nameUnits);
}
