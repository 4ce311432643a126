// Handles of volumes and disks, and what their drivers answer.

#include "base/owners.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/device_controls.h"
#include "tools/kestova/probes/probes.h"

namespace {

struct Opening {
    const char* words;
    DWORD access;
    DWORD share;
};

constexpr DWORD shareBoth = FILE_SHARE_READ | FILE_SHARE_WRITE;
// From the most that can be opened to the least.
constexpr Opening openings[] = {{"to read and write", GENERIC_READ | GENERIC_WRITE, shareBoth},
                                {"to read", GENERIC_READ, shareBoth},
                                {"to ask", 0, shareBoth}};
// Only where it is refused, as on the volume of Windows: elsewhere it would lock the volume.
constexpr Opening unshared = {"to read, sharing reading only", GENERIC_READ, FILE_SHARE_READ};

FileHandle ProbeOpening(Probes& probes, const WideString& path, const Opening& opening) {
    FileHandle device(CreateFileW(path.c_str(), opening.access, opening.share, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::string answer = device ? "opened" : TruthWords(FALSE);
    probes.Add("CreateFileW", Quoted(path) + " " + opening.words, answer);
    return device;
}

// The controls are asked of the first handle that opens.
void ProbeDevice(Probes& probes, const WideString& path) {
    bool isAsked = false;
    for (const Opening& opening : openings) {
        const FileHandle device = ProbeOpening(probes, path, opening);
        if (!device || isAsked) continue;
        ProbeControls(probes, Quoted(path), device.Get());
        isAsked = true;
    }
}

}  // namespace

void ProbeDevices(Probes& probes) {
    for (const WCHAR letter : LocalLetters())
        ProbeDevice(probes, TEXT("\\\\.\\") + WideString(1, letter) + TEXT(":"));
    for (const int disk : {0, 1, 2, 3, 4, 5, 6, 7, 127})
        ProbeDevice(probes, ToWide("\\\\.\\PhysicalDrive" + std::to_string(disk)));
    const WideString windows(1, WindowsLetter());
    const WideString lower = ToWide(std::string(1, static_cast<char>(windows[0] | 0x20)));
    for (const WideString& path :
         {TEXT("\\\\?\\") + windows + TEXT(":"), TEXT("\\\\.\\") + lower + TEXT(":"),
          TEXT("\\\\.\\") + windows, WideString(TEXT("\\\\.\\PHYSICALDRIVE0")),
          WideString(TEXT("\\\\?\\PhysicalDrive0")), WideString(TEXT("\\\\.\\PhysicalDrive")),
          WideString(TEXT("\\\\.\\PhysicalDrive0x")), WideString(TEXT("\\\\.\\no such device"))})
        ProbeOpening(probes, path, openings[0]);
    ProbeOpening(probes, TEXT("\\\\.\\") + windows + TEXT(":"), unshared);
    ProbeControls(probes, "no handle", INVALID_HANDLE_VALUE);
}
