// Drive letters, and the volumes behind them.

#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr DWORD mostUnits = 26 * 4 + 1;  // of all roots, each with its terminator, and the last terminator

void ProbeDriveStrings(Probes& probes, DWORD size) {
    WCHAR buffer[mostUnits] = {};
    const DWORD length = GetLogicalDriveStringsW(size, size == 0 ? nullptr : buffer);
    const DWORD filled = length < size ? length : 0;
    probes.Add("GetLogicalDriveStringsW", Count(size, "unit"),
               std::to_string(length) + ", " + Quoted(WideView(buffer, filled)));
}

void ProbeDriveType(Probes& probes, const WCHAR* root) {
    const UINT type = GetDriveTypeW(root);
    probes.Add("GetDriveTypeW", Quoted(root), std::to_string(type));
}

// With buffers of these sizes, in units; 0: null.
void ProbeVolume(Probes& probes, const WideString& root, DWORD labelSize, DWORD fileSystemSize) {
    WideString label(labelSize, TEXT('?'));
    WideString fileSystem(fileSystemSize, TEXT('?'));
    DWORD serial = 0;
    DWORD longest = 0;
    DWORD flags = 0;
    const BOOL result = GetVolumeInformationW(
        root.c_str(), labelSize == 0 ? nullptr : label.data(), labelSize, &serial, &longest, &flags,
        fileSystemSize == 0 ? nullptr : fileSystem.data(), fileSystemSize);
    std::string answer = TruthWords(result);
    if (result && labelSize > 0) answer += ", label " + QuotedBuffer(label);
    if (result && fileSystemSize > 0) answer += ", file system " + QuotedBuffer(fileSystem);
    probes.Add("GetVolumeInformationW",
               Quoted(root) + ", label in " + Count(labelSize, "unit") + ", file system in " +
                   Count(fileSystemSize, "unit"),
               answer);
}

constexpr DWORD roomy = MAX_PATH + 1;

}  // namespace

WideString LocalLetters() {
    WideString letters(allLetters);
    std::erase_if(letters, [](WCHAR letter) {
        return GetDriveTypeW((WideString(1, letter) + TEXT(":\\")).c_str()) == DRIVE_REMOTE;
    });
    return letters;
}

WideString LettersInUse() {
    WCHAR roots[mostUnits] = {};
    const DWORD length = GetLogicalDriveStringsW(mostUnits, roots);
    const WideString local = LocalLetters();
    WideString letters;
    for (DWORD at = 0; at < length && length < mostUnits; at += 4)
        if (local.find(roots[at]) != WideString::npos) letters += roots[at];
    return letters;
}

WCHAR WindowsLetter() {
    WCHAR folder[MAX_PATH] = {};
    const UINT length = GetWindowsDirectoryW(folder, MAX_PATH);
    return length > 0 && length < MAX_PATH ? folder[0] : TEXT('C');
}

void ProbeLetters(Probes& probes) {
    for (const DWORD size : {DWORD{0}, DWORD{1}, DWORD{4}, DWORD{5}, mostUnits})
        ProbeDriveStrings(probes, size);
    for (const WCHAR letter : WideView(allLetters)) {
        for (const WCHAR* const rest : {TEXT(":"), TEXT(":\\")})
            ProbeDriveType(probes, (WideString(1, letter) + rest).c_str());
    }
    for (const WCHAR letter : LocalLetters())
        ProbeVolume(probes, WideString(1, letter) + TEXT(":\\"), roomy, roomy);
    const WideString windows(1, WindowsLetter());
    for (const WideString& path : {windows, windows + TEXT(":\\Windows"), windows + TEXT(":\\no such folder"),
                                   WideString(), WideString(TEXT("1:\\"))})
        ProbeDriveType(probes, path.c_str());
    ProbeDriveType(probes, nullptr);
    for (const WCHAR letter : LettersInUse()) {
        const WideString root = WideString(1, letter) + TEXT(":\\");
        ProbeVolume(probes, root, 0, 0);
        ProbeVolume(probes, root, 1, roomy);
        ProbeVolume(probes, root, 2, roomy);
        ProbeVolume(probes, root, roomy, 1);
        ProbeVolume(probes, root, roomy, 4);
        ProbeVolume(probes, WideString(1, letter) + TEXT(":"), roomy, roomy);
    }
}
