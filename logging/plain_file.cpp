#include "logging/plain_file.h"

bool IsPlainFile(DWORD type, const BY_HANDLE_FILE_INFORMATION& facts) {
    constexpr DWORD otherThanFile =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
    return type == FILE_TYPE_DISK && (facts.dwFileAttributes & otherThanFile) == 0 &&
           facts.nNumberOfLinks <= 1;
}

bool IsFullPath(const std::basic_string<WCHAR>& path) {
    if (path.size() < 3) return false;
    if (path[0] == TEXT('\\') && path[1] == TEXT('\\')) return true;
    const bool letter =
        (path[0] >= TEXT('A') && path[0] <= TEXT('Z')) || (path[0] >= TEXT('a') && path[0] <= TEXT('z'));
    return letter && path[1] == TEXT(':') && path[2] == TEXT('\\');
}
