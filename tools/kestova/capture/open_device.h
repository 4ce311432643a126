// Devices and files, opened so that nothing of them changes.
#pragma once

#include <string>

#include "base/owners.h"

// Shared with everybody. Without access a device answers questions only. An empty handle if CreateFileW
// fails; the last error is its code.
FileHandle OpenShared(const std::string& path, DWORD access);
