// Changes of the partition table: attributes and types. On an image each change is written to the table
// first, and the PC's facts follow what is on the medium.
#include "machine/api/vds/disk.h"
#include "machine/api/vds/pack.h"
#include "machine/facts/extent_type.h"
#include "platform/partition_types.h"

namespace machine {

namespace {

constexpr uint64_t changeableAttributes = 0xD000000000000000;  // hidden, read-only, no letter

struct Located {
    Disk* disk = nullptr;
    Partition* partition = nullptr;
};

// Finds the partition to change, or returns the code that rejects the change.
HRESULT FindChangeable(EmulatedPc& pc, uint32_t diskNumber, uint64_t offset, VDS_PARTITION_STYLE style,
                       Located& found) {
    found.disk = FindDisk(pc.facts, diskNumber);
    if (found.disk == nullptr) return VDS_E_OBJECT_DELETED;
    if (style == VDS_PST_UNKNOWN || style != VdsStyle(found.disk->style))
        return VDS_E_PARTITION_STYLE_MISMATCH;
    found.partition = FindPartition(*found.disk, offset);
    if (found.partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    return S_OK;
}

// The result of a failed write of the table. The write may have changed the table, so the facts are read
// back from the medium.
HRESULT FailedWrite(Disk& disk, uint32_t error) {
    for (const TableEntry& entry : disk.table->Entries()) {
        Partition* partition = FindPartition(disk, entry.offset);
        if (partition == nullptr) continue;
        partition->bootIndicator = entry.isActive ? 1 : 0;
        partition->mbrType = entry.type;
    }
    return HRESULT_FROM_WIN32(error);
}

HRESULT SetActive(Disk& disk, Partition& partition, bool active, OtherFlags others) {
    if (disk.table) {
        const uint32_t error = disk.table->SetActive(partition.offset, active, others);
        if (error != 0) return FailedWrite(disk, error);
    }
    if (others == OtherFlags::Clear) {
        for (Partition& other : disk.partitions)
            other.bootIndicator = 0;
    }
    partition.bootIndicator = active ? 1 : 0;
    return S_OK;
}

HRESULT SetGptAttributes(const Disk& disk, Partition& partition, uint64_t attributes) {
    if (((attributes ^ partition.attributes) & ~changeableAttributes) != 0) return E_INVALIDARG;
    if (disk.table) return VDS_E_NOT_SUPPORTED;
    partition.attributes = attributes;
    return S_OK;
}

bool HoldsRunningWindows(const Pc& pc, const Partition& partition) {
    return partition.volume && !pc.system.windowsDirectory.empty() &&
           partition.volume->letters.find(pc.system.windowsDirectory.front()) != std::string::npos;
}

bool IsAcceptedType(const CHANGE_PARTITION_TYPE_PARAMETERS& parameters) {
    if (parameters.style == VDS_PST_GPT)
        return parameters.GptPartInfo.partitionType == PARTITION_BASIC_DATA_GUID;
    Partition changed;
    changed.mbrType = parameters.MbrPartInfo.partitionType;
    return changed.mbrType != 0 && !IsExtended(PartitionStyle::Mbr, changed);
}

HRESULT WriteType(Disk& disk, Partition& partition, const CHANGE_PARTITION_TYPE_PARAMETERS& parameters) {
    if (parameters.style == VDS_PST_GPT) {
        if (disk.table) return VDS_E_NOT_SUPPORTED;
        partition.gptType = parameters.GptPartInfo.partitionType;
        return S_OK;
    }
    if (disk.table) {
        const uint32_t error = disk.table->SetMbrType(partition.offset, parameters.MbrPartInfo.partitionType);
        if (error != 0) return FailedWrite(disk, error);
    }
    partition.mbrType = parameters.MbrPartInfo.partitionType;
    return S_OK;
}

// Updates the volume after a change between types that can and cannot hold one: it disappears with its
// letters, and a new one appears; or it stays, by the PC's switch.
void ChangeVolume(EmulatedPc& pc, const Disk& disk, Partition& partition, bool hidden) {
    const VolumePlace place = {disk.number, partition.offset};
    if (!pc.facts.switches.hidingRemovesVolume) {
        VdsObjects::Of(pc).VolumeObject(pc, place);
        return;
    }
    VdsObjects::Of(pc).ForgetVolume(place);
    if (hidden && partition.volume) partition.volume->letters.clear();
}

}  // namespace

HRESULT VdsDisk::ChangeAttributes(ULONGLONG offset, CHANGE_ATTRIBUTES_PARAMETERS* parameters) {
    const std::string value = parameters == nullptr ? "null"
                              : parameters->style == VDS_PST_GPT
                                  ? Hex(parameters->GptPartInfo.attributes)
                                  : std::to_string(parameters->MbrPartInfo.bootIndicator);
    return AsAdvancedDisk::Call(
        "IVdsAdvancedDisk::ChangeAttributes", {DiskText(number_), std::to_string(offset), value},
        [&](EmulatedPc& pc) {
            if (parameters == nullptr) return E_INVALIDARG;
            Located at;
            const HRESULT refusal = FindChangeable(pc, number_, offset, parameters->style, at);
            if (refusal != S_OK) return refusal;
            if (IsDynamic(pc.facts, *at.disk)) return VDS_E_NOT_SUPPORTED;
            if (IsExtended(at.disk->style, *at.partition)) return VDS_E_INVALID_OPERATION;
            if (parameters->style == VDS_PST_GPT)
                return SetGptAttributes(*at.disk, *at.partition, parameters->GptPartInfo.attributes);
            const bool active = parameters->MbrPartInfo.bootIndicator != 0;
            const bool clearsOthers = active && pc.facts.switches.activeFlagIsExclusive;
            return SetActive(*at.disk, *at.partition, active,
                             clearsOthers ? OtherFlags::Clear : OtherFlags::Keep);
        });
}

HRESULT VdsDisk::ChangePartitionType(ULONGLONG offset, BOOL force,
                                     CHANGE_PARTITION_TYPE_PARAMETERS* parameters) {
    const std::string type = parameters == nullptr ? "null"
                             : parameters->style == VDS_PST_GPT
                                 ? GuidText(parameters->GptPartInfo.partitionType)
                                 : Hex(parameters->MbrPartInfo.partitionType);
    return AsAdvancedDisk2::Call(
        "IVdsAdvancedDisk2::ChangePartitionType",
        {DiskText(number_), std::to_string(offset), std::to_string(force), type}, [&](EmulatedPc& pc) {
            if (parameters == nullptr) return E_INVALIDARG;
            Located at;
            const HRESULT refusal = FindChangeable(pc, number_, offset, parameters->style, at);
            if (refusal != S_OK) return refusal;
            const VDS_DISK_EXTENT_TYPE before = ExtentTypeOf(at.disk->style, *at.partition);
            if (before == VDS_DET_MSR) return VDS_E_PARTITION_MSR;
            if (before == VDS_DET_LDM) return VDS_E_PARTITION_LDM;
            if (!IsAcceptedType(*parameters)) return VDS_E_INVALID_PARTITION_TYPE;
            if (!force && HoldsRunningWindows(pc.facts, *at.partition)) return VDS_E_DEVICE_IN_USE;
            const HRESULT result = WriteType(*at.disk, *at.partition, *parameters);
            const bool wasVolume = before == VDS_DET_DATA;
            const bool isVolume = ExtentTypeOf(at.disk->style, *at.partition) == VDS_DET_DATA;
            if (wasVolume != isVolume) ChangeVolume(pc, *at.disk, *at.partition, wasVolume);
            return result;
        });
}

}  // namespace machine
