// What the log may be written to.
#pragma once

#include <string>

#include "platform/windows_api.h"

// Whether an opened handle is that of a file under one name: no folder, device or pipe, no reparse point and
// no further hard link, behind any of which another file would be written. The type is that of GetFileType.
bool IsPlainFile(DWORD type, const BY_HANDLE_FILE_INFORMATION& facts);

// Whether a path says the drive and every folder, or the share: "C:\folder\file", "\\server\share\file".
bool IsFullPath(const std::basic_string<WCHAR>& path);
