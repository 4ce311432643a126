// The published names that a program on Linux is linked to. Each call goes through its pointer, which is the
// emulated PC's function unless RedirectedCalls has written another.

#include "linked_calls.h"

extern "C" {

BOOL WINAPI CloseHandle(HANDLE handle) {
    return Linked_CloseHandle(handle);
}

HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* out) {
    return Linked_CoCreateInstance(clsid, outer, context, iid, out);
}

HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD model) {
    return Linked_CoInitializeEx(reserved, model);
}

HRESULT WINAPI CoInitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services,
                                    SOLE_AUTHENTICATION_SERVICE* serviceList, void* reserved1,
                                    DWORD authentication, DWORD impersonation, void* identities,
                                    DWORD capabilities, void* reserved3) {
    return Linked_CoInitializeSecurity(descriptor, services, serviceList, reserved1, authentication,
                                       impersonation, identities, capabilities, reserved3);
}

HRESULT WINAPI CoSetProxyBlanket(IUnknown* proxy, DWORD authentication, DWORD authorization,
                                 OLECHAR* principal, DWORD level, DWORD impersonation,
                                 RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities) {
    return Linked_CoSetProxyBlanket(proxy, authentication, authorization, principal, level, impersonation,
                                    identity, capabilities);
}

LPVOID WINAPI CoTaskMemAlloc(SIZE_T size) {
    return Linked_CoTaskMemAlloc(size);
}

void WINAPI CoTaskMemFree(LPVOID memory) {
    Linked_CoTaskMemFree(memory);
}

void WINAPI CoUninitialize() {
    Linked_CoUninitialize();
}

HANDLE WINAPI CreateFileW(LPCWSTR name, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                          DWORD disposition, DWORD flags, HANDLE pattern) {
    return Linked_CreateFileW(name, access, shareMode, security, disposition, flags, pattern);
}

BOOL WINAPI DeleteFileW(LPCWSTR name) {
    return Linked_DeleteFileW(name);
}

BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD inputSize, LPVOID output,
                            DWORD outputSize, LPDWORD returned, LPOVERLAPPED overlapped) {
    return Linked_DeviceIoControl(handle, code, input, inputSize, output, outputSize, returned, overlapped);
}

HANDLE WINAPI FindFirstVolumeW(LPWSTR name, DWORD size) {
    return Linked_FindFirstVolumeW(name, size);
}

BOOL WINAPI FindNextVolumeW(HANDLE search, LPWSTR name, DWORD size) {
    return Linked_FindNextVolumeW(search, name, size);
}

BOOL WINAPI FindVolumeClose(HANDLE search) {
    return Linked_FindVolumeClose(search);
}

HANDLE WINAPI GetCurrentProcess() {
    return Linked_GetCurrentProcess();
}

UINT WINAPI GetDriveTypeW(LPCWSTR root) {
    return Linked_GetDriveTypeW(root);
}

DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR space, PVOID buffer, DWORD size) {
    return Linked_GetFirmwareEnvironmentVariableW(name, space, buffer, size);
}

DWORD WINAPI GetLastError() {
    return Linked_GetLastError();
}

DWORD WINAPI GetLogicalDriveStringsW(DWORD size, LPWSTR buffer) {
    return Linked_GetLogicalDriveStringsW(size, buffer);
}

DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR buffer, DWORD size) {
    return Linked_GetModuleFileNameW(module, buffer, size);
}

decltype(GetPrivateProfileStringW(nullptr, nullptr, nullptr, nullptr, 0, nullptr)) WINAPI
GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer, DWORD size,
                         LPCWSTR file) {
    return Linked_GetPrivateProfileStringW(section, key, defaultValue, buffer, size, file);
}

BOOL WINAPI GetVolumeInformationW(LPCWSTR root, LPWSTR label, DWORD labelSize, LPDWORD serial,
                                  LPDWORD longestName, LPDWORD flags, LPWSTR fileSystem,
                                  DWORD fileSystemSize) {
    return Linked_GetVolumeInformationW(root, label, labelSize, serial, longestName, flags, fileSystem,
                                        fileSystemSize);
}

BOOL WINAPI GetVolumeNameForVolumeMountPointW(LPCWSTR root, LPWSTR name, DWORD size) {
    return Linked_GetVolumeNameForVolumeMountPointW(root, name, size);
}

UINT WINAPI GetWindowsDirectoryW(LPWSTR buffer, UINT size) {
    return Linked_GetWindowsDirectoryW(buffer, size);
}

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T bytes) {
    return Linked_GlobalAlloc(flags, bytes);
}

HGLOBAL WINAPI GlobalFree(HGLOBAL block) {
    return Linked_GlobalFree(block);
}

BOOL WINAPI IsWow64Process(HANDLE process, PBOOL emulated) {
    return Linked_IsWow64Process(process, emulated);
}

BOOL WINAPI PathAppendW(LPWSTR path, LPCWSTR more) {
    return Linked_PathAppendW(path, more);
}

BOOL WINAPI PathFileExistsW(LPCWSTR path) {
    return Linked_PathFileExistsW(path);
}

BOOL WINAPI PathIsDirectoryW(LPCWSTR path) {
    return Linked_PathIsDirectoryW(path);
}

BOOL WINAPI PathRemoveFileSpecW(LPWSTR path) {
    return Linked_PathRemoveFileSpecW(path);
}

BOOL WINAPI ReadFile(HANDLE handle, LPVOID bytes, DWORD size, LPDWORD read, LPOVERLAPPED overlapped) {
    return Linked_ReadFile(handle, bytes, size, read, overlapped);
}

LSTATUS WINAPI RegCloseKey(HKEY key) {
    return Linked_RegCloseKey(key);
}

LSTATUS WINAPI RegLoadKeyW(HKEY parent, LPCWSTR name, LPCWSTR file) {
    return Linked_RegLoadKeyW(parent, name, file);
}

LSTATUS WINAPI RegOpenKeyExW(HKEY parent, LPCWSTR name, DWORD options, REGSAM access, PHKEY opened) {
    return Linked_RegOpenKeyExW(parent, name, options, access, opened);
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size) {
    return Linked_RegQueryValueExW(key, name, reserved, type, data, size);
}

void WINAPI SetLastError(DWORD error) {
    Linked_SetLastError(error);
}

LSTATUS WINAPI RegUnLoadKeyW(HKEY parent, LPCWSTR name) {
    return Linked_RegUnLoadKeyW(parent, name);
}

HDEVINFO WINAPI SetupDiCreateDeviceInfoList(const GUID* deviceClass, HWND window) {
    return Linked_SetupDiCreateDeviceInfoList(deviceClass, window);
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO set) {
    return Linked_SetupDiDestroyDeviceInfoList(set);
}

BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(HDEVINFO set, PSP_DEVINFO_DATA element, DWORD property,
                                              PDWORD type, PBYTE buffer, DWORD size, PDWORD required) {
    return Linked_SetupDiGetDeviceRegistryPropertyW(set, element, property, type, buffer, size, required);
}

BOOL WINAPI SetupDiOpenDeviceInfoW(HDEVINFO set, PCWSTR id, HWND window, DWORD flags,
                                   PSP_DEVINFO_DATA element) {
    return Linked_SetupDiOpenDeviceInfoW(set, id, window, flags, element);
}

BOOL WINAPI ShellExecuteExW(SHELLEXECUTEINFOW* info) {
    return Linked_ShellExecuteExW(info);
}

void WINAPI Sleep(DWORD milliseconds) {
    Linked_Sleep(milliseconds);
}

BSTR WINAPI SysAllocString(const OLECHAR* text) {
    return Linked_SysAllocString(text);
}

void WINAPI SysFreeString(BSTR string) {
    Linked_SysFreeString(string);
}

UINT WINAPI SysStringLen(BSTR string) {
    return Linked_SysStringLen(string);
}

HRESULT WINAPI VariantClear(VARIANTARG* variant) {
    return Linked_VariantClear(variant);
}

void WINAPI VariantInit(VARIANTARG* variant) {
    Linked_VariantInit(variant);
}

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    return Linked_WaitForSingleObject(handle, milliseconds);
}

INT WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, INT length, LPSTR buffer,
                               INT capacity, LPCSTR substitute, LPBOOL substituted) {
    return Linked_WideCharToMultiByte(codePage, flags, text, length, buffer, capacity, substitute,
                                      substituted);
}

BOOL WINAPI Wow64DisableWow64FsRedirection(PVOID* oldState) {
    return Linked_Wow64DisableWow64FsRedirection(oldState);
}

BOOL WINAPI Wow64RevertWow64FsRedirection(PVOID oldState) {
    return Linked_Wow64RevertWow64FsRedirection(oldState);
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID bytes, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    return Linked_WriteFile(handle, bytes, size, written, overlapped);
}

BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file) {
    return Linked_WritePrivateProfileStringW(section, key, value, file);
}
}
