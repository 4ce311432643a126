#include "tools/kestova/probes/device_controls.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"

namespace {

// What a control returned. Bytes that it did not write are zero.
struct Output {
    const char* bytes;
    DWORD size;  // written

    template <typename Record>
    Record As(size_t at = 0) const {
        Record record{};
        std::memcpy(&record, bytes + at, sizeof record);
        return record;
    }
};

std::string Words(const SCSI_ADDRESS& address) {
    return "port " + std::to_string(address.PortNumber) + ", path " + std::to_string(address.PathId) +
           ", target " + std::to_string(address.TargetId) + ", unit " + std::to_string(address.Lun);
}

std::string Words(const PARTITION_INFORMATION_EX& partition) {
    std::string words = "partition " + std::to_string(partition.PartitionNumber) + " at " +
                        std::to_string(partition.StartingOffset.QuadPart) + ", " +
                        Count(static_cast<size_t>(partition.PartitionLength.QuadPart), "byte");
    if (partition.PartitionStyle == PARTITION_STYLE_MBR) {
        const PARTITION_INFORMATION_MBR& mbr = partition.Mbr;
        return words + ", MBR type " + Hex(mbr.PartitionType, 2) + (mbr.BootIndicator ? ", active" : "") +
               (mbr.RecognizedPartition ? ", recognized" : "") + ", " +
               Count(mbr.HiddenSectors, "hidden sector");
    }
    if (partition.PartitionStyle != PARTITION_STYLE_GPT) {
        return words + ", style " + std::to_string(static_cast<int>(partition.PartitionStyle));
    }
    const PARTITION_INFORMATION_GPT& gpt = partition.Gpt;
    return words + ", GPT type " + GuidText(gpt.PartitionType) + ", id " + GuidText(gpt.PartitionId) +
           ", attributes " + Hex(gpt.Attributes, 16) + ", name " +
           QuotedBuffer(WideView(gpt.Name, std::size(gpt.Name)));
}

std::string ScsiAddress(const Output& output) {
    return Words(output.As<SCSI_ADDRESS>());
}

// Its beginning has the size of the whole. The names of vendor and product behind it are the device's own.
std::string Descriptor(const Output& output) {
    const auto descriptor = output.As<STORAGE_DEVICE_DESCRIPTOR>();
    int bus = 0;  // as a number: a driver may report one that the headers do not define
    std::memcpy(&bus, &descriptor.BusType, sizeof bus);
    return "version " + std::to_string(descriptor.Version) + ", size " + std::to_string(descriptor.Size) +
           (output.size >= sizeof descriptor ? ", bus type " + std::to_string(bus) : "");
}

std::string Extents(const Output& output) {
    constexpr size_t begin = offsetof(VOLUME_DISK_EXTENTS, Extents);
    std::string words = Count(output.As<DWORD>(), "extent");
    for (size_t at = begin; at + sizeof(DISK_EXTENT) <= output.size; at += sizeof(DISK_EXTENT)) {
        const auto extent = output.As<DISK_EXTENT>(at);
        words += ", disk " + std::to_string(extent.DiskNumber) + " at " +
                 std::to_string(extent.StartingOffset.QuadPart) + ": " +
                 Count(static_cast<size_t>(extent.ExtentLength.QuadPart), "byte");
    }
    return words;
}

std::string Partition(const Output& output) {
    return Words(output.As<PARTITION_INFORMATION_EX>());
}

// Unused entries have no length.
std::string Layout(const Output& output) {
    constexpr size_t begin = offsetof(DRIVE_LAYOUT_INFORMATION_EX, PartitionEntry);
    const auto layout = output.As<DRIVE_LAYOUT_INFORMATION_EX>();
    const bool isGpt = layout.PartitionStyle == PARTITION_STYLE_GPT;
    std::string words =
        "style " + std::to_string(layout.PartitionStyle) + ", " +
        (isGpt ? "id " + GuidText(layout.Gpt.DiskId) : "signature " + Hex(layout.Mbr.Signature, 8)) + ", " +
        Count(layout.PartitionCount, "slot");
    for (size_t at = begin; at + sizeof(PARTITION_INFORMATION_EX) <= output.size;
         at += sizeof(PARTITION_INFORMATION_EX)) {
        const auto partition = output.As<PARTITION_INFORMATION_EX>(at);
        words += "; " + (partition.PartitionLength.QuadPart == 0 ? "unused" : Words(partition));
    }
    return words;
}

std::string Geometry(const Output& output) {
    const auto geometry = output.As<DISK_GEOMETRY_EX>();
    return Count(static_cast<size_t>(geometry.DiskSize.QuadPart), "byte") + " in sectors of " +
           std::to_string(geometry.Geometry.BytesPerSector) + ", media type " +
           std::to_string(static_cast<int>(geometry.Geometry.MediaType));
}

struct Control {
    const char* name;
    DWORD code;
    DWORD size;   // of the output, or of its fixed part
    DWORD least;  // of which the words can say something
    std::string (*words)(const Output& output);
};

template <typename Record>
constexpr Control WholeRecord(const char* name, DWORD code, std::string (*words)(const Output& output)) {
    return {name, code, sizeof(Record), sizeof(Record), words};
}

constexpr Control controls[] = {
    WholeRecord<SCSI_ADDRESS>("IOCTL_SCSI_GET_ADDRESS", IOCTL_SCSI_GET_ADDRESS, ScsiAddress),
    {"IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS", IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS,
     sizeof(VOLUME_DISK_EXTENTS), sizeof(DWORD), Extents},
    WholeRecord<PARTITION_INFORMATION_EX>("IOCTL_DISK_GET_PARTITION_INFO_EX",
                                          IOCTL_DISK_GET_PARTITION_INFO_EX, Partition),
    WholeRecord<DISK_GEOMETRY_EX>("IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX,
                                  Geometry),
    WholeRecord<DRIVE_LAYOUT_INFORMATION_EX>("IOCTL_DISK_GET_DRIVE_LAYOUT_EX", IOCTL_DISK_GET_DRIVE_LAYOUT_EX,
                                             Layout),
};

constexpr Control storageProperty = {"IOCTL_STORAGE_QUERY_PROPERTY", IOCTL_STORAGE_QUERY_PROPERTY,
                                     sizeof(STORAGE_DEVICE_DESCRIPTOR), sizeof(STORAGE_DESCRIPTOR_HEADER),
                                     Descriptor};

struct Query {
    const char* words;
    STORAGE_PROPERTY_QUERY input;
    DWORD size;  // of the input
};

constexpr DWORD large = 65'536;

void Ask(Probes& probes, const std::string& arguments, HANDLE device, const Control& control,
         STORAGE_PROPERTY_QUERY* input, DWORD inputSize, DWORD outputSize) {
    // Larger than it is said to be, so that every record can be read as a whole.
    std::vector<char> bytes(std::max(outputSize, control.size));
    DWORD returned = 0;
    const BOOL result =
        DeviceIoControl(device, control.code, input, inputSize, outputSize == 0 ? nullptr : bytes.data(),
                        outputSize, &returned, nullptr);
    std::string answer = TruthWords(result) + ", " + Count(returned, "byte");
    if (returned <= outputSize && returned >= control.least)
        answer += ": " + control.words({bytes.data(), returned});
    probes.Add("DeviceIoControl", arguments + ", output " + Count(outputSize, "byte"), answer);
}

void AskInAllSizes(Probes& probes, const std::string& arguments, HANDLE device, const Control& control,
                   STORAGE_PROPERTY_QUERY* input, DWORD inputSize) {
    for (const DWORD size : {DWORD{0}, DWORD{1}, DWORD{sizeof(STORAGE_DESCRIPTOR_HEADER)}, control.size - 1,
                             control.size, large})
        Ask(probes, arguments, device, control, input, inputSize, size);
}

}  // namespace

void ProbeControls(Probes& probes, const std::string& name, HANDLE device) {
    for (const Control& control : controls)
        AskInAllSizes(probes, name + ", " + control.name, device, control, nullptr, 0);
    const Query queries[] = {
        {"the device", {StorageDeviceProperty, PropertyStandardQuery, {}}, sizeof(STORAGE_PROPERTY_QUERY)},
        {"whether there is the device",
         {StorageDeviceProperty, PropertyExistsQuery, {}},
         sizeof(STORAGE_PROPERTY_QUERY)},
        {"the device, cut short", {StorageDeviceProperty, PropertyStandardQuery, {}}, sizeof(DWORD)},
    };
    for (Query query : queries)
        AskInAllSizes(probes, name + ", " + storageProperty.name + " of " + query.words, device,
                      storageProperty, &query.input, query.size);
    Ask(probes, name + ", " + storageProperty.name + " without input", device, storageProperty, nullptr, 0,
        large);
}
