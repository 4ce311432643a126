// Every platform call that can fail, by its published name, and how it reports a failure.
#pragma once

#include <span>
#include <string_view>

namespace machine {

// How a call reports failure, which defines the meaning of a fault rule's code.
enum class FailsWith {
    Hresult,            // the code is the result; 0 returns success without doing anything
    Status,             // the code is the result, as in registry calls
    FalseAndLastError,  // FALSE; the code is the last error
    ZeroAndLastError,   // a count of 0; the code is the last error
    NullAndLastError,   // a null pointer; the code is the last error
    InvalidHandle,      // INVALID_HANDLE_VALUE; the code is the last error
    Value,              // cannot fail: the code is the returned value
};

struct CallInfo {
    std::string_view name;
    FailsWith failsWith;
    bool changesPc;  // whether a failure after the effect differs from one before it
};

// All calls, sorted by name within each area.
inline constexpr CallInfo callRows[] = {
    // files, volumes, devices
    {"CloseHandle", FailsWith::FalseAndLastError, true},
    {"CreateFileW", FailsWith::InvalidHandle, true},
    {"DeleteFileW", FailsWith::FalseAndLastError, true},
    {"DeviceIoControl", FailsWith::FalseAndLastError, false},
    {"FindFirstVolumeW", FailsWith::InvalidHandle, false},
    {"FindNextVolumeW", FailsWith::FalseAndLastError, false},
    {"FindVolumeClose", FailsWith::FalseAndLastError, true},
    {"GetDriveTypeW", FailsWith::Value, false},
    {"GetLogicalDriveStringsW", FailsWith::ZeroAndLastError, false},
    {"GetModuleFileNameW", FailsWith::ZeroAndLastError, false},
    {"GetVolumeInformationW", FailsWith::FalseAndLastError, false},
    {"GetVolumeNameForVolumeMountPointW", FailsWith::FalseAndLastError, false},
    {"GetWindowsDirectoryW", FailsWith::ZeroAndLastError, false},
    {"IsWow64Process", FailsWith::FalseAndLastError, false},
    {"PathAppendW", FailsWith::FalseAndLastError, false},
    {"PathFileExistsW", FailsWith::FalseAndLastError, false},
    {"PathIsDirectoryW", FailsWith::FalseAndLastError, false},
    {"PathRemoveFileSpecW", FailsWith::FalseAndLastError, false},
    {"ReadFile", FailsWith::FalseAndLastError, false},
    {"Wow64DisableWow64FsRedirection", FailsWith::FalseAndLastError, true},
    {"Wow64RevertWow64FsRedirection", FailsWith::FalseAndLastError, true},
    {"WriteFile", FailsWith::FalseAndLastError, true},
    // programs and text
    {"ShellExecuteExW", FailsWith::FalseAndLastError, true},
    {"WaitForSingleObject", FailsWith::Value, true},
    {"WideCharToMultiByte", FailsWith::ZeroAndLastError, false},
    // profiles, registry, firmware, time
    {"GetFirmwareEnvironmentVariableW", FailsWith::ZeroAndLastError, false},
    {"GetPrivateProfileStringW", FailsWith::ZeroAndLastError, false},
    {"RegCloseKey", FailsWith::Status, true},
    {"RegOpenKeyExW", FailsWith::Status, false},
    {"RegQueryValueExW", FailsWith::Status, false},
    {"WritePrivateProfileStringW", FailsWith::FalseAndLastError, true},
    // memory
    {"GlobalAlloc", FailsWith::NullAndLastError, false},
    {"SysAllocString", FailsWith::NullAndLastError, false},
    // device set-up
    {"SetupDiCreateDeviceInfoList", FailsWith::InvalidHandle, false},
    {"SetupDiDestroyDeviceInfoList", FailsWith::FalseAndLastError, true},
    {"SetupDiGetDeviceRegistryPropertyW", FailsWith::FalseAndLastError, false},
    {"SetupDiOpenDeviceInfoW", FailsWith::FalseAndLastError, false},
    // COM
    {"CoCreateInstance", FailsWith::Hresult, false},
    {"CoInitializeEx", FailsWith::Hresult, true},
    {"CoInitializeSecurity", FailsWith::Hresult, true},
    {"CoSetProxyBlanket", FailsWith::Hresult, false},
    {"IUnknown::QueryInterface", FailsWith::Hresult, false},
    // Virtual Disk Service
    {"IEnumVdsObject::Next", FailsWith::Hresult, false},
    {"IVdsAdvancedDisk2::ChangePartitionType", FailsWith::Hresult, true},
    {"IVdsAdvancedDisk::AssignDriveLetter", FailsWith::Hresult, true},
    {"IVdsAdvancedDisk::ChangeAttributes", FailsWith::Hresult, true},
    {"IVdsAdvancedDisk::DeleteDriveLetter", FailsWith::Hresult, true},
    {"IVdsAdvancedDisk::GetDriveLetter", FailsWith::Hresult, false},
    {"IVdsAdvancedDisk::QueryPartitions", FailsWith::Hresult, false},
    {"IVdsDisk::GetProperties", FailsWith::Hresult, false},
    {"IVdsDisk::QueryExtents", FailsWith::Hresult, false},
    {"IVdsPack::GetProperties", FailsWith::Hresult, false},
    {"IVdsPack::QueryDisks", FailsWith::Hresult, false},
    {"IVdsProvider::GetProperties", FailsWith::Hresult, false},
    {"IVdsService::GetObject", FailsWith::Hresult, false},
    {"IVdsService::IsServiceReady", FailsWith::Hresult, false},
    {"IVdsService::QueryProviders", FailsWith::Hresult, false},
    {"IVdsService::QueryUnallocatedDisks", FailsWith::Hresult, false},
    {"IVdsService::WaitForServiceReady", FailsWith::Hresult, false},
    {"IVdsServiceLoader::LoadService", FailsWith::Hresult, false},
    {"IVdsSwProvider::QueryPacks", FailsWith::Hresult, false},
    {"IVdsVolumeMF::GetFileSystemProperties", FailsWith::Hresult, false},
    // WMI
    {"IEnumWbemClassObject::Next", FailsWith::Hresult, false},
    {"IWbemClassObject::Get", FailsWith::Hresult, false},
    {"IWbemClassObject::GetMethod", FailsWith::Hresult, false},
    {"IWbemClassObject::Put", FailsWith::Hresult, false},
    {"IWbemClassObject::SpawnInstance", FailsWith::Hresult, false},
    {"IWbemLocator::ConnectServer", FailsWith::Hresult, false},
    {"IWbemServices::CreateInstanceEnum", FailsWith::Hresult, false},
    {"IWbemServices::ExecMethod", FailsWith::Hresult, false},
    {"IWbemServices::GetObject", FailsWith::Hresult, false},
};

constexpr std::span<const CallInfo> AllCalls() {
    return callRows;
}

// The row with that name, or null.
constexpr const CallInfo* FindCall(std::string_view name) {
    for (const CallInfo& call : callRows)
        if (call.name == name) return &call;
    return nullptr;
}

// A call that a source names: its row is found when that is compiled, and a name without a row does not
// compile.
class CallName {
  public:
    consteval CallName(const char* name) : info_(*FindCall(name)) {}
    constexpr const CallInfo& Info() const { return info_; }

  private:
    const CallInfo& info_;
};

}  // namespace machine
