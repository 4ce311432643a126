// The records of the Virtual Disk Service field by field: what writes and what reads one visit the same rows.
#pragma once

#include "platform/vds.h"

namespace recording {

template <typename Visitor>
void Visit(VDS_PACK_PROP& pack, Visitor& field) {
    field("id", pack.id);
    field("name", pack.pwszName);
    field("status", pack.status);
    field("flags", pack.ulFlags);
}

template <typename Visitor>
void Visit(VDS_DISK_PROP& disk, Visitor& field) {
    field("id", disk.id);
    field("status", disk.status);
    field("reserveMode", disk.ReserveMode);
    field("health", disk.health);
    field("deviceType", disk.dwDeviceType);
    field("mediaType", disk.dwMediaType);
    field("size", disk.ullSize);
    field("bytesPerSector", disk.ulBytesPerSector);
    field("sectorsPerTrack", disk.ulSectorsPerTrack);
    field("tracksPerCylinder", disk.ulTracksPerCylinder);
    field("flags", disk.ulFlags);
    field("busType", disk.BusType);
    field("partitionStyle", disk.PartitionStyle);
    if (disk.PartitionStyle == VDS_PST_GPT) {
        field("guid", disk.DiskGuid);
    } else {
        field("signature", disk.dwSignature);
    }
    field("address", disk.pwszDiskAddress);
    field("name", disk.pwszName);
    field("friendlyName", disk.pwszFriendlyName);
    field("adaptorName", disk.pwszAdaptorName);
    field("devicePath", disk.pwszDevicePath);
}

template <typename Visitor>
void Visit(VDS_PARTITION_PROP& partition, Visitor& field) {
    field("style", partition.PartitionStyle);
    field("flags", partition.ulFlags);
    field("number", partition.ulPartitionNumber);
    field("offset", partition.ullOffset);
    field("size", partition.ullSize);
    if (partition.PartitionStyle == VDS_PST_GPT) {
        field("type", partition.Gpt.partitionType);
        field("id", partition.Gpt.partitionId);
        field("attributes", partition.Gpt.attributes);
        field("name", partition.Gpt.name);
    } else {
        field("type", partition.Mbr.partitionType);
        field("active", partition.Mbr.bootIndicator);
        field("recognized", partition.Mbr.recognizedPartition);
        field("hiddenSectors", partition.Mbr.hiddenSectors);
    }
}

template <typename Visitor>
void Visit(VDS_DISK_EXTENT& extent, Visitor& field) {
    field("disk", extent.diskId);
    field("type", extent.type);
    field("offset", extent.ullOffset);
    field("size", extent.ullSize);
    field("volume", extent.volumeId);
    field("plex", extent.plexId);
    field("member", extent.memberIdx);
}

template <typename Visitor>
void Visit(VDS_FILE_SYSTEM_PROP& system, Visitor& field) {
    field("type", system.type);
    field("volume", system.volumeId);
    field("flags", system.ulFlags);
    field("units", system.ullTotalAllocationUnits);
    field("freeUnits", system.ullAvailableAllocationUnits);
    field("unitSize", system.ulAllocationUnitSize);
    field("label", system.pwszLabel);
}

template <typename Visitor>
void Visit(CHANGE_ATTRIBUTES_PARAMETERS& change, Visitor& field) {
    field("style", change.style);
    if (change.style == VDS_PST_GPT) {
        field("attributes", change.GptPartInfo.attributes);
    } else {
        field("active", change.MbrPartInfo.bootIndicator);
    }
}

template <typename Visitor>
void Visit(CHANGE_PARTITION_TYPE_PARAMETERS& change, Visitor& field) {
    field("style", change.style);
    if (change.style == VDS_PST_GPT) {
        field("type", change.GptPartInfo.partitionType);
    } else {
        field("type", change.MbrPartInfo.partitionType);
    }
}

}  // namespace recording
