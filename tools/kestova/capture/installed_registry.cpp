#include "tools/kestova/capture/installed_registry.h"

#include "base/utf.h"
#include "tools/kestova/capture/mounted_devices.h"
#include "tools/kestova/capture/privileges.h"

namespace {

constexpr const WCHAR* mount = TEXT("KESTOVA-CAPTURE");
constexpr std::string_view hive = "Windows/System32/config/SYSTEM";

// The first letter of a volume with the hive, other than that of the running system; 0 without one.
char LetterOfHive(const machine::Pc& pc) {
    char first = 0;
    const auto look = [&](const machine::Volume& volume) {
        if (volume.files.Find(hive) == nullptr) return;
        for (const char letter : volume.letters) {
            const bool isRunning = pc.system.windowsDirectory.starts_with(letter);
            if (!isRunning && (first == 0 || letter < first)) first = letter;
        }
    };
    for (const machine::Disk& disk : pc.disks) {
        for (const machine::Partition& partition : disk.partitions) {
            if (partition.volume) look(*partition.volume);
        }
    }
    for (const machine::Volume& volume : pc.volumes)
        look(volume);
    return first;
}

}  // namespace

void CaptureInstalledRegistry(Findings& findings) {
    const char letter = LetterOfHive(findings.pc);
    if (letter == 0) return findings.Note("no letter has the registry of another Windows");
    EnableHivePrivileges();
    const std::string path = std::string(1, letter) + ":\\Windows\\System32\\config\\SYSTEM";
    const LSTATUS loaded = RegLoadKeyW(HKEY_LOCAL_MACHINE, mount, ToWide(path).c_str());
    if (loaded != ERROR_SUCCESS)
        return findings.Note(path + " cannot be mounted: error " + std::to_string(loaded));
    CaptureMountedDevices(mount, "MountedDevices", findings.pc.offlineSystemHive);
    const LSTATUS unloaded = RegUnLoadKeyW(HKEY_LOCAL_MACHINE, mount);
    if (unloaded != ERROR_SUCCESS)
        findings.Note("HKLM\\" + ToUtf8(mount) + " stays mounted: error " + std::to_string(unloaded) +
                      "; `reg unload` takes it away");
}
