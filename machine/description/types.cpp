#include "machine/description/types.h"

#include "machine/description/codec.h"
#include "machine/description/record.h"
#include "machine/description/values.h"
#include "machine/facts/machines.h"
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
constexpr Named shortDescriptorAnswers[] = {{"fills", Switches::ShortDescriptor::Fills},
                                            {"more-data", Switches::ShortDescriptor::MoreData},
                                            {"fails", Switches::ShortDescriptor::Fails}};
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
    {"disk", Required, member<&Extent::disk, Number<uint32_t>>},
    {"offset", Required, member<&Extent::offset, ByteCount>},
    {"size", Required, member<&Extent::size, ByteCount>},
};
constexpr RecordType<Extent> extentType = {extentFields};

constexpr Field<Volume> volumeFields[] = {
    {"letters", Optional, member<&Volume::letters, Letters>},
    {"fileSystem", Optional, member<&Volume::fileSystem, Text>, fromImage},
    {"label", Optional, member<&Volume::label, OrError<Text, ErrorCode>>, fromImage},
    {"driveType", Optional, member<&Volume::driveType, Word<DriveType, driveTypes>>},
    {"furtherExtents", Optional, member<&Volume::furtherExtents, ListOf<RecordOf<extentType>>>},
    {"openError", Optional, member<&Volume::openError, ErrorCode>},
    {"extentType", Optional, member<&Volume::extentType, OrNull<WordOrNumber<int, extentTypes>>>},
    {"files", Optional, member<&Volume::files, Files>, fromImage},
    {"image", Required, member<&Volume::image, Text>},
};
// Only a volume without a disk has an image of its own.
constexpr RecordType<Volume> volumeType = {std::span(volumeFields).first<std::size(volumeFields) - 1>()};
constexpr RecordType<Volume> volumeOfImageType = volumeType.OnImage();
constexpr RecordType<Volume> mediumType = RecordType<Volume>{volumeFields}.OnImage();

template <const auto& typeOfVolume>
constexpr Field<Partition> partitionFields[] = {
    {"number", Required, member<&Partition::number, Number<uint32_t>>},
    {"offset", Required, member<&Partition::offset, ByteCount>, fromImage},
    {"size", Required, member<&Partition::size, ByteCount>, fromImage},
    {"mbrType", Optional, member<&Partition::mbrType, Number<uint8_t, Notation::Hex>>, fromImage},
    {"bootIndicator", Optional, member<&Partition::bootIndicator, Number<uint8_t>>, fromImage},
    {"gptType", Optional, member<&Partition::gptType, GuidValue>, fromImage},
    {"gptId", Optional, member<&Partition::gptId, GuidValue>, fromImage},
    {"attributes", Optional, member<&Partition::attributes, Number<uint64_t, Notation::Hex>>, fromImage},
    {"name", Optional, member<&Partition::name, Text>, fromImage},
    {"volume", Optional, member<&Partition::volume, OrNull<RecordOf<typeOfVolume>>>},
};
constexpr RecordType<Partition> partitionType = {partitionFields<volumeType>};
constexpr RecordType<Partition> partitionOfImageType =
    RecordType<Partition>{partitionFields<volumeOfImageType>}.OnImage();

constexpr Field<ScsiAddress> scsiAddressFields[] = {
    {"port", Optional, member<&ScsiAddress::port, Number<uint8_t>>},
    {"path", Optional, member<&ScsiAddress::path, Number<uint8_t>>},
    {"target", Optional, member<&ScsiAddress::target, Number<uint8_t>>},
    {"lun", Optional, member<&ScsiAddress::lun, Number<uint8_t>>},
};
constexpr RecordType<ScsiAddress> scsiAddressType = {scsiAddressFields};

constexpr Field<WmiDisk> wmiDiskFields[] = {
    {"deviceId", Optional, member<&WmiDisk::deviceId, OrNull<Text>>},
    {"pnpDeviceId", Optional, member<&WmiDisk::pnpDeviceId, OrNull<Text>>},
    {"interfaceType", Optional, member<&WmiDisk::interfaceType, OrNull<Text>>},
};
constexpr RecordType<WmiDisk> wmiDiskType = {wmiDiskFields};

// The number and the bus decide the defaults of the rest.
Disk StandardDiskOf(const Disk& leading) {
    return StandardDisk(leading.number, leading.busType);
}

template <const auto& typeOfPartition>
constexpr Field<Disk> diskFields[] = {
    {"number", Required, member<&Disk::number, Number<uint32_t>>},
    {"busType", Optional, member<&Disk::busType, WordOrNumber<uint32_t, busTypes>>},
    {"image", Optional, member<&Disk::image, Text>},
    {"vdsName", Optional, member<&Disk::vdsName, OrNull<Text>>},
    {"deviceType", Optional, member<&Disk::deviceType, WordOrNumber<uint32_t, deviceTypes>>},
    {"size", Optional, member<&Disk::size, ByteCount>, fromImage},
    {"style", Optional, member<&Disk::style, Word<PartitionStyle, partitionStyles>>, fromImage},
    {"signature", Optional, member<&Disk::signature, Number<uint32_t, Notation::Hex>>, fromImage},
    {"guid", Optional, member<&Disk::guid, GuidValue>, fromImage},
    {"pack", Optional, member<&Disk::pack, Text>},
    {"unallocated", Optional, member<&Disk::unallocated, Flag>},
    {"wmi", Optional, member<&Disk::wmi, OrNull<RecordOf<wmiDiskType>>>},
    {"location", Optional, member<&Disk::location, OrError<Text, ErrorCode>>},
    {"scsiAddress", Optional, member<&Disk::scsiAddress, OrError<RecordOf<scsiAddressType>, ErrorCode>>},
    {"storageBusType", Optional,
     member<&Disk::storageBusType, OrError<WordOrNumber<uint32_t, busTypes>, ErrorCode>>},
    {"storageDescriptorSize", Optional, member<&Disk::storageDescriptorSize, OrNull<Number<uint32_t>>>},
    {"controllers", Optional, member<&Disk::controllers, ListOf<Text>>},
    {"partitions", Optional, member<&Disk::partitions, ListOf<RecordOf<typeOfPartition>>>},
};
constexpr RecordType<Disk> diskType = {
    .fields = diskFields<partitionType>, .leading = 2, .standard = StandardDiskOf};
constexpr RecordType<Disk> diskOfImageType = {
    .fields = diskFields<partitionOfImageType>, .onImage = true, .leading = 2, .standard = StandardDiskOf};

constexpr Field<Pack> packFields[] = {
    {"name", Required, member<&Pack::name, Text>},
    {"status", Optional, member<&Pack::status, WordOrNumber<int, packStatuses>>},
    {"dynamic", Optional, member<&Pack::dynamic, Flag>},
};
constexpr RecordType<Pack> packType = {packFields};

constexpr Field<Firmware> firmwareFields[] = {
    {"kind", Optional, member<&Firmware::kind, Word<FirmwareKind, firmwareKinds>>},
    {"error", Optional, member<&Firmware::error, OrNull<ErrorCode>>},
};
constexpr RecordType<Firmware> firmwareType = {firmwareFields};

// Windows PE runs from its RAM drive.
RunningSystem StandardSystem(const RunningSystem& leading) {
    return leading.kind == SystemKind::WindowsPe ? WindowsPePc().system : RunningSystem();
}

constexpr Field<RunningSystem> systemFields[] = {
    {"kind", Optional, member<&RunningSystem::kind, Word<SystemKind, systemKinds>>},
    {"windowsDirectory", Optional, member<&RunningSystem::windowsDirectory, Text>},
    {"startOptions", Optional, member<&RunningSystem::startOptions, OrNull<Text>>},
    {"emulates32Bit", Optional, member<&RunningSystem::emulates32Bit, Flag>},
};
constexpr RecordType<RunningSystem> systemType = {
    .fields = systemFields, .leading = 1, .standard = StandardSystem};

constexpr Field<HostApplication> hostFields[] = {
    {"path", Optional, member<&HostApplication::path, Text>},
    {"files", Optional, member<&HostApplication::files, Files>},
};
constexpr RecordType<HostApplication> hostType = {hostFields};

constexpr Field<Shell> shellFields[] = {
    {"milliseconds", Optional, member<&Shell::milliseconds, Number<uint32_t>>},
    {"regFails", Optional, member<&Shell::regFails, Flag>},
    {"tellsProcess", Optional, member<&Shell::returnsProcess, Flag>},
};
constexpr RecordType<Shell> shellType = {shellFields};

constexpr Field<EncryptableVolume> encryptableVolumeFields[] = {
    {"deviceId", Optional, member<&EncryptableVolume::deviceId, OrNull<Text>>},
    {"persistentVolumeId", Optional, member<&EncryptableVolume::persistentVolumeId, OrNull<Text>>},
    {"driveLetter", Optional, member<&EncryptableVolume::driveLetter, OrNull<DriveName>>},
    {"returnValue", Optional, member<&EncryptableVolume::returnValue, ErrorCode>},
    {"encryptionMethod", Optional,
     member<&EncryptableVolume::encryptionMethod, WordOrNumber<uint32_t, encryptionMethods>>},
};
constexpr RecordType<EncryptableVolume> encryptableVolumeType = {encryptableVolumeFields};

constexpr Field<Switches> switchesFields[] = {
    {"activeFlagIsExclusive", Optional, member<&Switches::activeFlagIsExclusive, Flag>},
    {"letterless", Optional, member<&Switches::letterless, Word<Switches::Letterless, letterlessAnswers>>},
    {"volumesRefuseLetterCalls", Optional, member<&Switches::volumesRefuseLetterCalls, Flag>},
    {"hidingRemovesVolume", Optional, member<&Switches::hidingRemovesVolume, Flag>},
    {"profilesSkipUtf8Mark", Optional, member<&Switches::profilesSkipUtf8Mark, Flag>},
    {"emptyTableLendsArray", Optional, member<&Switches::emptyTableLendsArray, Flag>},
    {"absentClassFailsLate", Optional, member<&Switches::absentClassFailsLate, Flag>},
    {"shortDescriptor", Optional,
     member<&Switches::shortDescriptor, Word<Switches::ShortDescriptor, shortDescriptorAnswers>>},
};
constexpr RecordType<Switches> switchesType = {switchesFields};

constexpr Field<FaultRule> faultFields[] = {
    {"call", Required, member<&FaultRule::call, Text>},
    {"nth", Optional, member<&FaultRule::nth, Number<uint32_t>>},
    {"onwards", Optional, member<&FaultRule::onwards, Flag>},
    {"afterEffect", Optional, member<&FaultRule::afterEffect, Flag>},
    {"code", Required, member<&FaultRule::code, ErrorCode>},
    {"withOutputs", Optional, member<&FaultRule::withOutputs, Flag>},
    {"count", Optional, member<&FaultRule::count, OrNull<Number<uint32_t>>>},
};
constexpr RecordType<FaultRule> faultType = {faultFields};

constexpr Field<Pc> pcFields[] = {
    {"name", Optional, member<&Pc::name, Text>},
    {"firmware", Optional, member<&Pc::firmware, RecordOf<firmwareType>>},
    {"system", Optional, member<&Pc::system, RecordOf<systemType>>},
    {"host", Optional, member<&Pc::host, RecordOf<hostType>>},
    {"packs", Optional, member<&Pc::packs, ListOf<RecordOf<packType>>>},
    {"disks", Optional, member<&Pc::disks, ListOf<RecordOrImage<diskType, diskOfImageType>>>},
    {"wmiOrder", Optional, member<&Pc::wmiOrder, ListOf<Number<uint32_t>>>},
    {"volumes", Optional, member<&Pc::volumes, ListOf<RecordOrImage<volumeType, mediumType>>>},
    {"registry", Optional, member<&Pc::registry, Registry>},
    {"offlineSystemHive", Optional, member<&Pc::offlineSystemHive, Registry>},
    {"shell", Optional, member<&Pc::shell, RecordOf<shellType>>},
    {"encryptableVolumes", Optional,
     member<&Pc::encryptableVolumes, OrNull<ListOf<RecordOf<encryptableVolumeType>>>>},
    {"absentWmiClasses", Optional, member<&Pc::absentWmiClasses, ListOf<Text>>},
    {"switches", Optional, member<&Pc::switches, RecordOf<switchesType>>},
    {"faults", Optional, member<&Pc::faults, ListOf<RecordOf<faultType>>>},
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

void DescribePc(Output out) {
    DescribeRecord(pcType, out);
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
