#include "tools/kestova/probes/trial_disk.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <span>

#include "base/utf.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/enumerations.h"
#include "tools/kestova/probes/probes.h"

namespace {

constexpr BYTE extendedTypes[] = {0x05, 0x0F};

std::vector<ComPtr<IUnknown>> ObjectsOf(IEnumVdsObject& list) {
    std::vector<ComPtr<IUnknown>> objects;
    ForEachObject(list, [&](IUnknown& object) {
        object.AddRef();
        objects.emplace_back(&object);
    });
    return objects;
}

template <typename Interface>
ComPtr<Interface> As(IUnknown& object, const IID& id) {
    ComPtr<Interface> found;
    object.QueryInterface(id, reinterpret_cast<void**>(found.Put()));
    return found;
}

std::vector<ComPtr<IVdsDisk>> DisksOf(IVdsPack& pack) {
    std::vector<ComPtr<IVdsDisk>> disks;
    ComPtr<IEnumVdsObject> list;
    if (FAILED(pack.QueryDisks(list.Put())) || !list) return disks;
    for (const ComPtr<IUnknown>& object : ObjectsOf(*list.Get())) {
        if (ComPtr<IVdsDisk> disk = As<IVdsDisk>(*object.Get(), IID_IVdsDisk))
            disks.push_back(std::move(disk));
    }
    return disks;
}

std::vector<ComPtr<IVdsDisk>> DisksOfService() {
    std::vector<ComPtr<IVdsDisk>> disks;
    ComPtr<IVdsServiceLoader> loader;
    CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                     reinterpret_cast<void**>(loader.Put()));
    ComPtr<IVdsService> service;
    if (!loader || FAILED(loader->LoadService(nullptr, service.Put())) || !service) return disks;
    service->WaitForServiceReady();
    ComPtr<IEnumVdsObject> providers;
    if (FAILED(service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, providers.Put())) || !providers)
        return disks;
    for (const ComPtr<IUnknown>& object : ObjectsOf(*providers.Get())) {
        const auto provider = As<IVdsSwProvider>(*object.Get(), IID_IVdsSwProvider);
        ComPtr<IEnumVdsObject> packs;
        if (!provider || FAILED(provider->QueryPacks(packs.Put())) || !packs) continue;
        for (const ComPtr<IUnknown>& packObject : ObjectsOf(*packs.Get())) {
            const auto pack = As<IVdsPack>(*packObject.Get(), IID_IVdsPack);
            if (!pack) continue;
            for (ComPtr<IVdsDisk>& disk : DisksOf(*pack.Get()))
                disks.push_back(std::move(disk));
        }
    }
    return disks;
}

// "\\?\PhysicalDrive1", and its size.
struct Named {
    std::string name;
    ULONGLONG size = 0;
    VDS_PARTITION_STYLE style = VDS_PST_UNKNOWN;
};

Named NameOf(IVdsDisk& disk) {
    VDS_DISK_PROP properties = {};
    if (FAILED(disk.GetProperties(&properties))) return {};
    Named named{properties.pwszName != nullptr ? ToUtf8(properties.pwszName) : "", properties.ullSize,
                properties.PartitionStyle};
    for (LPWSTR const text : {properties.pwszName, properties.pwszDiskAddress, properties.pwszFriendlyName,
                              properties.pwszAdaptorName, properties.pwszDevicePath})
        CoTaskMemFree(text);
    return named;
}

std::vector<uint64_t> OffsetsOfVolumes(IVdsDisk& disk) {
    VDS_DISK_EXTENT* records = nullptr;
    LONG count = 0;
    std::vector<uint64_t> offsets;
    if (SUCCEEDED(disk.QueryExtents(&records, &count)) && records != nullptr) {
        for (const VDS_DISK_EXTENT& extent :
             std::span(records, static_cast<size_t>(std::max<LONG>(count, 0)))) {
            if (extent.volumeId != GUID{}) offsets.push_back(extent.ullOffset);
        }
    }
    CoTaskMemFree(records);
    return offsets;
}

// Where a volume is, and why that is unknown.
struct VolumeExtents {
    std::vector<DISK_EXTENT> extents = {};
    DWORD error = ERROR_SUCCESS;
};

VolumeExtents ExtentsOf(WCHAR letter) {
    constexpr size_t most = 64;
    const WideString path = TEXT("\\\\.\\") + WideString(1, letter) + TEXT(":");
    const FileHandle volume(
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!volume) return {.error = GetLastError()};
    std::vector<char> room(sizeof(VOLUME_DISK_EXTENTS) + most * sizeof(DISK_EXTENT));
    DWORD returned = 0;
    if (!DeviceIoControl(volume.Get(), IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, nullptr, 0, room.data(),
                         static_cast<DWORD>(room.size()), &returned, nullptr))
        return {.error = GetLastError()};
    DWORD count = 0;
    std::memcpy(&count, room.data(), sizeof count);
    VolumeExtents found;
    found.extents.resize(std::min<size_t>(count, most));
    std::memcpy(found.extents.data(), room.data() + offsetof(VOLUME_DISK_EXTENTS, Extents),
                found.extents.size() * sizeof(DISK_EXTENT));
    return found;
}

bool IsOn(const VolumeExtents& volume, int number) {
    return std::ranges::count(volume.extents, static_cast<DWORD>(number), &DISK_EXTENT::DiskNumber) != 0;
}

// The letters, by the offsets of the partitions that they stand for. The volumes themselves are asked: the
// service may refuse to say it.
std::map<uint64_t, WideString> LettersOn(int number) {
    std::map<uint64_t, WideString> letters;
    for (const WCHAR letter : LettersInUse()) {
        for (const DISK_EXTENT& extent : ExtentsOf(letter).extents) {
            if (extent.DiskNumber == static_cast<DWORD>(number))
                letters[static_cast<uint64_t>(extent.StartingOffset.QuadPart)] += letter;
        }
    }
    return letters;
}

// Why nothing may be tried on the disk for what Windows has there; empty if it has nothing. What is unknown
// is taken for there. A disk in memory, from which Windows PE runs, is on no disk and does not know the
// question.
std::string WhyInUse(int number) {
    const VolumeExtents windows = ExtentsOf(WindowsLetter());
    if (windows.error != ERROR_SUCCESS && windows.error != ERROR_INVALID_FUNCTION)
        return "which disk holds the running Windows could not be told";
    if (IsOn(windows, number)) return "it holds the running Windows";
    for (const WCHAR letter : LettersInUse()) {
        const WideString pageFile = WideString(1, letter) + TEXT(":\\pagefile.sys");
        if (IsOn(ExtentsOf(letter), number) && PathFileExistsW(pageFile.c_str()))
            return "it holds a page file";
    }
    return "";
}

std::string Letters(const std::vector<TrialPartition>& partitions) {
    std::string letters;
    for (const TrialPartition& partition : partitions) {
        for (const WCHAR letter : partition.letters)
            letters += " " + LetterText(letter) + ":";
    }
    return letters.empty() ? "no letter" : "letters" + letters;
}

}  // namespace

std::optional<std::vector<TrialPartition>> PartitionsNow(TrialDisk& disk) {
    VDS_PARTITION_PROP* records = nullptr;
    LONG count = 0;
    std::vector<TrialPartition> partitions;
    const std::vector<uint64_t> volumes = OffsetsOfVolumes(*disk.disk.Get());
    const std::map<uint64_t, WideString> letters = LettersOn(disk.number);
    if (FAILED(disk.advanced->QueryPartitions(&records, &count))) return std::nullopt;
    if (records != nullptr) {
        for (const VDS_PARTITION_PROP& record :
             std::span(records, static_cast<size_t>(std::max<LONG>(count, 0)))) {
            if (std::ranges::count(extendedTypes, record.Mbr.partitionType) != 0) continue;
            TrialPartition partition{.number = record.ulPartitionNumber,
                                     .offset = record.ullOffset,
                                     .type = record.Mbr.partitionType,
                                     .isActive = record.Mbr.bootIndicator != 0,
                                     .holdsVolume = std::ranges::count(volumes, record.ullOffset) != 0};
            if (const auto letter = letters.find(record.ullOffset); letter != letters.end())
                partition.letters = letter->second;
            partitions.push_back(partition);
        }
    }
    CoTaskMemFree(records);
    return partitions;
}

TrialDisk FindTrialDisk(int number, int firstInternal) {
    const std::string asked = "--changes " + std::to_string(number) + ": ";
    for (ComPtr<IVdsDisk>& disk : DisksOfService()) {
        const Named named = NameOf(*disk.Get());
        if (!named.name.ends_with("PhysicalDrive" + std::to_string(number))) continue;
        TrialDisk found{.number = number, .name = named.name, .words = ""};
        found.advanced = As<IVdsAdvancedDisk>(*disk.Get(), IID_IVdsAdvancedDisk);
        found.types = As<IVdsAdvancedDisk2>(*disk.Get(), IID_IVdsAdvancedDisk2);
        found.disk = std::move(disk);
        if (number == firstInternal)
            throw WrongUse(asked +
                           "the first internal disk, from which the PC starts; attach a virtual disk");
        if (named.style != VDS_PST_MBR || !found.advanced || !found.types)
            throw WrongUse(asked + "not an MBR disk that the Virtual Disk Service changes");
        found.partitions = PartitionsNow(found).value_or(std::vector<TrialPartition>());
        if (found.partitions.empty()) throw WrongUse(asked + "it has no partitions");
        const std::string inUse = WhyInUse(number);
        if (!inUse.empty()) throw WrongUse(asked + inUse);
        found.words = found.name + ", " + SizeText(named.size) + ", " +
                      Count(found.partitions.size(), "partition") + ", " + Letters(found.partitions);
        return found;
    }
    throw WrongUse(asked + "the Virtual Disk Service has no such disk");
}
