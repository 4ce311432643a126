#include "tools/kestova/probes/service_disks.h"

#include <span>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/enumerations.h"

namespace {

std::string TextWords(LPWSTR text) {
    std::string words = Quoted(text);
    CoTaskMemFree(text);
    return words;
}

std::string Bytes(ULONGLONG count) {
    return Count(static_cast<size_t>(count), "byte");
}

struct DiskIdentity {
    std::string name;  // as the service calls it; its place in the list if it has no name
    GUID id = {};
};

// Address, adapter and path are the driver's own words.
DiskIdentity ProbeProperties(Probes& probes, const std::string& place, IVdsDisk& disk) {
    VDS_DISK_PROP properties = {};
    const HRESULT result = disk.GetProperties(&properties);
    const bool isGpt = properties.PartitionStyle == VDS_PST_GPT;
    const bool isNamed = properties.pwszName != nullptr;
    const std::string name = TextWords(properties.pwszName);
    for (LPWSTR const text : {properties.pwszDiskAddress, properties.pwszFriendlyName,
                              properties.pwszAdaptorName, properties.pwszDevicePath})
        CoTaskMemFree(text);
    probes.Add(
        "IVdsDisk::GetProperties", place,
        HresultWords(result) + ", " + name + ", id " + Presence(properties.id) + ", status " +
            std::to_string(properties.status) + ", health " + std::to_string(properties.health) +
            ", device type " + std::to_string(properties.dwDeviceType) + ", " + Bytes(properties.ullSize) +
            " in sectors of " + std::to_string(properties.ulBytesPerSector) + ", bus type " +
            std::to_string(properties.BusType) + ", style " + std::to_string(properties.PartitionStyle) +
            (isGpt ? ", id " + GuidText(properties.DiskGuid)
                   : ", signature " + Hex(properties.dwSignature, 8)));
    return {isNamed ? name : place, properties.id};
}

std::string Words(const VDS_PARTITION_PROP& partition) {
    const std::string words = "partition " + std::to_string(partition.ulPartitionNumber) + " at " +
                              std::to_string(partition.ullOffset) + ", " + Bytes(partition.ullSize);
    if (partition.PartitionStyle == VDS_PST_GPT) {
        return words + ", GPT type " + GuidText(partition.Gpt.partitionType) + ", id " +
               GuidText(partition.Gpt.partitionId) + ", attributes " + Hex(partition.Gpt.attributes, 16) +
               ", name " + QuotedBuffer(WideView(partition.Gpt.name, std::size(partition.Gpt.name)));
    }
    return words + ", style " + std::to_string(partition.PartitionStyle) + ", MBR type " +
           Hex(partition.Mbr.partitionType, 2) + (partition.Mbr.bootIndicator ? ", active" : "") +
           (partition.Mbr.recognizedPartition ? ", recognized" : "") + ", " +
           Count(partition.Mbr.hiddenSectors, "hidden sector");
}

// The letter is an output of a success only.
void ProbeLetter(Probes& probes, const std::string& disk, IVdsAdvancedDisk& of, ULONGLONG offset) {
    WCHAR letter = TEXT('?');
    const HRESULT result = of.GetDriveLetter(offset, &letter);
    probes.Add("IVdsAdvancedDisk::GetDriveLetter", disk + ", " + std::to_string(offset),
               HresultWords(result) + (SUCCEEDED(result) ? ", " + Quoted(WideView(&letter, 1)) : ""));
}

void ProbePartitions(Probes& probes, const std::string& disk, IVdsAdvancedDisk& of) {
    VDS_PARTITION_PROP* records = nullptr;
    LONG count = 0;
    const HRESULT result = of.QueryPartitions(&records, &count);
    probes.Add("IVdsAdvancedDisk::QueryPartitions", disk,
               HresultWords(result) + ", " + Count(static_cast<size_t>(count), "partition") + ", " +
                   Presence(records));
    const std::span partitions(records, records != nullptr && count > 0 ? static_cast<size_t>(count) : 0);
    for (const VDS_PARTITION_PROP& partition : partitions) {
        probes.Add("IVdsAdvancedDisk::QueryPartitions",
                   disk + ", partition " + std::to_string(partition.ulPartitionNumber), Words(partition));
        ProbeLetter(probes, disk, of, partition.ullOffset);
    }
    CoTaskMemFree(records);
    ProbeLetter(probes, disk, of, 1);
}

void ProbeVolume(Probes& probes, const std::string& volume, const GUID& id, IVdsService& service) {
    ComPtr<IUnknown> object;
    const HRESULT result = service.GetObject(id, VDS_OT_VOLUME, object.Put());
    probes.Add("IVdsService::GetObject", volume, HresultWords(result) + ", " + Presence(object.Get()));
    if (!object) return;
    const auto mounted =
        ProbeInterface<IVdsVolumeMF>(probes, volume, *object.Get(), "IID_IVdsVolumeMF", IID_IVdsVolumeMF);
    if (!mounted) return;
    VDS_FILE_SYSTEM_PROP properties = {};
    const HRESULT asked = mounted->GetFileSystemProperties(&properties);
    std::string answer = HresultWords(asked);
    if (SUCCEEDED(asked))
        answer += ", type " + std::to_string(properties.type) + ", label " + Quoted(properties.pwszLabel);
    CoTaskMemFree(properties.pwszLabel);
    probes.Add("IVdsVolumeMF::GetFileSystemProperties", volume, answer);
}

void ProbeExtents(Probes& probes, const std::string& name, IVdsDisk& disk, IVdsService& service) {
    VDS_DISK_EXTENT* records = nullptr;
    LONG count = 0;
    const HRESULT result = disk.QueryExtents(&records, &count);
    probes.Add(
        "IVdsDisk::QueryExtents", name,
        HresultWords(result) + ", " + Count(static_cast<size_t>(count), "extent") + ", " + Presence(records));
    const std::span extents(records, records != nullptr && count > 0 ? static_cast<size_t>(count) : 0);
    for (const VDS_DISK_EXTENT& extent : extents) {
        const std::string place = name + ", " + std::to_string(extent.ullOffset);
        probes.Add("IVdsDisk::QueryExtents", place,
                   Bytes(extent.ullSize) + ", type " + std::to_string(extent.type) + ", disk " +
                       Presence(extent.diskId) + ", volume " + Presence(extent.volumeId));
        if (extent.volumeId != GUID{})
            ProbeVolume(probes, "the volume of " + place, extent.volumeId, service);
    }
    CoTaskMemFree(records);
}

void ProbeDisk(Probes& probes, const std::string& place, IUnknown& object, IVdsService& service) {
    ProbeInterface<IVdsPack>(probes, place, object, "IID_IVdsPack", IID_IVdsPack);
    ProbeInterface<IVdsVolumeMF>(probes, place, object, "IID_IVdsVolumeMF", IID_IVdsVolumeMF);
    ProbeInterface<IVdsAdvancedDisk2>(probes, place, object, "IID_IVdsAdvancedDisk2", IID_IVdsAdvancedDisk2);
    const auto disk = ProbeInterface<IVdsDisk>(probes, place, object, "IID_IVdsDisk", IID_IVdsDisk);
    if (!disk) return;
    const DiskIdentity identity = ProbeProperties(probes, place, *disk.Get());
    const auto advanced = ProbeInterface<IVdsAdvancedDisk>(probes, identity.name, *disk.Get(),
                                                           "IID_IVdsAdvancedDisk", IID_IVdsAdvancedDisk);
    if (advanced) ProbePartitions(probes, identity.name, *advanced.Get());
    ProbeExtents(probes, identity.name, *disk.Get(), service);
    ComPtr<IUnknown> again;
    const HRESULT result = service.GetObject(identity.id, VDS_OT_DISK, again.Put());
    probes.Add("IVdsService::GetObject", identity.name, HresultWords(result) + ", " + Presence(again.Get()));
}

}  // namespace

void ProbeDisks(Probes& probes, const std::string& name, IEnumVdsObject& list, IVdsService& service) {
    int number = 0;
    for (const ComPtr<IUnknown>& object : ProbeList(probes, name, list))
        ProbeDisk(probes, name + ", " + std::to_string(++number), *object.Get(), service);
}
