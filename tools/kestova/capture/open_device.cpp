#include "tools/kestova/capture/open_device.h"

#include "base/utf.h"

FileHandle OpenShared(const std::string& path, DWORD access) {
    return FileHandle(CreateFileW(ToWide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}
