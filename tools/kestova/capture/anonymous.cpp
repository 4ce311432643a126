#include "tools/kestova/capture/anonymous.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

#include "base/guid.h"
#include "base/text_case.h"
#include "base/utf.h"

namespace {

// The labels by which the library tells volumes apart.
constexpr std::string_view knownLabels[] = {"", "Factory", "System Reserved"};
constexpr std::string_view partitionData = "DMIO:ID:";
constexpr size_t mbrDataSize = 12;
constexpr uint32_t firstSignature = 0xA0000001;

// The n-th different thing has the n-th stand-in.
template <typename Key>
class StandIns {
  public:
    size_t Number(const Key& key) { return numbers_.try_emplace(key, numbers_.size() + 1).first->second; }

  private:
    std::map<Key, size_t> numbers_;
};

class Stranger {
  public:
    explicit Stranger(machine::Pc& pc) : pc_(pc) {}
    void Run();

  private:
    uint32_t Signature(uint32_t signature);
    Guid StandInOf(const GUID& guid);
    std::string WithoutGuids(std::string text);
    std::string Named(const std::string& word, const std::string& name);
    void Label(machine::Volume& volume);
    void Disk(machine::Disk& disk);
    void Mounted(machine::RegistryKeys& keys);
    void Packs();
    void Host();

    machine::Pc& pc_;
    StandIns<uint32_t> signatures_;
    StandIns<std::string> guids_;
    StandIns<std::string> names_;
};

uint32_t Stranger::Signature(uint32_t signature) {
    if (signature == 0) return 0;
    return firstSignature + static_cast<uint32_t>(signatures_.Number(signature)) - 1;
}

Guid Stranger::StandInOf(const GUID& guid) {
    Guid standIn;
    if (guid == standIn) return standIn;
    standIn.Data1 = firstSignature;
    const size_t number = guids_.Number(GuidText(guid));
    for (size_t byte = 0; byte < sizeof(uint32_t); ++byte)
        standIn.Data4[7 - byte] = static_cast<uint8_t>(number >> (8 * byte));
    return standIn;
}

// Every "{...}" in the text that is a GUID.
std::string Stranger::WithoutGuids(std::string text) {
    for (size_t begin = text.find('{'); begin != std::string::npos; begin = text.find('{', begin + 1)) {
        const size_t end = text.find('}', begin);
        if (end == std::string::npos) break;
        if (const auto guid = GuidFromText(std::string_view(text).substr(begin, end + 1 - begin)))
            text.replace(begin, end + 1 - begin, "{" + GuidText(StandInOf(*guid)) + "}");
    }
    return text;
}

std::string Stranger::Named(const std::string& word, const std::string& name) {
    return name.empty() ? name : word + " " + std::to_string(names_.Number(name));
}

void Stranger::Label(machine::Volume& volume) {
    if (!volume.label.value) return;
    std::string& label = *volume.label.value;
    const bool isKnown =
        std::ranges::any_of(knownLabels, [&](std::string_view known) { return SameName(label, known); });
    if (!isKnown) label = Named("label", label);
}

// The last part of a device's id: its instance, which is the serial number of many disks.
std::string WithoutInstance(const std::string& id, uint32_t disk) {
    const size_t end = id.rfind('\\');
    return end == std::string::npos ? id : id.substr(0, end + 1) + "instance-" + std::to_string(disk);
}

void Stranger::Disk(machine::Disk& disk) {
    disk.signature = Signature(disk.signature);
    disk.guid = StandInOf(disk.guid);
    disk.pack = Named("pack", disk.pack);
    if (disk.wmi && disk.wmi->pnpDeviceId)
        disk.wmi->pnpDeviceId = WithoutInstance(*disk.wmi->pnpDeviceId, disk.number);
    for (machine::Partition& partition : disk.partitions) {
        partition.gptId = StandInOf(partition.gptId);
        partition.name = Named("name", partition.name);
        if (partition.volume) Label(*partition.volume);
    }
}

// Which partition a letter stands for: by signature and offset, by GUID, or by the path of a device.
void Stranger::Mounted(machine::RegistryKeys& keys) {
    for (auto& [key, values] : keys) {
        if (!SameName(key.substr(key.rfind('\\') + 1), "MountedDevices")) continue;
        for (auto& [name, value] : values) {
            std::string& data = value.data;
            if (data.size() == mbrDataSize) {
                uint32_t signature = 0;
                std::memcpy(&signature, data.data(), sizeof signature);
                signature = Signature(signature);
                std::memcpy(data.data(), &signature, sizeof signature);
            } else if (data.starts_with(partitionData) &&
                       data.size() == partitionData.size() + sizeof(GUID)) {
                Guid guid;
                std::memcpy(&guid, data.data() + partitionData.size(), sizeof(GUID));
                guid = StandInOf(guid);
                std::memcpy(data.data() + partitionData.size(), &guid, sizeof(GUID));
            } else if (value.type == REG_SZ) {
                data = Named("device", data);
            } else {
                const WideString device = ToWide(Named("\\??\\device", data));
                data.assign(reinterpret_cast<const char*>(device.data()), device.size() * sizeof(WCHAR));
            }
        }
    }
}

// The pack of a dynamic disk has the name of the computer.
void Stranger::Packs() {
    std::map<std::string, std::string> arguments;
    for (machine::Pack& pack : pc_.packs) {
        const std::string name = std::exchange(pack.name, Named("pack", pack.name));
        arguments["pack " + name] = "pack " + pack.name;
    }
    for (machine::FaultRule& fault : pc_.faults) {
        const auto renamed = arguments.find(fault.argument.value_or(""));
        if (renamed != arguments.end()) fault.argument = renamed->second;
    }
}

void Stranger::Host() {
    std::string& path = pc_.host.path;
    const std::string drive = path.substr(0, path.find('\\'));
    path = drive + "\\folder\\application.exe";
    std::string& folder = pc_.system.windowsDirectory;
    const std::string usual = folder.substr(0, 2) + "\\Windows";
    if (!SameName(folder, usual)) folder = folder.substr(0, 2) + "\\folder of Windows";
}

void Stranger::Run() {
    pc_.name.clear();
    Host();
    Packs();
    for (machine::Disk& disk : pc_.disks)
        Disk(disk);
    for (machine::Volume& volume : pc_.volumes)
        Label(volume);
    Mounted(pc_.registry);
    Mounted(pc_.offlineSystemHive);
    if (pc_.encryptableVolumes) {
        for (machine::EncryptableVolume& volume : *pc_.encryptableVolumes) {
            for (auto* const id : {&volume.deviceId, &volume.persistentVolumeId}) {
                if (*id) *id = WithoutGuids(**id);
            }
        }
    }
    for (machine::FaultRule& fault : pc_.faults) {
        if (fault.argument) fault.argument = WithoutGuids(*fault.argument);
    }
}

}  // namespace

void MakeAnonymous(machine::Pc& pc) {
    Stranger(pc).Run();
}
