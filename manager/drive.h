// Drives by letter: their type, and paths below their root.
#pragma once

#include "base/drive_letter.h"

// A path below a drive's root, "X:\sources\DVD", or the root itself, "X:". Empty if the platform cannot join
// it; an empty path does not exist.
struct DrivePath {
    WCHAR text[MAX_PATH + 1];

    explicit DrivePath(WCHAR letter, const WCHAR* below = nullptr);
    // Whether there is a file or folder.
    bool Exists() const;
};

// A value of GetDriveTypeW.
UINT DriveType(WCHAR letter);
bool IsFixedDrive(WCHAR letter);

// The first letter of A to Z that passes the test; noLetter if none does.
template <typename Test>
WCHAR FirstLetter(Test test) {
    for (WCHAR letter = TEXT('A'); letter <= TEXT('Z'); ++letter) {
        if (test(letter)) return letter;
    }
    return noLetter;
}

// Writes the record that ends a search for a letter: `found` followed by the letter, or `none`.
void LogSearched(WCHAR letter, const WCHAR* found, const WCHAR* none);
