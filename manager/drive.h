// A drive by its letter: what kind it is, and the paths below its root.
#pragma once

#include "base/drive_letter.h"

// A path below a drive's root, "X:\sources\DVD", or the root itself, "X:". Empty when the platform cannot
// join it; nothing exists there.
struct DrivePath {
    WCHAR text[MAX_PATH + 1];

    explicit DrivePath(WCHAR letter, const WCHAR* below = nullptr);
    // File or folder alike.
    bool Exists() const;
};

// A value of GetDriveTypeW.
UINT DriveType(WCHAR letter);
bool IsFixedDrive(WCHAR letter);

// The first letter of A to Z for which the test holds; '0' without one.
template <typename Test>
WCHAR FirstLetter(Test test) {
    for (WCHAR letter = TEXT('A'); letter <= TEXT('Z'); ++letter) {
        if (test(letter)) return letter;
    }
    return noLetter;
}

// The record that ends a search for a letter: with the letter behind the text, or without one.
void LogSearched(WCHAR letter, const WCHAR* found, const WCHAR* none);
