#include "machine/api/registry/mounted_hives.h"

#include <algorithm>
#include <iterator>

#include "base/text_case.h"
#include "machine/api/registry/open_keys.h"
#include "machine/facts/letters.h"
#include "machine/facts/volume_files.h"

namespace machine {

namespace {

constexpr const char* mountedHive = "mounted hive";  // its name in the ledger

// Only hives exist directly below HKEY_LOCAL_MACHINE; these belong to the running system.
constexpr const char* systemHives[] = {"HKLM\\HARDWARE", "HKLM\\SAM", "HKLM\\SECURITY", "HKLM\\SOFTWARE",
                                       "HKLM\\SYSTEM"};

bool CanBeMount(const std::string& key) {
    const std::string root = "HKLM\\";
    const bool directlyBelow = SameName(key.substr(0, root.size()), root) && key.size() > root.size() &&
                               key.find('\\', root.size()) == std::string::npos;
    return directlyBelow && std::none_of(std::begin(systemHives), std::end(systemHives),
                                         [&](const char* hive) { return SameName(hive, key); });
}

// "disk.img: the registry of partition 2".
std::string OwnerOf(const LocatedVolume& located) {
    if (located.disk == nullptr) return located.volume->image + ": its registry";
    return located.disk->image + ": the registry of partition " + std::to_string(located.partition->number);
}

// 0, or the error code of VolumeFiles or of the hive reader.
uint32_t ReadHive(Pc& pc, const std::string& file, RegistryKeys& keys) {
    std::string content;
    if (const uint32_t error = VolumeFiles(pc).Read(file, content); error != ERROR_SUCCESS) return error;
    const LocatedVolume located = FindLetter(pc, file.front());
    const bool described = !located || located.volume->store == nullptr;
    if (!described) {
        if (!pc.hiveReader) return ERROR_NOT_SUPPORTED;
        const auto beside = [&](std::string_view suffix) {
            std::string log;
            VolumeFiles(pc).Read(file + std::string(suffix), log);
            return log;
        };
        return pc.hiveReader->Read({std::move(content), OwnerOf(located), beside}, keys);
    }
    keys = pc.offlineSystemHive;
    return ERROR_SUCCESS;
}

}  // namespace

uint32_t MountHive(EmulatedPc& pc, const std::string& mount, const std::string& file) {
    const bool inUse = SameName(file, pc.facts.system.windowsDirectory + "\\System32\\config\\SYSTEM");
    if (!CanBeMount(mount)) return ERROR_INVALID_PARAMETER;
    if (KeyExists(pc.facts, mount)) return ERROR_ACCESS_DENIED;
    if (inUse) return ERROR_SHARING_VIOLATION;
    RegistryKeys keys;
    if (const uint32_t error = ReadHive(pc.facts, file, keys); error != ERROR_SUCCESS) return error;
    pc.facts.registry[mount];
    const std::string below = mount + '\\';
    for (auto& [path, values] : keys)
        pc.facts.registry[path.empty() ? mount : below + path] = std::move(values);
    pc.ledger.Take(mountedHive);
    return ERROR_SUCCESS;
}

uint32_t UnmountHive(EmulatedPc& pc, const std::string& mount) {
    const bool inUse = OpenKeys::Of(pc).Any([&](const OpenKey& key) { return IsAtOrBelow(key.path, mount); });
    if (!CanBeMount(mount) || !KeyExists(pc.facts, mount)) return ERROR_FILE_NOT_FOUND;
    if (inUse) return ERROR_ACCESS_DENIED;
    std::erase_if(pc.facts.registry, [&](const auto& key) { return IsAtOrBelow(key.first, mount); });
    // A hive listed by the description was mounted before the ledger started.
    if (pc.ledger.Outstanding().contains(mountedHive)) pc.ledger.GiveBack(mountedHive);
    return ERROR_SUCCESS;
}

}  // namespace machine
