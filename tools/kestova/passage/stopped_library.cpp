#include "tools/kestova/passage/stopped_library.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "base/hexadecimal.h"
#include "base/utf.h"
#include "tools/kestova/passage/passed_objects.h"

namespace {

ChangeStop* theStop = nullptr;

// The result is the call's own failure value.
template <typename Result>
Result Refused(const std::string& change, Result failure) {
    theStop->Refuse(change);
    SetLastError(ERROR_CANCELLED);
    return failure;
}

std::string Text(LPCWSTR text) {
    return text != nullptr ? ToUtf8(text) : "";
}

// WMI is only asked; the Virtual Disk Service changes disks.
HRESULT WINAPI PassedCoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID interfaceId,
                                      LPVOID* out) {
    const HRESULT answer = CoCreateInstance(classId, outer, context, interfaceId, out);
    if (FAILED(answer) || !IsEqualGUID(classId, CLSID_VdsLoader)) return answer;
    const HRESULT passed = PassThrough(interfaceId, out, *theStop);
    return FAILED(passed) ? passed : answer;
}

// To open what exists changes nothing, whatever may be done with it.
HANDLE WINAPI PassedCreateFile(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                               DWORD disposition, DWORD flags, HANDLE pattern) {
    if (disposition != OPEN_EXISTING) return Refused("create the file " + Text(name), INVALID_HANDLE_VALUE);
    return CreateFileW(name, access, share, security, disposition, flags, pattern);
}

// Without the file it fails by itself.
BOOL WINAPI PassedDeleteFile(LPCWSTR name) {
    if (GetFileAttributesW(name) == INVALID_FILE_ATTRIBUTES) return DeleteFileW(name);
    return Refused("delete the file " + Text(name), FALSE);
}

constexpr DWORD questions[] = {IOCTL_STORAGE_QUERY_PROPERTY, IOCTL_SCSI_GET_ADDRESS,
                               IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, IOCTL_DISK_GET_PARTITION_INFO_EX};

BOOL WINAPI PassedDeviceIoControl(HANDLE device, DWORD control, LPVOID input, DWORD inputSize, LPVOID output,
                                  DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped) {
    if (std::ranges::count(questions, control) == 0)
        return Refused("send the control " + Hex(control, 8) + " to a device", FALSE);
    return DeviceIoControl(device, control, input, inputSize, output, outputSize, returned, overlapped);
}

BOOL WINAPI PassedShellExecute(SHELLEXECUTEINFOW* info) {
    return Refused("start the program " + Text(info->lpFile), FALSE);
}

BOOL WINAPI PassedWriteFile(HANDLE, LPCVOID, DWORD size, LPDWORD, LPOVERLAPPED) {
    return Refused("write " + std::to_string(size) + " bytes", FALSE);
}

BOOL WINAPI PassedWriteProfile(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    return Refused(
        "write [" + Text(section) + "] " + Text(key) + "=" + Text(value) + " into the file " + Text(file),
        FALSE);
}

// Sorted by name. What the library asks besides only answers, or concerns its own process.
const machine::AnsweredCall calls[] = {
    {"CoCreateInstance", reinterpret_cast<const void*>(&PassedCoCreateInstance)},
    {"CreateFileW", reinterpret_cast<const void*>(&PassedCreateFile)},
    {"DeleteFileW", reinterpret_cast<const void*>(&PassedDeleteFile)},
    {"DeviceIoControl", reinterpret_cast<const void*>(&PassedDeviceIoControl)},
    {"ShellExecuteExW", reinterpret_cast<const void*>(&PassedShellExecute)},
    {"WriteFile", reinterpret_cast<const void*>(&PassedWriteFile)},
    {"WritePrivateProfileStringW", reinterpret_cast<const void*>(&PassedWriteProfile)},
};

}  // namespace

StoppedLibrary::StoppedLibrary()
    : imports_(GetModuleHandleW(TEXT("Kestova.dll")), calls, machine::OtherImports::StayWithWindows) {
    theStop = &stop_;
}

StoppedLibrary::~StoppedLibrary() {
    theStop = nullptr;
}
