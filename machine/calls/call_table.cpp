#include "machine/calls/call_table.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace machine {

namespace {

constexpr CallInfo calls[] = {
    // files, volumes, devices
    {"CloseHandle", FailsWith::FalseAndLastError, true},
    {"CreateFileW", FailsWith::InvalidHandle, true},
    {"DeleteFileW", FailsWith::FalseAndLastError, true},
    {"DeviceIoControl", FailsWith::FalseAndLastError, false},
    {"GetDriveTypeW", FailsWith::Value, false},
    {"GetLogicalDriveStringsW", FailsWith::ZeroAndLastError, false},
    {"GetModuleFileNameW", FailsWith::ZeroAndLastError, false},
    {"GetVolumeInformationW", FailsWith::FalseAndLastError, false},
    {"GetWindowsDirectoryW", FailsWith::ZeroAndLastError, false},
    {"IsWow64Process", FailsWith::FalseAndLastError, false},
    {"PathAppendW", FailsWith::FalseAndLastError, false},
    {"PathFileExistsW", FailsWith::FalseAndLastError, false},
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

// Found by name at each call, and without memory, which tests make scarce.
constexpr auto byName = [] {
    std::array<const CallInfo*, std::size(calls)> rows{};
    std::transform(std::begin(calls), std::end(calls), rows.begin(),
                   [](const CallInfo& call) { return &call; });
    std::sort(rows.begin(), rows.end(),
              [](const CallInfo* one, const CallInfo* other) { return one->name < other->name; });
    return rows;
}();

}  // namespace

std::span<const CallInfo> AllCalls() {
    return calls;
}

const CallInfo* FindCall(std::string_view name) {
    const auto found =
        std::lower_bound(byName.begin(), byName.end(), name,
                         [](const CallInfo* call, std::string_view wanted) { return call->name < wanted; });
    return found != byName.end() && (*found)->name == name ? *found : nullptr;
}

}  // namespace machine
