#include "machine/calls/documented_results.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "platform/vds.h"
#include "platform/windows_api.h"

namespace machine {

namespace {

constexpr uint32_t accessDenied = 0x80070005;
constexpr uint32_t outOfMemory = 0x8007000E;
constexpr uint32_t invalidArgument = 0x80070057;
constexpr uint32_t noInterface = 0x80004002;
constexpr uint32_t unspecified = 0x80004005;
constexpr uint32_t classNotRegistered = 0x80040154;
constexpr uint32_t serverExecFailure = 0x80080005;
constexpr uint32_t rpcTooLate = 0x80010119;
constexpr uint32_t rpcServerUnavailable = 0x800706BA;
constexpr uint32_t falseSuccess = 1;

// Of the Virtual Disk Service.
constexpr uint32_t notSupported = 0x80042400;
constexpr uint32_t initializedFailed = 0x80042401;
constexpr uint32_t objectNotFound = 0x80042405;
constexpr uint32_t objectDeleted = 0x8004240B;
constexpr uint32_t noMedia = 0x80042412;
constexpr uint32_t deviceInUse = 0x80042413;
constexpr uint32_t invalidOperation = 0x80042415;
constexpr uint32_t diskNotInitialized = 0x80042417;
constexpr uint32_t ioError = 0x8004242B;
constexpr uint32_t volumeNotOnline = 0x8004243D;
constexpr uint32_t packOffline = 0x80042444;
constexpr uint32_t letterNotFree = 0x8004255C;
constexpr uint32_t invalidPartitionType = 0x80042565;
constexpr uint32_t invalidProviderFlag = 0x8004256C;
constexpr uint32_t styleMismatch = 0x80042571;
constexpr uint32_t propertiesIncomplete = 0x00042715;

// Of WMI.
constexpr uint32_t wbemFailed = 0x80041001;
constexpr uint32_t wbemNotFound = 0x80041002;
constexpr uint32_t wbemAccessDenied = 0x80041003;
constexpr uint32_t wbemOutOfMemory = 0x80041006;
constexpr uint32_t wbemInvalidParameter = 0x80041008;
constexpr uint32_t wbemInvalidNamespace = 0x8004100E;
constexpr uint32_t wbemInvalidClass = 0x80041010;
constexpr uint32_t wbemProviderLoadFailure = 0x80041013;
constexpr uint32_t wbemInvalidMethod = 0x8004102E;
constexpr uint32_t wbemInvalidObjectPath = 0x8004103A;
constexpr uint32_t wbemTimedOut = 0x00040004;
constexpr uint32_t lockedVolume = 0x80310000;
constexpr uint32_t noSuchDevinst = 0xE000020B;
constexpr uint32_t waitTimeout = 258;
constexpr uint32_t waitFailed = 0xFFFFFFFF;

}  // namespace

const std::vector<DocumentedResults>& AllDocumentedResults() {
    static const std::vector<DocumentedResults> results = {
        {"CloseHandle", {ERROR_INVALID_HANDLE}},
        {"CreateFileW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION}},
        {"DeleteFileW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_WRITE_PROTECT}},
        {"DeviceIoControl",
         {ERROR_INVALID_FUNCTION, ERROR_NOT_READY, ERROR_NOT_SUPPORTED, ERROR_INSUFFICIENT_BUFFER,
          ERROR_MORE_DATA}},
        {"FindFirstVolumeW", {ERROR_FILENAME_EXCED_RANGE}},
        {"FindNextVolumeW", {ERROR_NO_MORE_FILES, ERROR_FILENAME_EXCED_RANGE}},
        {"FindVolumeClose", {ERROR_INVALID_HANDLE}},
        {"GetDriveTypeW",
         {DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR, DRIVE_REMOVABLE, DRIVE_FIXED, DRIVE_REMOTE, DRIVE_CDROM,
          DRIVE_RAMDISK}},
        {"GetLogicalDriveStringsW", {ERROR_NOT_ENOUGH_MEMORY}},
        {"GetModuleFileNameW", {ERROR_MOD_NOT_FOUND}},
        {"GetVolumeInformationW",
         {ERROR_PATH_NOT_FOUND, ERROR_NOT_READY, ERROR_UNRECOGNIZED_VOLUME, lockedVolume}},
        {"GetVolumeNameForVolumeMountPointW", {ERROR_FILE_NOT_FOUND, ERROR_INVALID_PARAMETER}},
        {"GetWindowsDirectoryW", {ERROR_NOT_ENOUGH_MEMORY}},
        {"IsWow64Process", {ERROR_ACCESS_DENIED}},
        {"PathAppendW", {ERROR_BUFFER_OVERFLOW}},
        {"PathFileExistsW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_NOT_READY}},
        {"PathIsDirectoryW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_NOT_READY}},
        {"PathRemoveFileSpecW", {ERROR_SUCCESS}},
        {"ReadFile", {ERROR_ACCESS_DENIED, ERROR_CRC}},
        {"Wow64DisableWow64FsRedirection", {ERROR_INVALID_FUNCTION}},
        {"Wow64RevertWow64FsRedirection", {ERROR_INVALID_FUNCTION}},
        {"WriteFile", {ERROR_DISK_FULL, ERROR_WRITE_PROTECT}},
        {"ShellExecuteExW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_CANCELLED}},
        {"WaitForSingleObject", {WAIT_OBJECT_0, waitTimeout, waitFailed}},
        {"WideCharToMultiByte", {ERROR_INSUFFICIENT_BUFFER, ERROR_NO_UNICODE_TRANSLATION}},
        // A BIOS has no variables, and UEFI none without a name.
        {.call = "GetFirmwareEnvironmentVariableW",
         .failures = {ERROR_PRIVILEGE_NOT_HELD},
         .answers = {ERROR_INVALID_FUNCTION, ERROR_NOACCESS}},
        {"GetPrivateProfileStringW", {ERROR_FILE_NOT_FOUND}},
        {"RegCloseKey", {ERROR_INVALID_HANDLE}},
        {"RegOpenKeyExW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED}},
        {"RegQueryValueExW", {ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_MORE_DATA}},
        {"WritePrivateProfileStringW", {ERROR_PATH_NOT_FOUND, ERROR_ACCESS_DENIED, ERROR_WRITE_PROTECT}},
        {"GlobalAlloc", {ERROR_NOT_ENOUGH_MEMORY}},
        {"SysAllocString", {ERROR_NOT_ENOUGH_MEMORY}},
        {"SetupDiCreateDeviceInfoList", {ERROR_NOT_ENOUGH_MEMORY}},
        {"SetupDiDestroyDeviceInfoList", {ERROR_INVALID_HANDLE}},
        // The size is asked for first.
        {.call = "SetupDiGetDeviceRegistryPropertyW",
         .failures = {ERROR_INVALID_DATA, ERROR_INVALID_PARAMETER},
         .answers = {ERROR_INSUFFICIENT_BUFFER}},
        {"SetupDiOpenDeviceInfoW", {noSuchDevinst, ERROR_INVALID_PARAMETER}},
        {"CoCreateInstance", {classNotRegistered, noInterface, serverExecFailure}},
        {"CoInitializeEx", {outOfMemory}, {falseSuccess}},
        // Only the first call of a process sets the security.
        {.call = "CoInitializeSecurity", .failures = {accessDenied}, .answers = {rpcTooLate}},
        {"CoSetProxyBlanket", {noInterface, invalidArgument}},
        {"IUnknown::QueryInterface", {noInterface}},
        {"IEnumVdsObject::Next", {unspecified, initializedFailed}},
        {"IVdsAdvancedDisk2::ChangePartitionType",
         {deviceInUse, invalidPartitionType, styleMismatch, objectNotFound, ioError}},
        {"IVdsAdvancedDisk::AssignDriveLetter", {letterNotFree, invalidOperation, objectNotFound}},
        {"IVdsAdvancedDisk::ChangeAttributes", {styleMismatch, notSupported, invalidOperation, ioError}},
        {"IVdsAdvancedDisk::DeleteDriveLetter", {invalidOperation, objectNotFound}},
        {"IVdsAdvancedDisk::GetDriveLetter", {invalidOperation, objectNotFound}},
        {"IVdsAdvancedDisk::QueryPartitions", {diskNotInitialized, objectDeleted}},
        {"IVdsDisk::GetProperties", {objectDeleted, unspecified}, {propertiesIncomplete}},
        {"IVdsDisk::QueryExtents", {packOffline, objectDeleted}},
        {"IVdsPack::GetProperties", {objectDeleted, unspecified}},
        {"IVdsPack::QueryDisks", {objectDeleted, unspecified}},
        {"IVdsProvider::GetProperties", {objectDeleted, unspecified}},
        {"IVdsService::GetObject", {objectNotFound, initializedFailed}},
        {"IVdsService::IsServiceReady", {initializedFailed, rpcServerUnavailable}},
        {"IVdsService::QueryProviders", {invalidProviderFlag, initializedFailed}},
        {"IVdsService::QueryUnallocatedDisks", {initializedFailed, outOfMemory}},
        {"IVdsService::WaitForServiceReady", {initializedFailed, rpcServerUnavailable}},
        {"IVdsServiceLoader::LoadService", {accessDenied, rpcServerUnavailable}},
        {"IVdsSwProvider::QueryPacks", {initializedFailed, unspecified}},
        {"IVdsVolumeMF::GetFileSystemProperties", {noMedia, volumeNotOnline, packOffline}},
        {"IEnumWbemClassObject::Next",
         {wbemFailed, wbemOutOfMemory, wbemInvalidClass, rpcServerUnavailable},
         {},
         {wbemTimedOut}},
        {"IWbemClassObject::Get", {wbemNotFound, wbemFailed}},
        {"IWbemClassObject::GetMethod", {wbemNotFound, wbemOutOfMemory}},
        {"IWbemClassObject::Put", {wbemInvalidParameter, wbemOutOfMemory}},
        {"IWbemClassObject::SpawnInstance", {wbemFailed, wbemOutOfMemory}},
        {"IWbemLocator::ConnectServer",
         {wbemAccessDenied, wbemInvalidNamespace, rpcServerUnavailable, 0x80070422}},
        {"IWbemServices::CreateInstanceEnum", {wbemAccessDenied, wbemInvalidClass, wbemProviderLoadFailure}},
        {"IWbemServices::ExecMethod", {wbemInvalidMethod, wbemInvalidObjectPath, wbemFailed}},
        {"IWbemServices::GetObject", {wbemNotFound, wbemAccessDenied}},
    };
    return results;
}

const DocumentedResults& ResultsOf(std::string_view call) {
    const auto& all = AllDocumentedResults();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const DocumentedResults& row) { return row.call == call; });
    if (found == all.end()) throw std::out_of_range("no documented results of " + std::string(call));
    return *found;
}

}  // namespace machine
