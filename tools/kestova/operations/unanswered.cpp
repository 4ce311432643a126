#include "tools/kestova/operations/unanswered.h"

#include <algorithm>

#include "base/hexadecimal.h"
#include "platform/vds.h"
#include "platform/windows_api.h"

namespace {

// What calls report on healthy PCs, beside success.
struct Ordinary {
    std::string_view call;
    std::vector<uint32_t> codes;
};

constexpr uint32_t lockedVolume = 0x80310000;        // FVE_E_LOCKED_VOLUME
constexpr uint32_t unrecognizedVolume = 0x800703ED;  // ERROR_UNRECOGNIZED_VOLUME as an HRESULT

const std::vector<Ordinary>& OrdinaryCodes() {
    static const std::vector<Ordinary> rows = {
        // Only the first call of a process sets the security.
        {"CoInitializeSecurity", {static_cast<uint32_t>(RPC_E_TOO_LATE)}},
        // Letters without a volume; Windows without the drive of Windows PE.
        {"CreateFileW", {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND}},
        // Volumes that are on no disk, or on several; disks that are no SCSI devices; empty drives.
        {"DeviceIoControl", {ERROR_INVALID_FUNCTION, ERROR_NOT_SUPPORTED, ERROR_MORE_DATA, ERROR_NOT_READY}},
        // BIOS, and UEFI that looks for a variable without a name.
        {"GetFirmwareEnvironmentVariableW", {ERROR_INVALID_FUNCTION, ERROR_NOACCESS}},
        {"GetPrivateProfileStringW", {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND}},
        {"GetVolumeInformationW",
         {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_NOT_READY, ERROR_UNRECOGNIZED_VOLUME,
          lockedVolume}},
        // The end of the list.
        {"IEnumVdsObject::Next", {S_FALSE}},
        {"IEnumWbemClassObject::Next", {S_FALSE}},
        // A partition without a letter.
        {"IVdsAdvancedDisk::GetDriveLetter", {static_cast<uint32_t>(VDS_E_OBJECT_NOT_FOUND)}},
        // A disk without partitions, or without a table.
        {"IVdsAdvancedDisk::QueryPartitions", {S_FALSE, static_cast<uint32_t>(VDS_E_DISK_NOT_INITIALIZED)}},
        {"IVdsVolumeMF::GetFileSystemProperties", {unrecognizedVolume, lockedVolume}},
        // A Windows without BitLocker.
        {"IWbemLocator::ConnectServer", {static_cast<uint32_t>(WBEM_E_INVALID_NAMESPACE)}},
        {"PathFileExistsW",
         {ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND, ERROR_NOT_READY, ERROR_UNRECOGNIZED_VOLUME,
          lockedVolume}},
        {"RegOpenKeyExW", {ERROR_FILE_NOT_FOUND}},
        {"RegQueryValueExW", {ERROR_FILE_NOT_FOUND}},
        // The size is asked for first; devices without the property.
        {"SetupDiGetDeviceRegistryPropertyW", {ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_DATA}},
    };
    return rows;
}

// Calls on which no answer depends: they give something back, or are tried again.
constexpr std::string_view harmless[] = {
    "CloseHandle",
    "DeleteFileW",
    "IVdsAdvancedDisk::DeleteDriveLetter",
    "SetupDiDestroyDeviceInfoList",
    "ShellExecuteExW",
    "Wow64RevertWow64FsRedirection",
};

// Calls whose value says that they failed.
struct FailureValue {
    std::string_view call;
    std::string_view result;
};

constexpr FailureValue failureValues[] = {
    {"GetDriveTypeW", "0"},                 // DRIVE_UNKNOWN
    {"WaitForSingleObject", "4294967295"},  // WAIT_FAILED
};

bool HasFailed(const machine::CallRecord& call) {
    if (std::ranges::count(harmless, call.call) != 0) return false;
    const bool byValue = std::ranges::any_of(failureValues, [&](const FailureValue& row) {
        return row.call == call.call && row.result == call.result;
    });
    if (call.code == ERROR_SUCCESS) return byValue;
    return std::ranges::none_of(OrdinaryCodes(), [&](const Ordinary& row) {
        return row.call == call.call && std::ranges::count(row.codes, call.code) != 0;
    });
}

bool IsVague(const std::vector<Meaning>& meanings, const Value& value) {
    const Meaning* const meaning = FindMeaning(meanings, value);
    return meaning != nullptr && meaning->vague;
}

bool IsVague(const OperationReport& report) {
    const Operation& operation = *report.operation;
    if (IsVague(operation.results, report.result)) return true;
    return std::ranges::any_of(operation.parameters, [&](const Parameter& parameter) {
        if (!parameter.output) return false;
        return parameter.kind == Kind::List ||
               IsVague(parameter.meanings, ValueOf(report.outputs, parameter.name));
    });
}

}  // namespace

std::string WhyUnanswered(const OperationReport& report) {
    if (!IsVague(report)) return "";
    for (const machine::JournalEntry& entry : report.trace) {
        const auto* const call = std::get_if<machine::CallRecord>(&entry);
        if (call == nullptr || !HasFailed(*call)) continue;
        return report.operation->name + " could not be answered: " + call->call + " failed" +
               (call->code != ERROR_SUCCESS ? " with " + Hex(call->code, 8) : "");
    }
    return "";
}
