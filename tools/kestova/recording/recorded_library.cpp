#include "tools/kestova/recording/recorded_library.h"

#include "tools/kestova/recording/exchange.h"

using namespace recording;

namespace {

Tape* theTape = nullptr;

template <typename Result, typename Perform, typename... Parameters>
typename Result::Type Taped(const char* call, const Perform& perform, const Parameters&... parameters) {
    return Exchange<Result>(*theTape, call, nullptr, perform, parameters...);
}

// --- files, volumes, devices ---

BOOL WINAPI TapedCloseHandle(HANDLE handle) {
    return Taped<Flag>(
        "CloseHandle", [&] { return CloseHandle(handle); }, InHandle{"handle", handle});
}

HANDLE WINAPI TapedCreateFile(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                              DWORD disposition, DWORD flags, HANDLE pattern) {
    return Taped<Opened<HANDLE, -1>>(
        "CreateFileW",
        [&] { return CreateFileW(name, access, share, security, disposition, flags, pattern); },
        In{"name", name}, In{"access", access}, In{"share", share}, In{"disposition", disposition},
        In{"flags", flags});
}

BOOL WINAPI TapedDeleteFile(LPCWSTR name) {
    return Taped<Flag>(
        "DeleteFileW", [&] { return DeleteFileW(name); }, In{"name", name});
}

BOOL WINAPI TapedDeviceIoControl(HANDLE device, DWORD control, LPVOID input, DWORD inputSize, LPVOID output,
                                 DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped) {
    return Taped<Flag>(
        "DeviceIoControl",
        [&] {
            return DeviceIoControl(device, control, input, inputSize, output, outputSize, returned,
                                   overlapped);
        },
        InHandle{"device", device}, In{"control", control}, InBytes{"input", input, inputSize},
        In{"outputSize", outputSize}, Out{"returned", returned},
        OutBytes{"output", output, outputSize, returned});
}

UINT WINAPI TapedGetDriveType(LPCWSTR root) {
    return Taped<Counted<UINT>>(
        "GetDriveTypeW", [&] { return GetDriveTypeW(root); }, In{"root", root});
}

DWORD WINAPI TapedGetLogicalDriveStrings(DWORD size, LPWSTR buffer) {
    return Taped<Counted<DWORD>>(
        "GetLogicalDriveStringsW", [&] { return GetLogicalDriveStringsW(size, buffer); }, In{"size", size},
        OutTexts{"roots", buffer, size});
}

DWORD WINAPI TapedGetModuleFileName(HMODULE module, LPWSTR buffer, DWORD size) {
    return Taped<Counted<DWORD>>(
        "GetModuleFileNameW", [&] { return GetModuleFileNameW(module, buffer, size); }, In{"size", size},
        OutText{"name", buffer, size});
}

BOOL WINAPI TapedGetVolumeInformation(LPCWSTR root, LPWSTR label, DWORD labelSize, LPDWORD serial,
                                      LPDWORD longestName, LPDWORD flags, LPWSTR fileSystem,
                                      DWORD fileSystemSize) {
    return Taped<Flag>(
        "GetVolumeInformationW",
        [&] {
            return GetVolumeInformationW(root, label, labelSize, serial, longestName, flags, fileSystem,
                                         fileSystemSize);
        },
        In{"root", root}, OutText{"label", label, labelSize}, Out{"serial", serial},
        Out{"longestName", longestName}, Out{"flags", flags},
        OutText{"fileSystem", fileSystem, fileSystemSize});
}

UINT WINAPI TapedGetWindowsDirectory(LPWSTR buffer, UINT size) {
    return Taped<Counted<UINT>>(
        "GetWindowsDirectoryW", [&] { return GetWindowsDirectoryW(buffer, size); }, In{"size", size},
        OutText{"directory", buffer, size});
}

BOOL WINAPI TapedWriteFile(HANDLE file, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    return Taped<Flag>(
        "WriteFile", [&] { return WriteFile(file, bytes, size, written, overlapped); },
        InHandle{"file", file}, InBytes{"bytes", bytes, size}, Out{"written", written});
}

// --- paths and texts ---

BOOL WINAPI TapedPathAppend(LPWSTR path, LPCWSTR more) {
    return Taped<Flag>(
        "PathAppendW", [&] { return PathAppendW(path, more); }, OutText{"path", path, MAX_PATH, true},
        In{"more", more});
}

BOOL WINAPI TapedPathFileExists(LPCWSTR path) {
    return Taped<Flag>(
        "PathFileExistsW", [&] { return PathFileExistsW(path); }, In{"path", path});
}

BOOL WINAPI TapedPathRemoveFileSpec(LPWSTR path) {
    return Taped<Flag>(
        "PathRemoveFileSpecW", [&] { return PathRemoveFileSpecW(path); },
        OutText{"path", path, MAX_PATH, true});
}

INT WINAPI TapedWideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, INT length, LPSTR buffer,
                                    INT capacity, LPCSTR substitute, LPBOOL substituted) {
    DWORD made = 0;
    return Taped<Counted<INT>>(
        "WideCharToMultiByte",
        [&] {
            const INT count =
                WideCharToMultiByte(codePage, flags, text, length, buffer, capacity, substitute, substituted);
            made = static_cast<DWORD>(count);
            return count;
        },
        In{"codePage", codePage}, In{"flags", flags}, In{"text", text}, In{"length", length},
        In{"capacity", capacity}, OutBytes{"bytes", buffer, static_cast<size_t>(capacity), &made});
}

// --- profiles, registry, firmware ---

using Length = decltype(GetPrivateProfileStringW(nullptr, nullptr, nullptr, nullptr, 0, nullptr));

Length WINAPI TapedGetProfile(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer, DWORD size,
                              LPCWSTR file) {
    return Taped<Counted<Length>>(
        "GetPrivateProfileStringW",
        [&] { return GetPrivateProfileStringW(section, key, otherwise, buffer, size, file); },
        In{"section", section}, In{"key", key}, In{"default", otherwise}, In{"size", size}, In{"file", file},
        OutText{"value", buffer, size});
}

BOOL WINAPI TapedWriteProfile(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    return Taped<Flag>(
        "WritePrivateProfileStringW", [&] { return WritePrivateProfileStringW(section, key, value, file); },
        In{"section", section}, In{"key", key}, In{"value", value}, In{"file", file});
}

LSTATUS WINAPI TapedRegOpenKey(HKEY parent, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
    return Taped<Status>(
        "RegOpenKeyExW", [&] { return RegOpenKeyExW(parent, name, options, access, opened); },
        InHandle{"parent", parent}, In{"name", name}, In{"access", access},
        OutHandle{"key", reinterpret_cast<void**>(opened)});
}

LSTATUS WINAPI TapedRegQueryValue(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                  LPDWORD size) {
    const DWORD room = data != nullptr && size != nullptr ? *size : 0;
    return Taped<Status>(
        "RegQueryValueExW", [&] { return RegQueryValueExW(key, name, reserved, type, data, size); },
        InHandle{"key", key}, In{"name", name}, Out{"type", type}, InOutSize{"size", size},
        OutBytes{"data", data, room, size});
}

LSTATUS WINAPI TapedRegCloseKey(HKEY key) {
    return Taped<Status>(
        "RegCloseKey", [&] { return RegCloseKey(key); }, InHandle{"key", key});
}

DWORD WINAPI TapedGetFirmwareVariable(LPCWSTR name, LPCWSTR space, PVOID buffer, DWORD size) {
    DWORD length = 0;
    return Taped<Counted<DWORD>>(
        "GetFirmwareEnvironmentVariableW",
        [&] { return length = GetFirmwareEnvironmentVariableW(name, space, buffer, size); }, In{"name", name},
        In{"space", space}, In{"size", size}, OutBytes{"value", buffer, size, &length});
}

// --- device set-up ---

HDEVINFO WINAPI TapedCreateDeviceList(const GUID* deviceClass, HWND window) {
    return Taped<Opened<HDEVINFO, -1>>("SetupDiCreateDeviceInfoList",
                                       [&] { return SetupDiCreateDeviceInfoList(deviceClass, window); });
}

BOOL WINAPI TapedDestroyDeviceList(HDEVINFO list) {
    return Taped<Flag>(
        "SetupDiDestroyDeviceInfoList", [&] { return SetupDiDestroyDeviceInfoList(list); },
        InHandle{"list", list});
}

BOOL WINAPI TapedOpenDevice(HDEVINFO list, PCWSTR id, HWND window, DWORD flags, PSP_DEVINFO_DATA device) {
    return Taped<Flag>(
        "SetupDiOpenDeviceInfoW", [&] { return SetupDiOpenDeviceInfoW(list, id, window, flags, device); },
        InHandle{"list", list}, In{"id", id}, In{"flags", flags}, Out{"device", &device->DevInst});
}

BOOL WINAPI TapedGetDeviceProperty(HDEVINFO list, PSP_DEVINFO_DATA device, DWORD property, PDWORD type,
                                   PBYTE buffer, DWORD size, PDWORD required) {
    return Taped<Flag>(
        "SetupDiGetDeviceRegistryPropertyW",
        [&] {
            return SetupDiGetDeviceRegistryPropertyW(list, device, property, type, buffer, size, required);
        },
        InHandle{"list", list}, In{"device", device->DevInst}, In{"property", property}, In{"room", size},
        Out{"type", type}, Out{"required", required}, OutBytes{"value", buffer, size});
}

// --- programs, waiting, the 32-bit view ---

BOOL WINAPI TapedShellExecute(SHELLEXECUTEINFOW* info) {
    return Taped<Flag>(
        "ShellExecuteExW", [&] { return ShellExecuteExW(info); }, In{"verb", info->lpVerb},
        In{"file", info->lpFile}, In{"parameters", info->lpParameters}, In{"mask", info->fMask},
        In{"show", info->nShow}, OutHandle{"process", &info->hProcess});
}

DWORD WINAPI TapedWait(HANDLE handle, DWORD milliseconds) {
    return Taped<Counted<DWORD, WAIT_FAILED>>(
        "WaitForSingleObject", [&] { return WaitForSingleObject(handle, milliseconds); },
        InHandle{"handle", handle}, In{"milliseconds", milliseconds});
}

// A replay does not sleep.
void WINAPI TapedSleep(DWORD milliseconds) {
    Taped<Flag>(
        "Sleep",
        [&] {
            Sleep(milliseconds);
            return TRUE;
        },
        In{"milliseconds", milliseconds});
}

BOOL WINAPI TapedIsWow64(HANDLE process, PBOOL emulated) {
    return Taped<Flag>(
        "IsWow64Process", [&] { return IsWow64Process(process, emulated); }, InHandle{"process", process},
        Out{"emulated", emulated});
}

BOOL WINAPI TapedDisableRedirection(PVOID* former) {
    return Taped<Flag>(
        "Wow64DisableWow64FsRedirection", [&] { return Wow64DisableWow64FsRedirection(former); },
        OutHandle{"former", former});
}

BOOL WINAPI TapedRevertRedirection(PVOID former) {
    return Taped<Flag>(
        "Wow64RevertWow64FsRedirection", [&] { return Wow64RevertWow64FsRedirection(former); },
        InHandle{"former", former});
}

// --- memory: a recording says whether there was some, and a replay takes its own ---

template <typename Allocate>
auto TapedMemory(const char* call, const Allocate& allocate, const auto&... asked) {
    decltype(allocate()) memory = nullptr;
    const bool hadSome = Taped<Flag>(
                             call,
                             [&] {
                                 memory = allocate();
                                 return memory != nullptr ? TRUE : FALSE;
                             },
                             asked...) != FALSE;
    return hadSome && theTape->Answers() ? allocate() : memory;
}

HGLOBAL WINAPI TapedGlobalAlloc(UINT flags, SIZE_T bytes) {
    return TapedMemory(
        "GlobalAlloc", [&] { return GlobalAlloc(flags, bytes); }, In{"flags", flags},
        In{"bytes", uint64_t{bytes}});
}

BSTR WINAPI TapedSysAllocString(const OLECHAR* text) {
    return TapedMemory(
        "SysAllocString", [&] { return SysAllocString(text); }, In<LPCWSTR>{"text", text});
}

// --- COM ---

HRESULT WINAPI TapedCoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                         SOLE_AUTHENTICATION_SERVICE* serviceList, void* reserved1,
                                         DWORD authentication, DWORD impersonation, void* identities,
                                         DWORD capabilities, void* reserved3) {
    return Taped<Hresult>(
        "CoInitializeSecurity",
        [&] {
            return CoInitializeSecurity(descriptor, services, serviceList, reserved1, authentication,
                                        impersonation, identities, capabilities, reserved3);
        },
        In{"services", services}, In{"authentication", authentication}, In{"impersonation", impersonation},
        In{"capabilities", capabilities});
}

HRESULT WINAPI TapedCoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID interfaceId,
                                     LPVOID* out) {
    return Taped<Hresult>(
        "CoCreateInstance", [&] { return CoCreateInstance(classId, outer, context, interfaceId, out); },
        In{"class", GUID(classId)}, In{"context", context}, In{"interface", GUID(interfaceId)},
        OutObject{"answer", interfaceId, reinterpret_cast<IUnknown**>(out)});
}

HRESULT WINAPI TapedCoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization,
                                      OLECHAR* principal, DWORD level, DWORD impersonation,
                                      RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
    return Taped<Hresult>(
        "CoSetProxyBlanket",
        [&] {
            return CoSetProxyBlanket(OfPlatform(proxy, *theTape), authentication, authorization, principal,
                                     level, impersonation, identity, capabilities);
        },
        InObject{"proxy", proxy}, In{"authentication", authentication}, In{"authorization", authorization},
        In{"level", level}, In{"impersonation", impersonation}, In{"capabilities", capabilities});
}

// --- the last error: each call's line has it, so that what the C runtime does with it leaves no line ---

DWORD WINAPI TapedGetLastError() {
    return theTape->Answers() ? theTape->lastError : GetLastError();
}

void WINAPI TapedSetLastError(DWORD error) {
    if (theTape->Answers()) {
        theTape->lastError = error;
    } else {
        SetLastError(error);
    }
}

template <typename Function>
machine::AnsweredCall Row(const char* name, Function* function) {
    return {name, reinterpret_cast<const void*>(function)};
}

const machine::AnsweredCall calls[] = {
    Row("CloseHandle", TapedCloseHandle),
    Row("CoCreateInstance", TapedCoCreateInstance),
    Row("CoInitializeSecurity", TapedCoInitializeSecurity),
    Row("CoSetProxyBlanket", TapedCoSetProxyBlanket),
    Row("CreateFileW", TapedCreateFile),
    Row("DeleteFileW", TapedDeleteFile),
    Row("DeviceIoControl", TapedDeviceIoControl),
    Row("GetDriveTypeW", TapedGetDriveType),
    Row("GetFirmwareEnvironmentVariableW", TapedGetFirmwareVariable),
    Row("GetLastError", TapedGetLastError),
    Row("GetLogicalDriveStringsW", TapedGetLogicalDriveStrings),
    Row("GetModuleFileNameW", TapedGetModuleFileName),
    Row("GetPrivateProfileStringW", TapedGetProfile),
    Row("GetVolumeInformationW", TapedGetVolumeInformation),
    Row("GetWindowsDirectoryW", TapedGetWindowsDirectory),
    Row("GlobalAlloc", TapedGlobalAlloc),
    Row("IsWow64Process", TapedIsWow64),
    Row("PathAppendW", TapedPathAppend),
    Row("PathFileExistsW", TapedPathFileExists),
    Row("PathRemoveFileSpecW", TapedPathRemoveFileSpec),
    Row("RegCloseKey", TapedRegCloseKey),
    Row("RegOpenKeyExW", TapedRegOpenKey),
    Row("RegQueryValueExW", TapedRegQueryValue),
    Row("SetLastError", TapedSetLastError),
    Row("SetupDiCreateDeviceInfoList", TapedCreateDeviceList),
    Row("SetupDiDestroyDeviceInfoList", TapedDestroyDeviceList),
    Row("SetupDiGetDeviceRegistryPropertyW", TapedGetDeviceProperty),
    Row("SetupDiOpenDeviceInfoW", TapedOpenDevice),
    Row("ShellExecuteExW", TapedShellExecute),
    Row("Sleep", TapedSleep),
    Row("SysAllocString", TapedSysAllocString),
    Row("WaitForSingleObject", TapedWait),
    Row("WideCharToMultiByte", TapedWideCharToMultiByte),
    Row("Wow64DisableWow64FsRedirection", TapedDisableRedirection),
    Row("Wow64RevertWow64FsRedirection", TapedRevertRedirection),
    Row("WriteFile", TapedWriteFile),
    Row("WritePrivateProfileStringW", TapedWriteProfile),
};

}  // namespace

std::span<const machine::AnsweredCall> TapedCalls() {
    return calls;
}

RecordedLibrary::RecordedLibrary(Tape& tape) : calls_(TapedCalls()) {
    theTape = &tape;
}

RecordedLibrary::~RecordedLibrary() {
    theTape = nullptr;
}
