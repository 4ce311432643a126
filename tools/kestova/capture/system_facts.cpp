#include "tools/kestova/capture/system_facts.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/hexadecimal.h"
#include "base/owners.h"
#include "base/text_case.h"
#include "base/utf.h"
#include "machine/facts/looked_for_files.h"
#include "platform/start_options.h"
#include "tools/kestova/capture/file_facts.h"

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

// The value with the bytes as the registry has them; nothing if it cannot be read.
std::optional<machine::RegistryValue> ReadValue(HKEY key, const WCHAR* name) {
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return std::nullopt;
    std::string data(size, '\0');
    if (RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size) !=
        ERROR_SUCCESS)
        return std::nullopt;
    data.resize(size);
    return machine::RegistryValue{type, data};
}

// A text of the registry as UTF-8, without its terminator.
std::string TextOf(const machine::RegistryValue& value) {
    WideString wide(value.data.size() / sizeof(WCHAR), TEXT('\0'));
    std::copy_n(value.data.data(), wide.size() * sizeof(WCHAR), reinterpret_cast<char*>(wide.data()));
    while (wide.ends_with(TEXT('\0')))
        wide.pop_back();
    return ToUtf8(wide);
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

// Which partition each letter stands for, by the values that have a letter's name.
void CaptureMountedDevices(Findings& findings) {
    RegistryKey key;
    constexpr const WCHAR* path = TEXT("SYSTEM\\MountedDevices");
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, key.Put()) != ERROR_SUCCESS) return;
    auto& values = findings.pc.registry["HKLM\\" + ToUtf8(path)];
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
        const std::string name = std::string("\\DosDevices\\") + letter + ":";
        auto value = ReadValue(key.Get(), ToWide(name).c_str());
        if (!value) continue;
        if (value->type == REG_SZ) value->data = TextOf(*value);
        values.emplace(name, *std::move(value));
    }
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
    CaptureMountedDevices(findings);
}
