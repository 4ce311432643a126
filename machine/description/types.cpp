#include "machine/description/types.h"

#include "machine/description/codec.h"
#include "machine/description/record.h"
#include "machine/description/values.h"
#include "machine/facts/standard_disk.h"

namespace machine::description {

namespace {

using enum Presence;

constexpr Named firmwareKinds[] = {{"bios", FirmwareKind::Bios}, {"uefi", FirmwareKind::Uefi}};
constexpr Named systemKinds[] = {{"windows", SystemKind::Windows}, {"windows-pe", SystemKind::WindowsPe}};
constexpr Named partitionStyles[] = {
    {"unknown", PartitionStyle::Unknown}, {"mbr", PartitionStyle::Mbr}, {"gpt", PartitionStyle::Gpt}};
constexpr Named driveTypes[] = {{"unknown", DriveType::Unknown},     {"no-root", DriveType::NoRoot},
                                {"removable", DriveType::Removable}, {"fixed", DriveType::Fixed},
                                {"remote", DriveType::Remote},       {"optical", DriveType::Optical},
                                {"ram-disk", DriveType::RamDisk}};
constexpr Named letterlessAnswers[] = {{"fails", Switches::Letterless::Fails},
                                       {"nul", Switches::Letterless::Nul},
                                       {"zero", Switches::Letterless::Zero}};
constexpr Named busTypes[] = {{"unknown", 0}, {"scsi", 1}, {"atapi", 2}, {"ata", 3},   {"firewire", 4},
                              {"usb", 7},     {"raid", 8}, {"sas", 10},  {"sata", 11}, {"nvme", 17}};
constexpr Named deviceTypes[] = {{"cd-rom", 2}, {"disk", 7}, {"dvd", 0x33}};
constexpr Named extentTypes[] = {{"unknown", 0}, {"free", 1}, {"data", 2}, {"oem", 3},
                                 {"esp", 4},     {"msr", 5},  {"ldm", 6},  {"unusable", 0x7FFF}};
constexpr Named encryptionMethods[] = {{"none", 0},        {"aes-128-diffuser", 1}, {"aes-256-diffuser", 2},
                                       {"aes-128", 3},     {"aes-256", 4},          {"hardware", 5},
                                       {"xts-aes-128", 6}, {"xts-aes-256", 7},      {"unknown", 0xFFFFFFFF}};
constexpr Named packStatuses[] = {{"unknown", 0}, {"online", 1}, {"offline", 4}};

constexpr Field<Extent> extentFields[] = {
    {"disk", Required, through<&Extent::disk, Number<uint32_t>>},
    {"offset", Required, through<&Extent::offset, ByteCount>},
    {"size", Required, through<&Extent::size, ByteCount>},
};
constexpr RecordType<Extent> extentType = {extentFields};

constexpr Field<Volume> volumeFields[] = {
    {"letters", Optional, through<&Volume::letters, Letters>},
    {"fileSystem", Optional, through<&Volume::fileSystem, Text>, fromImage},
    {"label", Optional, through<&Volume::label, OrError<Text, ErrorCode>>, fromImage},
    {"driveType", Optional, through<&Volume::driveType, Word<DriveType, driveTypes>>},
    {"furtherExtents", Optional, through<&Volume::furtherExtents, ListOf<RecordOf<extentType>>>},
    {"openError", Optional, through<&Volume::openError, ErrorCode>},
    {"extentType", Optional, through<&Volume::extentType, OrNull<WordOrNumber<int, extentTypes>>>},
    {"files", Optional, through<&Volume::files, Files>, fromImage},
    {"image", Required, through<&Volume::image, Text>},
};
// Only a volume without a disk has an image of its own.
constexpr RecordType<Volume> volumeType = {std::span(volumeFields).first<std::size(volumeFields) - 1>()};
constexpr RecordType<Volume> volumeOfImageType = volumeType.OnImage();
constexpr RecordType<Volume> mediumType = RecordType<Volume>{volumeFields}.OnImage();

template <const auto& typeOfVolume>
constexpr Field<Partition> partitionFields[] = {
    {"number", Required, through<&Partition::number, Number<uint32_t>>},
    {"offset", Required, through<&Partition::offset, ByteCount>, fromImage},
    {"size", Required, through<&Partition::size, ByteCount>, fromImage},
    {"mbrType", Optional, through<&Partition::mbrType, Number<uint8_t, Notation::Hex>>, fromImage},
    {"bootIndicator", Optional, through<&Partition::bootIndicator, Number<uint8_t>>, fromImage},
    {"gptType", Optional, through<&Partition::gptType, GuidValue>, fromImage},
    {"gptId", Optional, through<&Partition::gptId, GuidValue>, fromImage},
    {"attributes", Optional, through<&Partition::attributes, Number<uint64_t, Notation::Hex>>, fromImage},
    {"name", Optional, through<&Partition::name, Text>, fromImage},
    {"volume", Optional, through<&Partition::volume, OrNull<RecordOf<typeOfVolume>>>},
};
constexpr RecordType<Partition> partitionType = {partitionFields<volumeType>};
constexpr RecordType<Partition> partitionOfImageType =
    RecordType<Partition>{partitionFields<volumeOfImageType>}.OnImage();

constexpr Field<ScsiAddress> scsiAddressFields[] = {
    {"port", Optional, through<&ScsiAddress::port, Number<uint8_t>>},
    {"path", Optional, through<&ScsiAddress::path, Number<uint8_t>>},
    {"target", Optional, through<&ScsiAddress::target, Number<uint8_t>>},
    {"lun", Optional, through<&ScsiAddress::lun, Number<uint8_t>>},
};
constexpr RecordType<ScsiAddress> scsiAddressType = {scsiAddressFields};

constexpr Field<WmiDisk> wmiDiskFields[] = {
    {"deviceId", Optional, through<&WmiDisk::deviceId, OrNull<Text>>},
    {"pnpDeviceId", Optional, through<&WmiDisk::pnpDeviceId, OrNull<Text>>},
    {"interfaceType", Optional, through<&WmiDisk::interfaceType, OrNull<Text>>},
};
constexpr RecordType<WmiDisk> wmiDiskType = {wmiDiskFields};

// The number and the bus decide the defaults of the rest.
Disk StandardDiskOf(const Disk& leading) {
    return StandardDisk(leading.number, leading.busType);
}

template <const auto& typeOfPartition>
constexpr Field<Disk> diskFields[] = {
    {"number", Required, through<&Disk::number, Number<uint32_t>>},
    {"busType", Optional, through<&Disk::busType, WordOrNumber<uint32_t, busTypes>>},
    {"image", Optional, through<&Disk::image, Text>},
    {"vdsName", Optional, through<&Disk::vdsName, OrNull<Text>>},
    {"deviceType", Optional, through<&Disk::deviceType, WordOrNumber<uint32_t, deviceTypes>>},
    {"size", Optional, through<&Disk::size, ByteCount>, fromImage},
    {"style", Optional, through<&Disk::style, Word<PartitionStyle, partitionStyles>>, fromImage},
    {"signature", Optional, through<&Disk::signature, Number<uint32_t, Notation::Hex>>, fromImage},
    {"guid", Optional, through<&Disk::guid, GuidValue>, fromImage},
    {"pack", Optional, through<&Disk::pack, Text>},
    {"unallocated", Optional, through<&Disk::unallocated, Flag>},
    {"wmi", Optional, through<&Disk::wmi, OrNull<RecordOf<wmiDiskType>>>},
    {"location", Optional, through<&Disk::location, OrError<Text, ErrorCode>>},
    {"scsiAddress", Optional, through<&Disk::scsiAddress, OrError<RecordOf<scsiAddressType>, ErrorCode>>},
    {"storageBusType", Optional,
     through<&Disk::storageBusType, OrError<WordOrNumber<uint32_t, busTypes>, ErrorCode>>},
    {"controllers", Optional, through<&Disk::controllers, ListOf<Text>>},
    {"partitions", Optional, through<&Disk::partitions, ListOf<RecordOf<typeOfPartition>>>},
};
constexpr RecordType<Disk> diskType = {
    .fields = diskFields<partitionType>, .leading = 2, .standard = StandardDiskOf};
constexpr RecordType<Disk> diskOfImageType = {
    .fields = diskFields<partitionOfImageType>, .onImage = true, .leading = 2, .standard = StandardDiskOf};

constexpr Field<Pack> packFields[] = {
    {"name", Required, through<&Pack::name, Text>},
    {"status", Optional, through<&Pack::status, WordOrNumber<int, packStatuses>>},
    {"dynamic", Optional, through<&Pack::dynamic, Flag>},
};
constexpr RecordType<Pack> packType = {packFields};

constexpr Field<Firmware> firmwareFields[] = {
    {"kind", Optional, through<&Firmware::kind, Word<FirmwareKind, firmwareKinds>>},
    {"error", Optional, through<&Firmware::error, OrNull<ErrorCode>>},
};
constexpr RecordType<Firmware> firmwareType = {firmwareFields};

// Windows PE runs from its RAM drive.
RunningSystem StandardSystem(const RunningSystem& leading) {
    RunningSystem system;
    system.kind = leading.kind;
    if (system.kind == SystemKind::WindowsPe) {
        system.windowsDirectory = "X:\\Windows";
        system.startOptions = " FASTDETECT MININT";
    }
    return system;
}

constexpr Field<RunningSystem> systemFields[] = {
    {"kind", Optional, through<&RunningSystem::kind, Word<SystemKind, systemKinds>>},
    {"windowsDirectory", Optional, through<&RunningSystem::windowsDirectory, Text>},
    {"startOptions", Optional, through<&RunningSystem::startOptions, OrNull<Text>>},
    {"emulates32Bit", Optional, through<&RunningSystem::emulates32Bit, Flag>},
};
constexpr RecordType<RunningSystem> systemType = {
    .fields = systemFields, .leading = 1, .standard = StandardSystem};

constexpr Field<HostApplication> hostFields[] = {
    {"path", Optional, through<&HostApplication::path, Text>},
    {"files", Optional, through<&HostApplication::files, Files>},
};
constexpr RecordType<HostApplication> hostType = {hostFields};

constexpr Field<Shell> shellFields[] = {
    {"milliseconds", Optional, through<&Shell::milliseconds, Number<uint32_t>>},
    {"regFails", Optional, through<&Shell::regFails, Flag>},
    {"tellsProcess", Optional, through<&Shell::returnsProcess, Flag>},
};
constexpr RecordType<Shell> shellType = {shellFields};

constexpr Field<EncryptableVolume> encryptableVolumeFields[] = {
    {"deviceId", Optional, through<&EncryptableVolume::deviceId, OrNull<Text>>},
    {"persistentVolumeId", Optional, through<&EncryptableVolume::persistentVolumeId, OrNull<Text>>},
    {"driveLetter", Optional, through<&EncryptableVolume::driveLetter, OrNull<DriveName>>},
    {"returnValue", Optional, through<&EncryptableVolume::returnValue, ErrorCode>},
    {"encryptionMethod", Optional,
     through<&EncryptableVolume::encryptionMethod, WordOrNumber<uint32_t, encryptionMethods>>},
};
constexpr RecordType<EncryptableVolume> encryptableVolumeType = {encryptableVolumeFields};

constexpr Field<Switches> switchesFields[] = {
    {"activeFlagIsExclusive", Optional, through<&Switches::activeFlagIsExclusive, Flag>},
    {"letterless", Optional, through<&Switches::letterless, Word<Switches::Letterless, letterlessAnswers>>},
    {"volumesRefuseLetterCalls", Optional, through<&Switches::volumesRefuseLetterCalls, Flag>},
    {"hidingRemovesVolume", Optional, through<&Switches::hidingRemovesVolume, Flag>},
    {"profilesSkipUtf8Mark", Optional, through<&Switches::profilesSkipUtf8Mark, Flag>},
};
constexpr RecordType<Switches> switchesType = {switchesFields};

constexpr Field<FaultRule> faultFields[] = {
    {"call", Required, through<&FaultRule::call, Text>},
    {"nth", Optional, through<&FaultRule::nth, Number<uint32_t>>},
    {"onwards", Optional, through<&FaultRule::onwards, Flag>},
    {"afterEffect", Optional, through<&FaultRule::afterEffect, Flag>},
    {"code", Required, through<&FaultRule::code, ErrorCode>},
};
constexpr RecordType<FaultRule> faultType = {faultFields};

constexpr Field<Pc> pcFields[] = {
    {"name", Optional, through<&Pc::name, Text>},
    {"firmware", Optional, through<&Pc::firmware, RecordOf<firmwareType>>},
    {"system", Optional, through<&Pc::system, RecordOf<systemType>>},
    {"host", Optional, through<&Pc::host, RecordOf<hostType>>},
    {"packs", Optional, through<&Pc::packs, ListOf<RecordOf<packType>>>},
    {"disks", Optional, through<&Pc::disks, ListOf<RecordOrImage<diskType, diskOfImageType>>>},
    {"wmiOrder", Optional, through<&Pc::wmiOrder, ListOf<Number<uint32_t>>>},
    {"volumes", Optional, through<&Pc::volumes, ListOf<RecordOrImage<volumeType, mediumType>>>},
    {"registry", Optional, through<&Pc::registry, Registry>},
    {"offlineSystemHive", Optional, through<&Pc::offlineSystemHive, Registry>},
    {"shell", Optional, through<&Pc::shell, RecordOf<shellType>>},
    {"encryptableVolumes", Optional,
     through<&Pc::encryptableVolumes, OrNull<ListOf<RecordOf<encryptableVolumeType>>>>},
    {"switches", Optional, through<&Pc::switches, RecordOf<switchesType>>},
    {"faults", Optional, through<&Pc::faults, ListOf<RecordOf<faultType>>>},
};
constexpr RecordType<Pc> pcType = {pcFields};

KeysOfObject KeysOf(const char* object, const std::vector<Key>& keys) {
    KeysOfObject named = {object, {}};
    for (const Key& key : keys)
        named.keys.emplace_back(key.name);
    return named;
}

}  // namespace

void ReadPc(const Node& node, Pc& pc) {
    ReadRecord(pcType, node, pc);
}

void WritePc(Output out, const Pc& pc) {
    WriteRecord(pcType, out, pc, Pc());
}

std::vector<KeysOfObject> AllKeys() {
    return {KeysOf("PC", pcType.Keys()),
            KeysOf("firmware", firmwareType.Keys()),
            KeysOf("system", systemType.Keys()),
            KeysOf("host", hostType.Keys()),
            KeysOf("pack", packType.Keys()),
            KeysOf("disk", diskType.Keys()),
            KeysOf("wmi", wmiDiskType.Keys()),
            KeysOf("scsiAddress", scsiAddressType.Keys()),
            KeysOf("partition", partitionType.Keys()),
            KeysOf("volume", volumeType.Keys()),
            KeysOf("volume", mediumType.Keys()),
            KeysOf("extent", extentType.Keys()),
            KeysOf("shell", shellType.Keys()),
            KeysOf("encryptableVolume", encryptableVolumeType.Keys()),
            KeysOf("switches", switchesType.Keys()),
            KeysOf("fault", faultType.Keys())};
}

}  // namespace machine::description
