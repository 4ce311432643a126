#include "tests/machine/description/random_pc.h"

#include <random>

#include "machine/calls/call_table.h"

namespace {

using namespace machine;

// Fills records through structured bindings: a new member of the model does not compile here until the
// generator fills it, which also adds it to the round trip.
class Generator {
  public:
    explicit Generator(uint32_t seed) : random_(seed) {}

    Pc MakePc();

  private:
    uint64_t Below(uint64_t limit) { return std::uniform_int_distribution<uint64_t>(0, limit - 1)(random_); }
    bool Sometimes() { return Below(3) == 0; }
    template <typename T>
    T OneOf(std::initializer_list<T> choice) {
        return choice.begin()[Below(choice.size())];
    }
    // A number of any magnitude up to the type's largest.
    template <typename T>
    T Number() {
        return static_cast<T>(random_() >> Below(64));
    }
    std::string Text();
    std::string Bytes();
    std::string Letters();
    Guid MakeGuid();
    template <typename T, typename Make>
    Fact<T> ValueOrError(Make make) {
        return Sometimes() ? Fact<T>::Fails(Number<uint32_t>()) : Fact<T>(make());
    }
    template <typename T, typename Make>
    std::optional<T> ValueOrNothing(Make make) {
        return Sometimes() ? std::nullopt : std::optional<T>(make());
    }

    FileTree MakeFiles();
    RegistryKeys MakeRegistry();
    Volume MakeVolume(bool inPartition, bool onImage);
    Partition MakePartition(const Disk& disk, uint32_t index);
    WmiDisk MakeWmi();
    ScsiAddress MakeScsiAddress();
    Disk MakeDisk(uint32_t number, const std::vector<Pack>& packs);
    FaultRule MakeFault();
    std::vector<EncryptableVolume> MakeEncryptable();

    std::mt19937_64 random_;
    std::string lettersLeft_ = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
};

constexpr uint64_t partitionPitch = 512 * 1000;

std::string Generator::Text() {
    const std::string piece =
        OneOf<std::string>({"", "Recovery", "C:\\Windows\\System32", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x92\xBE",
                            "a\tb\r\n\"q\" /* */", "0x27"});
    return Sometimes() ? piece : piece + std::to_string(Number<uint32_t>());
}

std::string Generator::Bytes() {
    std::string bytes;
    for (uint64_t left = Below(20); left > 0; --left)
        bytes += static_cast<char>(Below(256));
    return Sometimes() ? bytes : Text();
}

std::string Generator::Letters() {
    std::string letters;
    for (uint64_t wanted = Below(3); wanted > 0 && !lettersLeft_.empty(); --wanted) {
        const size_t at = Below(lettersLeft_.size());
        letters += lettersLeft_[at];
        lettersLeft_.erase(at, 1);
    }
    return letters;
}

Guid Generator::MakeGuid() {
    Guid guid;
    guid.Data1 = Number<uint32_t>();
    guid.Data2 = Number<uint16_t>();
    guid.Data4[7] = Number<uint8_t>();
    return guid;
}

FileTree Generator::MakeFiles() {
    FileTree files;
    for (uint64_t left = Below(6); left > 0; --left) {
        const std::string folder = OneOf<std::string>({"", "sources/", "SOURCES/", "a b/c/", "a b-/"});
        if (Sometimes()) {
            files.PutFolder(folder + "Folder" + std::to_string(Below(9)));
        } else {
            files.PutFile(folder + "file" + std::to_string(Below(9)), Bytes());
        }
    }
    return files;
}

RegistryKeys Generator::MakeRegistry() {
    RegistryKeys keys;
    for (uint64_t left = Below(3); left > 0; --left) {
        auto& values = keys["HKLM\\KEY" + std::to_string(Below(9))];
        for (uint64_t index = Below(3); index > 0; --index) {
            auto& [type, data] = values["Value " + std::to_string(index)];
            type = OneOf<uint32_t>({1, 1, 0, 3, 4, 7, 11, 99});
            data = Bytes();
        }
    }
    return keys;
}

// What an image supplies keeps its default; the interfaces to an image are never described.
Volume Generator::MakeVolume(bool inPartition, bool onImage) {
    Volume volume;
    auto& [letters, fileSystem, label, driveType, furtherExtents, openError, extentType, files, store,
           image] = volume;
    letters = Letters();
    driveType = static_cast<DriveType>(Below(7));
    for (uint64_t left = Below(3); left > 0; --left)
        furtherExtents.push_back({Number<uint32_t>(), Number<uint64_t>(), Number<uint64_t>()});
    openError = Number<uint32_t>();
    extentType = ValueOrNothing<int>([&] { return OneOf<int>({0, 1, 2, 3, 4, 5, 6, 7, 0x7FFF, -1}); });
    static_cast<void>(store);
    if (onImage && !inPartition) image = "folder/medium.iso";
    if (onImage) return volume;
    fileSystem = OneOf<std::string>({"NTFS", "FAT32", "RAW"});
    label = ValueOrError<std::string>([&] { return Text(); });
    files = MakeFiles();
    return volume;
}

Partition Generator::MakePartition(const Disk& disk, uint32_t index) {
    const bool onImage = !disk.image.empty();
    Partition partition;
    auto& [number, slot, offset, size, mbrType, bootIndicator, gptType, gptId, attributes, name, volume] =
        partition;
    number = index + 1;
    static_cast<void>(slot);  // of an image
    volume = ValueOrNothing<Volume>([&] { return MakeVolume(true, onImage); });
    if (onImage) return partition;
    offset = index * partitionPitch + Below(10) * 512;
    size = 1 + Below(partitionPitch - 10 * 512);
    if (disk.style == PartitionStyle::Mbr) {
        mbrType = Number<uint8_t>();
        bootIndicator = Number<uint8_t>();
    } else if (disk.style == PartitionStyle::Gpt) {
        gptType = MakeGuid();
        gptId = MakeGuid();
        attributes = Number<uint64_t>();
        name = Text();
    }
    return partition;
}

WmiDisk Generator::MakeWmi() {
    WmiDisk wmi;
    auto& [deviceId, pnpDeviceId, interfaceType] = wmi;
    for (auto* const property : {&deviceId, &pnpDeviceId, &interfaceType})
        *property = ValueOrNothing<std::string>([&] { return Text(); });
    return wmi;
}

ScsiAddress Generator::MakeScsiAddress() {
    ScsiAddress address;
    auto& [port, path, target, lun] = address;
    for (uint8_t* const part : {&port, &path, &target, &lun})
        *part = Number<uint8_t>();
    return address;
}

Disk Generator::MakeDisk(uint32_t index, const std::vector<Pack>& packs) {
    Disk disk;
    auto& [number, vdsName, deviceType, busType, size, sectorSize, style, signature, guid, pack, unallocated,
           wmi, location, scsiAddress, storageBusType, storageDescriptorSize, controllers, controllerKind,
           partitions, image, table, medium] = disk;
    number = index;
    vdsName = ValueOrNothing<std::string>([&] { return Text(); });
    deviceType = OneOf<uint32_t>({7, 2, 0x33, 1});
    busType = static_cast<uint32_t>(Below(20));
    pack = packs.empty() || Sometimes() ? "" : packs[Below(packs.size())].name;
    unallocated = Sometimes();
    wmi = ValueOrNothing<WmiDisk>([&] { return MakeWmi(); });
    location = ValueOrError<std::string>([&] { return Text(); });
    scsiAddress = ValueOrError<ScsiAddress>([&] { return MakeScsiAddress(); });
    storageBusType = ValueOrError<uint32_t>([&] { return static_cast<uint32_t>(Below(20)); });
    storageDescriptorSize = ValueOrNothing<uint32_t>([&] { return 8 + static_cast<uint32_t>(Below(100)); });
    for (uint64_t left = Below(3); left > 0; --left)
        controllers.push_back(Text());
    controllerKind = ValueOrNothing<ControllerKind>([&] {
        return OneOf({ControllerKind::Ide, ControllerKind::Scsi});
    });
    if (Sometimes()) image = "folder/disk" + std::to_string(index) + ".img";
    static_cast<void>(table);
    static_cast<void>(sectorSize);  // of an image
    if (image.empty()) {
        size = 5 * partitionPitch + Below(uint64_t{1} << 40);
        style = OneOf({PartitionStyle::Unknown, PartitionStyle::Mbr, PartitionStyle::Gpt});
        if (style == PartitionStyle::Mbr) signature = Number<uint32_t>();
        if (style == PartitionStyle::Gpt) guid = MakeGuid();
    }
    const uint64_t count = Below(5);
    for (uint32_t at = 0; at < count; ++at)
        partitions.push_back(MakePartition(disk, at));
    return disk;
}

FaultRule Generator::MakeFault() {
    FaultRule rule;
    auto& [call, nth, onwards, afterEffect, code, withOutputs, argument, count] = rule;
    call = Sometimes() ? anyCall : AllCalls()[Below(AllCalls().size())].name;
    nth = Number<uint32_t>();
    onwards = Sometimes();
    afterEffect = Sometimes();
    code = Number<uint32_t>();
    withOutputs = Sometimes();
    argument = ValueOrNothing<std::string>([&] { return Text(); });
    if (call.ends_with("::Next")) count = ValueOrNothing<uint32_t>([&] { return Number<uint32_t>(); });
    return rule;
}

std::vector<EncryptableVolume> Generator::MakeEncryptable() {
    std::vector<EncryptableVolume> volumes;
    for (char drive = 'C'; Sometimes(); ++drive) {
        auto& [deviceId, persistentVolumeId, driveLetter, returnValue, encryptionMethod] =
            volumes.emplace_back();
        deviceId = ValueOrNothing<std::string>([&] { return Text() + drive; });
        persistentVolumeId = ValueOrNothing<std::string>([&] { return Text(); });
        driveLetter = ValueOrNothing<std::string>([&] { return std::string{drive, ':'}; });
        returnValue = Number<uint32_t>();
        encryptionMethod = OneOf<uint32_t>({0, 6, 100, 0xFFFFFFFF});
    }
    return volumes;
}

Pc Generator::MakePc() {
    Pc pc;
    auto& [name, firmware, system, host, packs, disks, wmiOrder, volumes, registry, offlineSystemHive,
           hiveReader, shell, encryptableVolumes, absentWmiClasses, switches, faults] = pc;
    name = Text();

    auto& [firmwareKind, firmwareError] = firmware;
    firmwareKind = OneOf({FirmwareKind::Bios, FirmwareKind::Uefi});
    firmwareError = ValueOrNothing<uint32_t>([&] { return Number<uint32_t>(); });

    auto& [systemKind, windowsDirectory, startOptions, emulates32Bit] = system;
    systemKind = OneOf({SystemKind::Windows, SystemKind::WindowsPe});
    windowsDirectory = OneOf<std::string>({"C:\\Windows", "X:\\Windows", "D:\\WINNT"});
    startOptions = ValueOrNothing<std::string>([&] { return Text(); });
    emulates32Bit = Sometimes();

    auto& [hostPath, hostFiles] = host;
    hostPath = Text();
    hostFiles = MakeFiles();

    for (uint64_t left = Below(3); left > 0; --left) {
        auto& [packName, status, dynamic] = packs.emplace_back();
        packName = "pack" + std::to_string(left);
        status = OneOf<int>({0, 1, 4, 5, -1});
        dynamic = Sometimes();
    }
    const uint64_t diskCount = Below(4);
    for (uint32_t number = 0; number < diskCount; ++number) {
        disks.push_back(MakeDisk(number, packs));
        if (Sometimes()) wmiOrder.insert(wmiOrder.begin(), number);
    }
    for (uint64_t left = Below(3); left > 0; --left)
        volumes.push_back(MakeVolume(false, Sometimes()));
    registry = MakeRegistry();
    offlineSystemHive = MakeRegistry();
    static_cast<void>(hiveReader);

    auto& [milliseconds, regFails, returnsProcess] = shell;
    milliseconds = Number<uint32_t>();
    regFails = Sometimes();
    returnsProcess = Sometimes();
    encryptableVolumes = ValueOrNothing<std::vector<EncryptableVolume>>([&] { return MakeEncryptable(); });

    for (uint64_t left = Below(3); left > 0; --left)
        absentWmiClasses.push_back(Text());

    auto& [activeFlagIsExclusive, letterless, volumesRefuseLetterCalls, hidingRemovesVolume,
           profilesSkipUtf8Mark, emptyTableLendsArray, absentClassFailsLate, shortDescriptor] = switches;
    for (bool* const flag : {&activeFlagIsExclusive, &volumesRefuseLetterCalls, &hidingRemovesVolume,
                             &profilesSkipUtf8Mark, &emptyTableLendsArray, &absentClassFailsLate})
        *flag = Sometimes();
    shortDescriptor = static_cast<Switches::ShortDescriptor>(Below(3));
    letterless = static_cast<Switches::Letterless>(Below(3));

    for (uint64_t left = Below(3); left > 0; --left)
        faults.push_back(MakeFault());
    return pc;
}

}  // namespace

Pc RandomPc(uint32_t seed) {
    return Generator(seed).MakePc();
}
