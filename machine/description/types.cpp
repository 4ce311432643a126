#include "machine/description/types.h"

#include <algorithm>

#include "machine/description/values.h"
#include "machine/facts/standard_disk.h"

namespace machine::description {

namespace {

const Words<FirmwareKind> firmwareKinds = {{"bios", FirmwareKind::Bios}, {"uefi", FirmwareKind::Uefi}};
const Words<SystemKind> systemKinds = {{"windows", SystemKind::Windows},
                                       {"windows-pe", SystemKind::WindowsPe}};
const Words<PartitionStyle> partitionStyles = {
    {"unknown", PartitionStyle::Unknown}, {"mbr", PartitionStyle::Mbr}, {"gpt", PartitionStyle::Gpt}};
const Words<DriveType> driveTypes = {{"unknown", DriveType::Unknown},     {"no-root", DriveType::NoRoot},
                                     {"removable", DriveType::Removable}, {"fixed", DriveType::Fixed},
                                     {"remote", DriveType::Remote},       {"optical", DriveType::Optical},
                                     {"ram-disk", DriveType::RamDisk}};
const Words<Switches::Letterless> letterlessAnswers = {{"fails", Switches::Letterless::Fails},
                                                       {"nul", Switches::Letterless::Nul},
                                                       {"zero", Switches::Letterless::Zero}};
const Words<uint32_t> busTypes = {{"unknown", 0}, {"scsi", 1}, {"atapi", 2}, {"ata", 3},   {"firewire", 4},
                                  {"usb", 7},     {"raid", 8}, {"sas", 10},  {"sata", 11}, {"nvme", 17}};
const Words<uint32_t> deviceTypes = {{"cd-rom", 2}, {"disk", 7}, {"dvd", 0x33}};
const Words<int> extentTypes = {{"unknown", 0}, {"free", 1}, {"data", 2}, {"oem", 3},
                                {"esp", 4},     {"msr", 5},  {"ldm", 6},  {"unusable", 0x7FFF}};
const Words<uint32_t> encryptionMethods = {
    {"none", 0},     {"aes-128-diffuser", 1}, {"aes-256-diffuser", 2}, {"aes-128", 3},         {"aes-256", 4},
    {"hardware", 5}, {"xts-aes-128", 6},      {"xts-aes-256", 7},      {"unknown", 0xFFFFFFFF}};
const Words<int> packStatuses = {{"unknown", 0}, {"online", 1}, {"offline", 4}};

Codec<uint32_t> ErrorCode() {
    return Number<uint32_t>(Notation::Code);
}

const RecordType<Extent>& ExtentType() {
    static const RecordType<Extent> type = {{Required("disk", &Extent::disk, Number<uint32_t>()),
                                             Required("offset", &Extent::offset, ByteCount()),
                                             Required("size", &Extent::size, ByteCount())}};
    return type;
}

// The same record on a disk image, which tells some of the keys itself.
template <typename Record>
RecordType<Record> OnImage(RecordType<Record> type, std::vector<std::string> toldByImage) {
    std::erase_if(type.fields, [&](const Field<Record>& field) {
        return std::find(toldByImage.begin(), toldByImage.end(), field.key) != toldByImage.end();
    });
    type.toldByImage = std::move(toldByImage);
    return type;
}

const RecordType<Volume>& VolumeType() {
    static const RecordType<Volume> type = {
        {Optional("letters", &Volume::letters, Letters()),
         Optional("fileSystem", &Volume::fileSystem, Text()),
         Optional("label", &Volume::label, OrError(Text(), ErrorCode())),
         Optional("driveType", &Volume::driveType, Word(driveTypes)),
         Optional("furtherExtents", &Volume::furtherExtents, ListOf(RecordOf(ExtentType()))),
         Optional("openError", &Volume::openError, ErrorCode()),
         Optional("extentType", &Volume::extentType, OrNull(WordOrNumber(extentTypes))),
         Optional("files", &Volume::files, Files())}};
    return type;
}

const RecordType<Volume>& ImageVolumeType() {
    static const RecordType<Volume> type = OnImage(VolumeType(), {"fileSystem", "label", "files"});
    return type;
}

const RecordType<Volume>& MediumType() {
    static const RecordType<Volume> type = [] {
        RecordType<Volume> medium = ImageVolumeType();
        medium.fields.push_back(Required("image", &Volume::image, Text()));
        return medium;
    }();
    return type;
}

// What lies on no disk is on an image when its description names one.
Codec<Volume> MediumCodec() {
    return {[](const Node& node, const Volume& standard) {
                const bool onImage = node.Value().is_object() && node.Value().contains("image");
                if (onImage && node.Key("image").Text().empty()) node.Key("image").Fail("must name a file");
                return ReadRecord(onImage ? MediumType() : VolumeType(), node, standard);
            },
            [](const Volume& volume, const Volume& standard) {
                return WriteRecord(volume.image.empty() ? VolumeType() : MediumType(), volume, standard);
            }};
}

RecordType<Partition> PartitionType(const RecordType<Volume>& volumeType) {
    return {{Required("number", &Partition::number, Number<uint32_t>()),
             Required("offset", &Partition::offset, ByteCount()),
             Required("size", &Partition::size, ByteCount()),
             Optional("mbrType", &Partition::mbrType, Number<uint8_t>(Notation::Hex)),
             Optional("bootIndicator", &Partition::bootIndicator, Number<uint8_t>()),
             Optional("gptType", &Partition::gptType, GuidValue()),
             Optional("gptId", &Partition::gptId, GuidValue()),
             Optional("attributes", &Partition::attributes, Number<uint64_t>(Notation::Hex)),
             Optional("name", &Partition::name, Text()),
             Optional("volume", &Partition::volume, OrNull(RecordOf(volumeType)))}};
}

const RecordType<Partition>& DescribedPartitionType() {
    static const RecordType<Partition> type = PartitionType(VolumeType());
    return type;
}

const RecordType<Partition>& ImagePartitionType() {
    static const RecordType<Partition> type =
        OnImage(PartitionType(ImageVolumeType()),
                {"offset", "size", "mbrType", "bootIndicator", "gptType", "gptId", "attributes", "name"});
    return type;
}

const RecordType<ScsiAddress>& ScsiAddressType() {
    static const RecordType<ScsiAddress> type = {{Optional("port", &ScsiAddress::port, Number<uint8_t>()),
                                                  Optional("path", &ScsiAddress::path, Number<uint8_t>()),
                                                  Optional("target", &ScsiAddress::target, Number<uint8_t>()),
                                                  Optional("lun", &ScsiAddress::lun, Number<uint8_t>())}};
    return type;
}

const RecordType<WmiDisk>& WmiDiskType() {
    static const RecordType<WmiDisk> type = {
        {Optional("deviceId", &WmiDisk::deviceId, OrNull(Text())),
         Optional("pnpDeviceId", &WmiDisk::pnpDeviceId, OrNull(Text())),
         Optional("interfaceType", &WmiDisk::interfaceType, OrNull(Text()))}};
    return type;
}

Disk StandardDiskOf(const Disk& leading) {
    return StandardDisk(leading.number, leading.busType);
}

// The number and the bus decide what is usual for the rest.
RecordType<Disk> DiskType(const RecordType<Partition>& partitionType) {
    return {
        {Required("number", &Disk::number, Number<uint32_t>()),
         Optional("busType", &Disk::busType, WordOrNumber(busTypes)), Optional("image", &Disk::image, Text()),
         Optional("vdsName", &Disk::vdsName, OrNull(Text())),
         Optional("deviceType", &Disk::deviceType, WordOrNumber(deviceTypes)),
         Optional("size", &Disk::size, ByteCount()), Optional("style", &Disk::style, Word(partitionStyles)),
         Optional("signature", &Disk::signature, Number<uint32_t>(Notation::Hex)),
         Optional("guid", &Disk::guid, GuidValue()), Optional("pack", &Disk::pack, Text()),
         Optional("unallocated", &Disk::unallocated, Flag()),
         Optional("wmi", &Disk::wmi, OrNull(RecordOf(WmiDiskType()))),
         Optional("location", &Disk::location, OrError(Text(), ErrorCode())),
         Optional("scsiAddress", &Disk::scsiAddress, OrError(RecordOf(ScsiAddressType()), ErrorCode())),
         Optional("storageBusType", &Disk::storageBusType, OrError(WordOrNumber(busTypes), ErrorCode())),
         Optional("controllers", &Disk::controllers, ListOf(Text())),
         Optional("partitions", &Disk::partitions, ListOf(RecordOf(partitionType)))},
        2,
        StandardDiskOf};
}

const RecordType<Disk>& DescribedDiskType() {
    static const RecordType<Disk> type = DiskType(DescribedPartitionType());
    return type;
}

const RecordType<Disk>& ImageDiskType() {
    static const RecordType<Disk> type =
        OnImage(DiskType(ImagePartitionType()), {"size", "style", "signature", "guid"});
    return type;
}

// A disk is on an image when its description names one.
Codec<Disk> DiskCodec() {
    return {[](const Node& node, const Disk& standard) {
                const bool onImage = node.Value().is_object() && node.Value().contains("image");
                if (onImage && node.Key("image").Text().empty()) node.Key("image").Fail("must name a file");
                return ReadRecord(onImage ? ImageDiskType() : DescribedDiskType(), node, standard);
            },
            [](const Disk& disk, const Disk& standard) {
                return WriteRecord(disk.image.empty() ? DescribedDiskType() : ImageDiskType(), disk,
                                   standard);
            }};
}

const RecordType<Pack>& PackType() {
    static const RecordType<Pack> type = {{Required("name", &Pack::name, Text()),
                                           Optional("status", &Pack::status, WordOrNumber(packStatuses)),
                                           Optional("dynamic", &Pack::dynamic, Flag())}};
    return type;
}

const RecordType<Firmware>& FirmwareType() {
    static const RecordType<Firmware> type = {{Optional("kind", &Firmware::kind, Word(firmwareKinds)),
                                               Optional("error", &Firmware::error, OrNull(ErrorCode()))}};
    return type;
}

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

const RecordType<RunningSystem>& SystemType() {
    static const RecordType<RunningSystem> type = {
        {Optional("kind", &RunningSystem::kind, Word(systemKinds)),
         Optional("windowsDirectory", &RunningSystem::windowsDirectory, Text()),
         Optional("startOptions", &RunningSystem::startOptions, OrNull(Text())),
         Optional("emulates32Bit", &RunningSystem::emulates32Bit, Flag())},
        1,
        StandardSystem};
    return type;
}

const RecordType<HostProgram>& HostType() {
    static const RecordType<HostProgram> type = {
        {Optional("path", &HostProgram::path, Text()), Optional("files", &HostProgram::files, Files())}};
    return type;
}

const RecordType<Shell>& ShellType() {
    static const RecordType<Shell> type = {
        {Optional("milliseconds", &Shell::milliseconds, Number<uint32_t>()),
         Optional("regFails", &Shell::regFails, Flag()),
         Optional("tellsProcess", &Shell::tellsProcess, Flag())}};
    return type;
}

const RecordType<EncryptableVolume>& EncryptableVolumeType() {
    static const RecordType<EncryptableVolume> type = {
        {Optional("deviceId", &EncryptableVolume::deviceId, OrNull(Text())),
         Optional("persistentVolumeId", &EncryptableVolume::persistentVolumeId, OrNull(Text())),
         Optional("driveLetter", &EncryptableVolume::driveLetter, OrNull(DriveName())),
         Optional("returnValue", &EncryptableVolume::returnValue, ErrorCode()),
         Optional("encryptionMethod", &EncryptableVolume::encryptionMethod,
                  WordOrNumber(encryptionMethods))}};
    return type;
}

const RecordType<Switches>& SwitchesType() {
    static const RecordType<Switches> type = {
        {Optional("activeFlagIsExclusive", &Switches::activeFlagIsExclusive, Flag()),
         Optional("letterless", &Switches::letterless, Word(letterlessAnswers)),
         Optional("volumesRefuseLetterCalls", &Switches::volumesRefuseLetterCalls, Flag()),
         Optional("hidingRemovesVolume", &Switches::hidingRemovesVolume, Flag()),
         Optional("profilesSkipUtf8Mark", &Switches::profilesSkipUtf8Mark, Flag())}};
    return type;
}

const RecordType<FaultRule>& FaultType() {
    static const RecordType<FaultRule> type = {{Required("call", &FaultRule::call, Text()),
                                                Optional("nth", &FaultRule::nth, Number<uint32_t>()),
                                                Optional("onwards", &FaultRule::onwards, Flag()),
                                                Optional("afterEffect", &FaultRule::afterEffect, Flag()),
                                                Required("code", &FaultRule::code, ErrorCode())}};
    return type;
}

}  // namespace

const RecordType<Pc>& PcType() {
    static const RecordType<Pc> type = {{Optional("name", &Pc::name, Text()),
                                         Optional("firmware", &Pc::firmware, RecordOf(FirmwareType())),
                                         Optional("system", &Pc::system, RecordOf(SystemType())),
                                         Optional("host", &Pc::host, RecordOf(HostType())),
                                         Optional("packs", &Pc::packs, ListOf(RecordOf(PackType()))),
                                         Optional("disks", &Pc::disks, ListOf(DiskCodec())),
                                         Optional("wmiOrder", &Pc::wmiOrder, ListOf(Number<uint32_t>())),
                                         Optional("volumes", &Pc::volumes, ListOf(MediumCodec())),
                                         Optional("registry", &Pc::registry, Registry()),
                                         Optional("offlineSystemHive", &Pc::offlineSystemHive, Registry()),
                                         Optional("shell", &Pc::shell, RecordOf(ShellType())),
                                         Optional("encryptableVolumes", &Pc::encryptableVolumes,
                                                  OrNull(ListOf(RecordOf(EncryptableVolumeType())))),
                                         Optional("switches", &Pc::switches, RecordOf(SwitchesType())),
                                         Optional("faults", &Pc::faults, ListOf(RecordOf(FaultType())))}};
    return type;
}

std::vector<KeysOfObject> AllKeys() {
    return {{"PC", PcType().Keys()},
            {"firmware", FirmwareType().Keys()},
            {"system", SystemType().Keys()},
            {"host", HostType().Keys()},
            {"pack", PackType().Keys()},
            {"disk", DescribedDiskType().Keys()},
            {"wmi", WmiDiskType().Keys()},
            {"scsiAddress", ScsiAddressType().Keys()},
            {"partition", DescribedPartitionType().Keys()},
            {"volume", VolumeType().Keys()},
            {"volume", MediumType().Keys()},
            {"extent", ExtentType().Keys()},
            {"shell", ShellType().Keys()},
            {"encryptableVolume", EncryptableVolumeType().Keys()},
            {"switches", SwitchesType().Keys()},
            {"fault", FaultType().Keys()}};
}

}  // namespace machine::description
