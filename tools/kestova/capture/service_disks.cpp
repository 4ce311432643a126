#include "tools/kestova/capture/service_disks.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <optional>
#include <span>

#include "base/guid.h"
#include "base/hexadecimal.h"
#include "base/owners.h"
#include "base/scan.h"
#include "base/utf.h"
#include "base/wide_string.h"
#include "machine/facts/extent_type.h"
#include "platform/vds.h"
#include "tools/kestova/capture/open_device.h"
#include "tools/kestova/probes/enumerations.h"

namespace {

constexpr uint32_t mostDisks = 128;
constexpr size_t mostEntries = 128;  // of a table

// Memory of the service, freed at the end of its scope.
template <typename Record>
class Lent {
  public:
    Lent() = default;
    explicit Lent(Record* records) : records_(records) {}
    ~Lent() { CoTaskMemFree(records_); }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;

    Record** Put() { return &records_; }
    const Record* Get() const { return records_; }
    std::span<const Record> Records(LONG count) const {
        return {records_, records_ != nullptr && count > 0 ? static_cast<size_t>(count) : 0};
    }

  private:
    Record* records_ = nullptr;
};

std::string Code(HRESULT result) {
    return Hex(static_cast<uint32_t>(result), 8);
}

std::string DiskText(uint32_t number) {
    return "disk " + std::to_string(number);
}

template <typename Interface>
ComPtr<Interface> As(IUnknown& object, REFIID id) {
    ComPtr<Interface> found;
    object.QueryInterface(id, reinterpret_cast<void**>(found.Put()));
    return found;
}

bool IsDynamicProvider(IUnknown& object) {
    const ComPtr<IVdsProvider> provider = As<IVdsProvider>(object, IID_IVdsProvider);
    VDS_PROVIDER_PROP properties = {};
    const bool told = provider && SUCCEEDED(provider->GetProperties(&properties));
    const Lent<WCHAR> name(properties.pwszName);
    const Lent<WCHAR> version(properties.pwszVersion);
    return told && (properties.ulFlags & VDS_PF_DYNAMIC) != 0;
}

class ServiceCapture {
  public:
    explicit ServiceCapture(Findings& findings) : findings_(findings) {}
    void Run();

  private:
    template <typename Action>
    void ForEach(const char* list, IEnumVdsObject& objects, Action action);
    bool Succeeds(const char* call, HRESULT result);
    ComPtr<IVdsService> Service();
    void Provider(IUnknown& object);
    void Pack(IUnknown& object);
    void Disk(IUnknown& object, const std::string& pack, bool unallocated);
    void Partitions(IUnknown& object, machine::Disk& disk);
    void Extents(IVdsDisk& service, const machine::Disk& disk);
    std::optional<uint32_t> NumberOf(const VDS_DISK_PROP& properties);
    std::string PackNamed(const VDS_PACK_PROP& properties, bool isImplicit);

    Findings& findings_;
    bool isDynamic_ = false;                   // the provider of the moment
    std::map<std::string, uint32_t> numbers_;  // of the disks, by their ids
};

// A failure that belongs to no object that a description has.
bool ServiceCapture::Succeeds(const char* call, HRESULT result) {
    if (SUCCEEDED(result)) return true;
    findings_.pc.faults.push_back({.call = call, .code = static_cast<uint32_t>(result)});
    return false;
}

template <typename Action>
void ServiceCapture::ForEach(const char* list, IEnumVdsObject& objects, Action action) {
    const HRESULT end = ForEachObject(objects, action);
    if (FAILED(end)) findings_.Note(std::string("the list of ") + list + " ends with " + Code(end));
    if (end == S_OK) findings_.Note(std::string("the list of ") + list + goesOn);
}

ComPtr<IVdsService> ServiceCapture::Service() {
    ComPtr<IVdsServiceLoader> loader;
    ComPtr<IVdsService> service;
    const HRESULT made = CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER,
                                          IID_IVdsServiceLoader, reinterpret_cast<void**>(loader.Put()));
    if (FAILED(made)) findings_.Fails("CoCreateInstance", "VdsLoader", static_cast<uint32_t>(made));
    if (FAILED(made) || !loader) return service;
    if (!Succeeds("IVdsServiceLoader::LoadService", loader->LoadService(nullptr, service.Put())))
        return service;
    if (service && !Succeeds("IVdsService::WaitForServiceReady", service->WaitForServiceReady()))
        service.Reset();
    return service;
}

void ServiceCapture::Run() {
    const ComPtr<IVdsService> service = Service();
    if (!service) return findings_.Note("the Virtual Disk Service is not there: no disk is described");
    ComPtr<IEnumVdsObject> providers;
    if (Succeeds("IVdsService::QueryProviders",
                 service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, providers.Put())) &&
        providers)
        ForEach("providers", *providers.Get(), [&](IUnknown& provider) { Provider(provider); });
    ComPtr<IEnumVdsObject> unallocated;
    if (Succeeds("IVdsService::QueryUnallocatedDisks", service->QueryUnallocatedDisks(unallocated.Put())) &&
        unallocated)
        ForEach("unallocated disks", *unallocated.Get(), [&](IUnknown& disk) { Disk(disk, "", true); });
}

void ServiceCapture::Provider(IUnknown& object) {
    isDynamic_ = IsDynamicProvider(object);
    const ComPtr<IVdsSwProvider> provider = As<IVdsSwProvider>(object, IID_IVdsSwProvider);
    ComPtr<IEnumVdsObject> packs;
    const std::string argument = isDynamic_ ? "dynamic" : "basic";
    const HRESULT listed = provider ? provider->QueryPacks(packs.Put()) : E_NOINTERFACE;
    if (listed != S_OK)
        findings_.Fails("IVdsSwProvider::QueryPacks", argument, static_cast<uint32_t>(listed));
    if (FAILED(listed) || !packs) return;
    ForEach("packs", *packs.Get(), [&](IUnknown& pack) { Pack(pack); });
}

// The pack of one disk that is online and has no name needs no description.
void ServiceCapture::Pack(IUnknown& object) {
    const ComPtr<IVdsPack> pack = As<IVdsPack>(object, IID_IVdsPack);
    if (!pack) return findings_.Note("a pack of the service has no interface of packs");
    VDS_PACK_PROP properties = {};
    const HRESULT told = pack->GetProperties(&properties);
    const Lent<WCHAR> name(properties.pwszName);
    std::vector<ComPtr<IUnknown>> disks;
    ComPtr<IEnumVdsObject> list;
    const HRESULT listed = pack->QueryDisks(list.Put());
    if (SUCCEEDED(listed) && list) {
        ForEach("disks of a pack", *list.Get(), [&](IUnknown& disk) {
            disk.AddRef();
            disks.emplace_back(&disk);
        });
    }
    const bool isImplicit =
        ToUtf8(name.Get()).empty() && properties.status == VDS_PS_ONLINE && disks.size() == 1;
    const std::string packName = PackNamed(properties, isImplicit);
    const size_t described = findings_.pc.disks.size();
    for (const ComPtr<IUnknown>& disk : disks)
        Disk(*disk.Get(), packName, false);
    // Without its disk it is not described.
    if (isImplicit && findings_.pc.disks.size() == described) return;
    const std::string argument =
        isImplicit ? "pack of " + DiskText(findings_.pc.disks.back().number) : "pack " + packName;
    if (told != S_OK) findings_.Fails("IVdsPack::GetProperties", argument, static_cast<uint32_t>(told));
    if (listed != S_OK) findings_.Fails("IVdsPack::QueryDisks", argument, static_cast<uint32_t>(listed));
}

// The name of the pack in the description; empty for an implicit one.
std::string ServiceCapture::PackNamed(const VDS_PACK_PROP& properties, bool isImplicit) {
    if (isImplicit) return "";
    machine::Pack& pack = findings_.pc.packs.emplace_back();
    std::string name = ToUtf8(properties.pwszName);
    if (name.empty()) name = "pack " + std::to_string(findings_.pc.packs.size());
    // Disks that two PCs gave to a third can have packs of one name.
    while (std::ranges::count(findings_.pc.packs, name, &machine::Pack::name) != 0)
        name += " again";
    pack.name = name;
    pack.status = properties.status;
    pack.dynamic = isDynamic_;
    return pack.name;
}

// What a disk's own device says of it.
struct DeviceIdentity {
    VDS_PARTITION_STYLE style = VDS_PST_UNKNOWN;
    DWORD signature = 0;
    GUID guid = {};
    ULONGLONG size = 0;
};

bool Ask(const FileHandle& device, DWORD control, std::vector<char>& room) {
    DWORD returned = 0;
    return DeviceIoControl(device.Get(), control, nullptr, 0, room.data(), static_cast<DWORD>(room.size()),
                           &returned, nullptr) != FALSE;
}

std::optional<DeviceIdentity> IdentityOf(uint32_t number) {
    const FileHandle device = OpenShared("\\\\.\\PhysicalDrive" + std::to_string(number), 0);
    if (!device) return std::nullopt;
    DeviceIdentity identity;
    std::vector<char> room(sizeof(DRIVE_LAYOUT_INFORMATION_EX) +
                           mostEntries * sizeof(PARTITION_INFORMATION_EX));
    if (Ask(device, IOCTL_DISK_GET_DRIVE_LAYOUT_EX, room)) {
        DRIVE_LAYOUT_INFORMATION_EX layout;
        std::memcpy(&layout, room.data(), sizeof layout);
        if (layout.PartitionStyle == PARTITION_STYLE_MBR) {
            identity.style = VDS_PST_MBR;
            identity.signature = layout.Mbr.Signature;
        } else if (layout.PartitionStyle == PARTITION_STYLE_GPT) {
            identity.style = VDS_PST_GPT;
            identity.guid = layout.Gpt.DiskId;
        }
    }
    if (Ask(device, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, room)) {
        DISK_GEOMETRY_EX geometry;
        std::memcpy(&geometry, room.data(), offsetof(DISK_GEOMETRY_EX, Data));
        identity.size = static_cast<ULONGLONG>(geometry.DiskSize.QuadPart);
    }
    return identity;
}

// Drives without a medium are all alike.
bool Matches(const DeviceIdentity& identity, const VDS_DISK_PROP& properties) {
    if (identity.style == VDS_PST_UNKNOWN && identity.size == 0) return false;
    if (identity.style != properties.PartitionStyle || identity.size != properties.ullSize) return false;
    if (identity.style == VDS_PST_MBR) return identity.signature == properties.dwSignature;
    return identity.style != VDS_PST_GPT || IsEqualGUID(identity.guid, properties.DiskGuid);
}

// Of a disk without the usual name, that of the first disk with the same size and the same signature or GUID
// that is none of the others.
std::optional<uint32_t> ServiceCapture::NumberOf(const VDS_DISK_PROP& properties) {
    const WideString name = UpperCase(properties.pwszName != nullptr ? properties.pwszName : TEXT(""));
    int number = -1;
    if (ScanNumbers(name.c_str(), TEXT("\\\\?\\PHYSICALDRIVE%d"), {&number}) == 1 && number >= 0)
        return static_cast<uint32_t>(number);
    for (uint32_t candidate = 0; candidate < mostDisks; ++candidate) {
        if (std::ranges::count(findings_.pc.disks, candidate, &machine::Disk::number) != 0) continue;
        const std::optional<DeviceIdentity> identity = IdentityOf(candidate);
        if (identity && Matches(*identity, properties)) return candidate;
    }
    return std::nullopt;
}

void ServiceCapture::Disk(IUnknown& object, const std::string& pack, bool unallocated) {
    const ComPtr<IVdsDisk> service = As<IVdsDisk>(object, IID_IVdsDisk);
    if (!service) return findings_.Note("a disk of the service has no interface of disks, and is left out");
    VDS_DISK_PROP properties = {};
    const HRESULT told = service->GetProperties(&properties);
    const Lent<WCHAR> texts[] = {Lent<WCHAR>(properties.pwszDiskAddress), Lent<WCHAR>(properties.pwszName),
                                 Lent<WCHAR>(properties.pwszFriendlyName),
                                 Lent<WCHAR>(properties.pwszAdaptorName),
                                 Lent<WCHAR>(properties.pwszDevicePath)};
    if (FAILED(told))
        return findings_.Note("a disk of the service does not tell its properties, " + Code(told) +
                              ", and is left out");
    // A disk can be in two lists.
    if (const auto known = numbers_.find(GuidText(properties.id)); known != numbers_.end()) {
        std::ranges::find(findings_.pc.disks, known->second, &machine::Disk::number)->unallocated |=
            unallocated;
        return;
    }
    const std::optional<uint32_t> number = NumberOf(properties);
    if (!number)
        return findings_.Note("the disk \"" + ToUtf8(properties.pwszName) +
                              "\" of the service has no number, and is left out");
    const bool isTaken = std::ranges::count(findings_.pc.disks, *number, &machine::Disk::number) != 0;
    if (isTaken)
        return findings_.Note("two disks of the service have the name of " + DiskText(*number) +
                              ": one is left out");
    numbers_[GuidText(properties.id)] = *number;
    machine::Disk disk;
    disk.number = *number;
    if (properties.pwszName != nullptr) disk.vdsName = ToUtf8(properties.pwszName);
    disk.pack = pack;
    disk.unallocated = unallocated;
    disk.deviceType = properties.dwDeviceType;
    disk.busType = static_cast<uint32_t>(properties.BusType);
    disk.size = properties.ullSize;
    disk.style = properties.PartitionStyle == VDS_PST_MBR   ? machine::PartitionStyle::Mbr
                 : properties.PartitionStyle == VDS_PST_GPT ? machine::PartitionStyle::Gpt
                                                            : machine::PartitionStyle::Unknown;
    if (disk.style == machine::PartitionStyle::Mbr) disk.signature = properties.dwSignature;
    if (disk.style == machine::PartitionStyle::Gpt) disk.guid = properties.DiskGuid;
    if (told != S_OK)
        findings_.Fails("IVdsDisk::GetProperties", DiskText(*number), static_cast<uint32_t>(told));
    Partitions(object, disk);
    Extents(*service.Get(), disk);
    findings_.pc.disks.push_back(std::move(disk));
}

machine::Partition CapturedPartition(const VDS_PARTITION_PROP& record) {
    machine::Partition partition;
    partition.number = record.ulPartitionNumber;
    partition.offset = record.ullOffset;
    partition.size = record.ullSize;
    if (record.PartitionStyle == VDS_PST_MBR) {
        partition.mbrType = record.Mbr.partitionType;
        partition.bootIndicator = record.Mbr.bootIndicator;
    } else if (record.PartitionStyle == VDS_PST_GPT) {
        partition.gptType = record.Gpt.partitionType;
        partition.gptId = record.Gpt.partitionId;
        partition.attributes = record.Gpt.attributes;
        const WCHAR* const end = std::ranges::find(record.Gpt.name, TEXT('\0'));
        partition.name = ToUtf8(WideView(record.Gpt.name, static_cast<size_t>(end - record.Gpt.name)));
    }
    return partition;
}

void ServiceCapture::Partitions(IUnknown& object, machine::Disk& disk) {
    const ComPtr<IVdsAdvancedDisk> advanced = As<IVdsAdvancedDisk>(object, IID_IVdsAdvancedDisk);
    if (!advanced) return findings_.Note(DiskText(disk.number) + " has no interface of partitions");
    Lent<VDS_PARTITION_PROP> records;
    LONG count = 0;
    const HRESULT result = advanced->QueryPartitions(records.Put(), &count);
    if (result == S_FALSE && count == 0) findings_.lendsArray[disk.number] = records.Get() != nullptr;
    const bool isUsual =
        result == S_OK || (result == S_FALSE && count == 0) ||
        (result == VDS_E_DISK_NOT_INITIALIZED && disk.style == machine::PartitionStyle::Unknown);
    if (!isUsual)
        findings_.Fails("IVdsAdvancedDisk::QueryPartitions", DiskText(disk.number),
                        static_cast<uint32_t>(result));
    for (const VDS_PARTITION_PROP& record : records.Records(SUCCEEDED(result) ? count : 0)) {
        disk.partitions.push_back(CapturedPartition(record));
        LetterAnswer& answer = findings_.letters[{disk.number, record.ullOffset}];
        answer.result = advanced->GetDriveLetter(record.ullOffset, &answer.letter);
    }
}

void ServiceCapture::Extents(IVdsDisk& service, const machine::Disk& disk) {
    Lent<VDS_DISK_EXTENT> records;
    LONG count = 0;
    const HRESULT result = service.QueryExtents(records.Put(), &count);
    if (result != S_OK)
        findings_.Fails("IVdsDisk::QueryExtents", DiskText(disk.number), static_cast<uint32_t>(result));
    for (const VDS_DISK_EXTENT& record : records.Records(SUCCEEDED(result) ? count : 0))
        findings_.extentTypes[{disk.number, record.ullOffset}] = record.type;
}

// Whether the letter calls are for that partition, as documented.
bool IsLetterable(const machine::Disk& disk, const machine::Partition& partition) {
    const int type = machine::ExtentTypeOf(disk.style, partition);
    return type == VDS_DET_OEM || type == VDS_DET_ESP || type == VDS_DET_UNKNOWN;
}

void CaptureLetterAnswer(machine::Switches& switches, const machine::Disk& disk,
                         const machine::Partition& partition, const LetterAnswer& answer) {
    using enum machine::Switches::Letterless;
    const bool hasLetter = partition.volume && !partition.volume->letters.empty();
    if (answer.result == S_OK && !IsLetterable(disk, partition)) switches.volumesRefuseLetterCalls = false;
    if (answer.result != S_OK || hasLetter) return;
    if (answer.letter == TEXT('\0')) switches.letterless = Nul;
    if (answer.letter == TEXT('0')) switches.letterless = Zero;
}

}  // namespace

void CaptureServiceDisks(Findings& findings) {
    ServiceCapture(findings).Run();
}

void CaptureAnswersForPartitions(Findings& findings) {
    for (machine::Disk& disk : findings.pc.disks) {
        for (machine::Partition& partition : disk.partitions) {
            const PartitionPlace place = {disk.number, partition.offset};
            const auto type = findings.extentTypes.find(place);
            if (partition.volume && type != findings.extentTypes.end() &&
                type->second != machine::ExtentTypeOf(disk.style, partition))
                partition.volume->extentType = type->second;
            if (const auto answer = findings.letters.find(place); answer != findings.letters.end())
                CaptureLetterAnswer(findings.pc.switches, disk, partition, answer->second);
        }
    }
    for (const auto& [disk, lends] : findings.lendsArray)
        findings.pc.switches.emptyTableLendsArray = findings.pc.switches.emptyTableLendsArray || lends;
}
