// A recovery application on one page: it finds the recovery partition, reads a file there through a drive
// letter, removes the letter, and makes the PC start from that partition next time.
//
//     recovery          this PC (Windows); an emulated factory PC (elsewhere)
//     recovery PC       elsewhere: a disk image, a description, or the name of a PC that comes with the
//                       project
//
// The exit status is the code of the switch, or 9 if there is no recovery partition or its file cannot be
// read.

#include <cstdio>
#include <string>

#include "examples/open_pc.h"
#include "manager/kestova.h"

namespace {

constexpr int nothingToRecoverFrom = 9;

// On a GPT disk the library finds the recovery partition by type and contents and gives it a letter. On an
// MBR disk it is partition 1, which has a letter from Windows PE.
WCHAR LetterOfRecoveryPartition(Kestova& kestova) {
    WCHAR letter = TEXT('0');
    kestova.AssignRecoveryPartition(letter);
    if (letter != TEXT('0')) return letter;
    return kestova.GetDriveLetter(kestova.GetFirstInternalDriveNumber(), 1);
}

// The first bytes of a file; empty if it cannot be read.
std::string BeginningOf(const std::basic_string<WCHAR>& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return "";
    char bytes[512];
    DWORD count = 0;
    const BOOL isRead = ReadFile(file, bytes, sizeof(bytes), &count, nullptr);
    CloseHandle(file);
    return isRead ? std::string(bytes, count) : "";
}

int Recover() {
    Kestova kestova;
    if (!kestova.Initialize(false)) {
        std::puts("The Virtual Disk Service cannot be reached.");
        return nothingToRecoverFrom;
    }

    const WCHAR letter = LetterOfRecoveryPartition(kestova);
    if (letter == TEXT('0')) {
        std::puts("No recovery partition was found.");
        return nothingToRecoverFrom;
    }
    std::printf("The recovery partition is %c:\n", static_cast<char>(letter));
    const std::string content =
        BeginningOf(letter + std::basic_string<WCHAR>(TEXT(":\\sources\\Qelhdrcv.ini")));
    kestova.RemoveRecoveryPartition();
    if (content.empty()) {
        std::puts("Its Qelhdrcv.ini cannot be read.");
        return nothingToRecoverFrom;
    }
    std::printf("Its Qelhdrcv.ini begins:\n%s\n", content.c_str());

    const int code = kestova.SetRcvprtActive();
    if (code == 0) {
        std::puts("The next start boots the recovery partition.");
    } else {
        std::printf("The switch failed with code %d; a GPT disk has no active partition to switch.\n", code);
    }
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    const OpenedPc pc(argc > 1 ? argv[1] : "");
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const int code = Recover();
    CoUninitialize();
    return code;
}
