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
constexpr Named controllerKinds[] = {{"ide", ControllerKind::Ide}, {"scsi", ControllerKind::Scsi}};
constexpr Named deviceTypes[] = {{"cd-rom", 2}, {"disk", 7}, {"dvd", 0x33}};
constexpr Named extentTypes[] = {{"unknown", 0}, {"free", 1}, {"data", 2}, {"oem", 3},
                                 {"esp", 4},     {"msr", 5},  {"ldm", 6},  {"unusable", 0x7FFF}};
constexpr Named encryptionMethods[] = {{"none", 0},        {"aes-128-diffuser", 1}, {"aes-256-diffuser", 2},
                                       {"aes-128", 3},     {"aes-256", 4},          {"hardware", 5},
                                       {"xts-aes-128", 6}, {"xts-aes-256", 7},      {"unknown", 0xFFFFFFFF}};
constexpr Named packStatuses[] = {{"unknown", 0}, {"online", 1}, {"offline", 4}};

constexpr Field<Extent> extentFields[] = {
    {"disk", "number of the disk", Required, member<&Extent::disk, Number<uint32_t>>},
    {"offset", "from the beginning of that disk", Required, member<&Extent::offset, ByteCount>},
    {"size", "of the extent", Required, member<&Extent::size, ByteCount>},
};
constexpr RecordType<Extent> extentType = {extentFields};

constexpr Field<Volume> volumeFields[] = {
    {"letters", "the current letters of the volume; there can be several", Optional,
     member<&Volume::letters, Letters>},
    {"fileSystem", "as GetVolumeInformationW reports it; RAW if unreadable, BitLocker if locked", Optional,
     member<&Volume::fileSystem, Text>, fromImage},
    {"label", "the label, or the error of reading it", Optional,
     member<&Volume::label, OrError<Text, ErrorCode>>, fromImage},
    {"driveType", "as GetDriveTypeW returns it", Optional,
     member<&Volume::driveType, Word<DriveType, driveTypes>>},
    {"furtherExtents", "the extents of the volume besides its partition", Optional,
     member<&Volume::furtherExtents, ListOf<RecordOf<extentType>>>},
    {"openError", "the error of CreateFileW on \\\\.\\X:; 0: it succeeds", Optional,
     member<&Volume::openError, ErrorCode>},
    {"extentType", "as VDS reports the extent", Optional,
     member<&Volume::extentType, OrNull<WordOrNumber<int, extentTypes>>>},
    {"files", "the files of the volume", Optional, member<&Volume::files, Files>, fromImage},
    {"image", "only under volumes: the image of a disc or stick", Required, member<&Volume::image, Text>},
};
// Only a volume without a disk has an image of its own.
constexpr RecordType<Volume> volumeType = {std::span(volumeFields).first<std::size(volumeFields) - 1>()};
constexpr RecordType<Volume> volumeOfImageType = volumeType.OnImage();
constexpr RecordType<Volume> mediumType = RecordType<Volume>{volumeFields}.OnImage();

template <const auto& typeOfVolume>
constexpr Field<Partition> partitionFields[] = {
    {"number", "as in Windows: used entries from 1, and 0 for an extended partition itself", Required,
     member<&Partition::number, Number<uint32_t>>},
    {"offset", "from the beginning of the disk, a multiple of 512", Required,
     member<&Partition::offset, ByteCount>, fromImage},
    {"size", "more than 0", Required, member<&Partition::size, ByteCount>, fromImage},
    {"mbrType", "on MBR disks: the type's ID, 0 to 0xFF", Optional,
     member<&Partition::mbrType, Number<uint8_t, Notation::Hex>>, fromImage},
    {"bootIndicator", "on MBR disks, as VDS reports it: 1 is active; 0 to 255", Optional,
     member<&Partition::bootIndicator, Number<uint8_t>>, fromImage},
    {"gptType", "on GPT disks: the type", Optional, member<&Partition::gptType, GuidValue>, fromImage},
    {"gptId", "on GPT disks: the partition's own GUID", Optional, member<&Partition::gptId, GuidValue>,
     fromImage},
    {"attributes", "on GPT disks; 64 bits", Optional,
     member<&Partition::attributes, Number<uint64_t, Notation::Hex>>, fromImage},
    {"name", "on GPT disks", Optional, member<&Partition::name, Text>, fromImage},
    {"volume", "the contents, with or without a letter", Optional,
     member<&Partition::volume, OrNull<RecordOf<typeOfVolume>>>},
};
constexpr RecordType<Partition> partitionType = {partitionFields<volumeType>};
constexpr RecordType<Partition> partitionOfImageType =
    RecordType<Partition>{partitionFields<volumeOfImageType>}.OnImage();

constexpr Field<ScsiAddress> scsiAddressFields[] = {
    {"port", "the adapter", Optional, member<&ScsiAddress::port, Number<uint8_t>>},
    {"path", "bus or channel", Optional, member<&ScsiAddress::path, Number<uint8_t>>},
    {"target", "target id", Optional, member<&ScsiAddress::target, Number<uint8_t>>},
    {"lun", "logical unit", Optional, member<&ScsiAddress::lun, Number<uint8_t>>},
};
constexpr RecordType<ScsiAddress> scsiAddressType = {scsiAddressFields};

constexpr Field<WmiDisk> wmiDiskFields[] = {
    {"deviceId", "property DeviceID", Optional, member<&WmiDisk::deviceId, OrNull<Text>>},
    {"pnpDeviceId", "property PNPDeviceID", Optional, member<&WmiDisk::pnpDeviceId, OrNull<Text>>},
    {"interfaceType", "property InterfaceType", Optional, member<&WmiDisk::interfaceType, OrNull<Text>>},
};
constexpr RecordType<WmiDisk> wmiDiskType = {wmiDiskFields};

// The number and the bus decide the defaults of the rest.
Disk StandardDiskOf(const Disk& leading) {
    return StandardDisk(leading.number, leading.busType);
}

template <const auto& typeOfPartition>
constexpr Field<Disk> diskFields[] = {
    {"number", "as in PhysicalDriveN; unique", Required, member<&Disk::number, Number<uint32_t>>},
    {"busType", "as VDS reports it", Optional, member<&Disk::busType, WordOrNumber<uint32_t, busTypes>>},
    {"image", "a raw image file", Optional, member<&Disk::image, Text>},
    {"vdsName", "as VDS reports it; null: no name", Optional, member<&Disk::vdsName, OrNull<Text>>},
    {"deviceType", "type of the medium", Optional,
     member<&Disk::deviceType, WordOrNumber<uint32_t, deviceTypes>>},
    {"size", "of the whole disk", Optional, member<&Disk::size, ByteCount>, fromImage},
    {"style", "of the partition table", Optional, member<&Disk::style, Word<PartitionStyle, partitionStyles>>,
     fromImage},
    {"signature", "on MBR disks; 0 to 0xFFFFFFFF", Optional,
     member<&Disk::signature, Number<uint32_t, Notation::Hex>>, fromImage},
    {"guid", "on GPT disks", Optional, member<&Disk::guid, GuidValue>, fromImage},
    {"pack", "name of a pack under packs", Optional, member<&Disk::pack, Text>},
    {"unallocated", "listed as unallocated; then in a pack only if pack names one", Optional,
     member<&Disk::unallocated, Flag>},
    {"wmi", "the instance of Win32_DiskDrive; null: WMI does not list the disk", Optional,
     member<&Disk::wmi, OrNull<RecordOf<wmiDiskType>>>},
    {"location", "location text of device set-up; error 13: no such property", Optional,
     member<&Disk::location, OrError<Text, ErrorCode>>},
    {"scsiAddress", "result of IOCTL_SCSI_GET_ADDRESS", Optional,
     member<&Disk::scsiAddress, OrError<RecordOf<scsiAddressType>, ErrorCode>>},
    {"storageBusType", "result of IOCTL_STORAGE_QUERY_PROPERTY, with the words of busType", Optional,
     member<&Disk::storageBusType, OrError<WordOrNumber<uint32_t, busTypes>, ErrorCode>>},
    {"storageDescriptorSize", "how many bytes that control has to answer, 8 to 65536", Optional,
     member<&Disk::storageDescriptorSize, OrNull<Number<uint32_t>>>},
    {"controllers", "PNP device ids of the disk's controllers, nearest first", Optional,
     member<&Disk::controllers, ListOf<Text>>},
    {"controllerKind", "the class that associates them with it", Optional,
     member<&Disk::controllerKind, OrNull<Word<ControllerKind, controllerKinds>>>},
    {"partitions", "in the order of VDS", Optional,
     member<&Disk::partitions, ListOf<RecordOf<typeOfPartition>>>},
};
constexpr RecordType<Disk> diskType = {
    .fields = diskFields<partitionType>, .leading = 2, .standard = StandardDiskOf};
constexpr RecordType<Disk> diskOfImageType = {
    .fields = diskFields<partitionOfImageType>, .onImage = true, .leading = 2, .standard = StandardDiskOf};

constexpr Field<Pack> packFields[] = {
    {"name", "used by disks; unique and not empty", Required, member<&Pack::name, Text>},
    {"status", "as VDS reports it", Optional, member<&Pack::status, WordOrNumber<int, packStatuses>>},
    {"dynamic", "listed by the dynamic provider, not by the basic one", Optional,
     member<&Pack::dynamic, Flag>},
};
constexpr RecordType<Pack> packType = {packFields};

constexpr Field<Firmware> firmwareFields[] = {
    {"kind", "of the firmware", Optional, member<&Firmware::kind, Word<FirmwareKind, firmwareKinds>>},
    {"error", "the last error of GetFirmwareEnvironmentVariableW; 0: it succeeds; null: 1 on BIOS", Optional,
     member<&Firmware::error, OrNull<ErrorCode>>},
};
constexpr RecordType<Firmware> firmwareType = {firmwareFields};

// Windows PE runs from its RAM drive.
RunningSystem StandardSystem(const RunningSystem& leading) {
    return leading.kind == SystemKind::WindowsPe ? WindowsPePc().system : RunningSystem();
}

constexpr Field<RunningSystem> systemFields[] = {
    {"kind", "of the running system", Optional, member<&RunningSystem::kind, Word<SystemKind, systemKinds>>},
    {"windowsDirectory", "as GetWindowsDirectoryW returns it", Optional,
     member<&RunningSystem::windowsDirectory, Text>},
    {"startOptions",
     "the registry value SystemStartOptions; null: the one that registry describes, if it does", Optional,
     member<&RunningSystem::startOptions, OrNull<Text>>},
    {"emulates32Bit", "the host application is a 32-bit program on a 64-bit system", Optional,
     member<&RunningSystem::emulates32Bit, Flag>},
};
constexpr RecordType<RunningSystem> systemType = {
    .fields = systemFields, .leading = 1, .standard = StandardSystem};

constexpr Field<HostApplication> hostFields[] = {
    {"path", "full path of the host application", Optional, member<&HostApplication::path, Text>},
    {"files", "files in its folder, such as IDE.INI, which exist whatever the volumes contain", Optional,
     member<&HostApplication::files, Files>},
};
constexpr RecordType<HostApplication> hostType = {hostFields};

constexpr Field<Shell> shellFields[] = {
    {"milliseconds", "duration of a batch file, on the clock of the described PC; nothing really waits",
     Optional, member<&Shell::milliseconds, Number<uint32_t>>},
    {"regFails", "reg does nothing and returns an error", Optional, member<&Shell::regFails, Flag>},
    {"tellsProcess", "false: a batch file starts without a process handle", Optional,
     member<&Shell::returnsProcess, Flag>},
};
constexpr RecordType<Shell> shellType = {shellFields};

constexpr Field<EncryptableVolume> encryptableVolumeFields[] = {
    {"deviceId", "property DeviceID, \\\\?\\Volume{...}\\; unique", Optional,
     member<&EncryptableVolume::deviceId, OrNull<Text>>},
    {"persistentVolumeId", "property PersistentVolumeID", Optional,
     member<&EncryptableVolume::persistentVolumeId, OrNull<Text>>},
    {"driveLetter",
     "property DriveLetter, C: or empty, in the case in which it is returned; letters are unique", Optional,
     member<&EncryptableVolume::driveLetter, OrNull<DriveName>>},
    {"returnValue", "what the method GetEncryptionMethod returns", Optional,
     member<&EncryptableVolume::returnValue, ErrorCode>},
    {"encryptionMethod", "the method that it outputs", Optional,
     member<&EncryptableVolume::encryptionMethod, WordOrNumber<uint32_t, encryptionMethods>>},
};
constexpr RecordType<EncryptableVolume> encryptableVolumeType = {encryptableVolumeFields};

constexpr Field<Switches> switchesFields[] = {
    {"activeFlagIsExclusive",
     "true: setting the active flag of one partition clears those of the others on the disk", Optional,
     member<&Switches::activeFlagIsExclusive, Flag>},
    {"letterless", "what IVdsAdvancedDisk::GetDriveLetter returns for a partition without a letter", Optional,
     member<&Switches::letterless, Word<Switches::Letterless, letterlessAnswers>>},
    {"volumesRefuseLetterCalls",
     "true: the letter calls of IVdsAdvancedDisk fail for a partition with a volume", Optional,
     member<&Switches::volumesRefuseLetterCalls, Flag>},
    {"hidingRemovesVolume", "true", Optional, member<&Switches::hidingRemovesVolume, Flag>},
    {"profilesSkipUtf8Mark", "true: a UTF-8 byte order mark does not spoil the first line of an INI file",
     Optional, member<&Switches::profilesSkipUtf8Mark, Flag>},
    {"emptyTableLendsArray", "true", Optional, member<&Switches::emptyTableLendsArray, Flag>},
    {"absentClassFailsLate", "true", Optional, member<&Switches::absentClassFailsLate, Flag>},
    {"shortDescriptor", "what IOCTL_STORAGE_QUERY_PROPERTY does with a buffer for 8 bytes or more", Optional,
     member<&Switches::shortDescriptor, Word<Switches::ShortDescriptor, shortDescriptorAnswers>>},
};
constexpr RecordType<Switches> switchesType = {switchesFields};

constexpr Field<FaultRule> faultFields[] = {
    {"call", "the published name of the call, from the list below; *: every call that can fail", Required,
     member<&FaultRule::call, Text>},
    {"nth", "which call of that name fails, from 1; 0: every call", Optional,
     member<&FaultRule::nth, Number<uint32_t>>},
    {"onwards", "also all later calls", Optional, member<&FaultRule::onwards, Flag>},
    {"afterEffect", "the call does its work first and then returns the code; matters only to calls marked *",
     Optional, member<&FaultRule::afterEffect, Flag>},
    {"code", "what the call returns, by its kind", Required, member<&FaultRule::code, ErrorCode>},
    {"withOutputs", "the call does its work, fills its outputs as for a success, and then returns the code",
     Optional, member<&FaultRule::withOutputs, Flag>},
    {"argument", "only calls with that first argument, as the trace shows it", Optional,
     member<&FaultRule::argument, OrNull<Text>>},
    {"count", "only for the Next of an enumerator: the number of objects that it says it returned", Optional,
     member<&FaultRule::count, OrNull<Number<uint32_t>>>},
};
constexpr RecordType<FaultRule> faultType = {faultFields};

constexpr Field<Pc> pcFields[] = {
    {"name", "what the tool calls the PC", Optional, member<&Pc::name, Text>},
    {"firmware", "BIOS or UEFI", Optional, member<&Pc::firmware, RecordOf<firmwareType>>},
    {"system", "the running system", Optional, member<&Pc::system, RecordOf<systemType>>},
    {"host", "the host application, which loads the library", Optional,
     member<&Pc::host, RecordOf<hostType>>},
    {"packs", "VDS packs to which disks refer", Optional, member<&Pc::packs, ListOf<RecordOf<packType>>>},
    {"disks", "the disks, in the order of VDS", Optional,
     member<&Pc::disks, ListOf<RecordOrImage<diskType, diskOfImageType>>>},
    {"wmiOrder", "disk numbers in the order of WMI; unlisted disks follow in the order of VDS", Optional,
     member<&Pc::wmiOrder, ListOf<Number<uint32_t>>>},
    {"volumes", "volumes without a disk: discs, sticks, network drives, the RAM drive of Windows PE",
     Optional, member<&Pc::volumes, ListOf<RecordOrImage<volumeType, mediumType>>>},
    {"registry", "keys with their full path, HKLM\\SYSTEM\\...", Optional, member<&Pc::registry, Registry>},
    {"offlineSystemHive", "the contents of a SYSTEM hive file on a described volume, keys below its root",
     Optional, member<&Pc::offlineSystemHive, Registry>},
    {"shell", "how the command interpreter runs a batch file", Optional,
     member<&Pc::shell, RecordOf<shellType>>},
    {"encryptableVolumes", "the instances of BitLocker's provider, in its order; null: there is no provider",
     Optional, member<&Pc::encryptableVolumes, OrNull<ListOf<RecordOf<encryptableVolumeType>>>>},
    {"absentWmiClasses",
     "WMI classes that the PC lacks, by name: they are unknown, and enumerating them fails", Optional,
     member<&Pc::absentWmiClasses, ListOf<Text>>},
    {"switches", "behaviour that documents leave open", Optional,
     member<&Pc::switches, RecordOf<switchesType>>},
    {"faults", "calls that fail", Optional, member<&Pc::faults, ListOf<RecordOf<faultType>>>},
};
constexpr RecordType<Pc> pcType = {pcFields};

KeysOfObject KeysOf(const char* object, const std::vector<Key>& keys) {
    KeysOfObject named = {object, {}};
    for (const Key& key : keys)
        named.keys.push_back({std::string(key.name), std::string(key.words)});
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
