#include "tools/kestova/capture/system_facts.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "base/text_case.h"
#include "base/utf.h"
#include "machine/seen/looked_for_files.h"
#include "platform/start_options.h"
#include "tools/kestova/capture/file_facts.h"
#include "tools/kestova/capture/mounted_devices.h"
#include "tools/kestova/capture/registry_value.h"

namespace {

constexpr DWORD longestPath = 32768;  // characters, as the platform has it

// Asked for a variable without a name, a BIOS says that it has none, and UEFI firmware refuses the name.
machine::Firmware CapturedFirmware() {
    char value = 0;
    const DWORD size = GetFirmwareEnvironmentVariableW(
        TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), &value, sizeof value);
    const DWORD error = size != 0 ? DWORD{ERROR_SUCCESS} : GetLastError();
    machine::Firmware firmware;
    if (error == ERROR_INVALID_FUNCTION) return firmware;
    firmware.kind = machine::FirmwareKind::Uefi;
    if (error != ERROR_NOACCESS) firmware.error = error;
    return firmware;
}

void CaptureStartOptions(Findings& findings) {
    machine::RunningSystem& system = findings.pc.system;
    system.startOptions.reset();
    RegistryKey key;
    const LSTATUS opened = RegOpenKeyExW(HKEY_LOCAL_MACHINE, startOptionsKey, 0, KEY_READ, key.Put());
    const auto value = opened == ERROR_SUCCESS ? ReadValue(key.Get(), startOptionsValue) : std::nullopt;
    if (!value) return;
    system.startOptions = TextOf(*value);
    if (UpperCase(*system.startOptions).find(ToUtf8(windowsPeOption)) != std::string::npos)
        system.kind = machine::SystemKind::WindowsPe;
}

void CaptureHost(Findings& findings) {
    WideString path(longestPath, TEXT('\0'));
    path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
    machine::HostApplication& host = findings.pc.host;
    host.path = ToUtf8(path);
    const std::string file =
        host.path.substr(0, host.path.find_last_of('\\') + 1) + std::string(machine::ideFile);
    if (const auto content = ReadSmallFile(file, findings.notes))
        host.files.PutFile(machine::ideFile, *content);
}

}  // namespace

void CaptureSystem(Findings& findings) {
    findings.pc.firmware = CapturedFirmware();
    CaptureStartOptions(findings);
    WideString folder(longestPath, TEXT('\0'));
    folder.resize(GetWindowsDirectoryW(folder.data(), longestPath));
    findings.pc.system.windowsDirectory = ToUtf8(folder);
    BOOL emulates = FALSE;
    findings.pc.system.emulates32Bit = IsWow64Process(GetCurrentProcess(), &emulates) && emulates != FALSE;
    CaptureHost(findings);
    CaptureMountedDevices(TEXT("SYSTEM"), "HKLM\\SYSTEM\\MountedDevices", findings.pc.registry);
}
