#include "device/device_handle.h"

FileHandle OpenDevice(const WCHAR* path) {
    return FileHandle(CreateFileW(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}
