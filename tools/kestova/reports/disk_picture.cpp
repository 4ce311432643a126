#include "tools/kestova/reports/disk_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

#include "platform/vds.h"
#include "tools/kestova/reports/disk_layout.h"
#include "tools/kestova/reports/partition_roles.h"

namespace {

constexpr int64_t leastGap = 1 << 20;

// --- the bus ---

struct BusRow {
    DWORD bus;
    const char* words;
};

// The values of STORAGE_BUS_TYPE, of which headers know a part.
constexpr BusRow buses[] = {
    {1, "SCSI"},           {2, "ATAPI"}, {3, "ATA"},  {4, "FireWire"}, {5, "SSA"},
    {6, "Fibre Channel"},  {7, "USB"},   {8, "RAID"}, {9, "iSCSI"},    {10, "SAS"},
    {11, "SATA"},          {12, "SD"},   {13, "MMC"}, {14, "virtual"}, {15, "virtual file"},
    {16, "storage space"}, {17, "NVMe"}, {18, "SCM"}, {19, "UFS"},
};

// Those of the service's list of internal disks; it counts buses as drivers do.
bool CountsAsInternal(DWORD bus) {
    return bus == VDS_BUS_TYPE_ATA || bus == VDS_BUS_TYPE_RAID || bus == VDS_BUS_TYPE_SATA;
}

std::string BusWords(DWORD bus) {
    const auto row = std::ranges::find(buses, bus, &BusRow::bus);
    return row != std::end(buses) ? row->words : "bus " + std::to_string(bus);
}

// --- what its driver says of a disk ---

// A text of the descriptor without blanks around it; nothing if there is none.
std::optional<std::string> TextAt(const std::vector<char>& descriptor, DWORD offset) {
    if (offset == 0 || offset >= descriptor.size()) return std::nullopt;
    const std::string_view rest(descriptor.data() + offset, descriptor.size() - offset);
    std::string_view text = rest.substr(0, rest.find('\0'));
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(' ') - first + 1);
    return std::string(text);
}

std::optional<std::string> Model(const std::vector<char>& descriptor,
                                 const STORAGE_DEVICE_DESCRIPTOR& fixed) {
    const auto vendor = TextAt(descriptor, fixed.VendorIdOffset);
    const auto product = TextAt(descriptor, fixed.ProductIdOffset);
    if (!vendor || !product) return product ? product : vendor;
    return *vendor + " " + *product;
}

// Bus, model and serial number. Returns the bus.
std::optional<DWORD> AddIdentity(HANDLE handle, DiskReport& disk) {
    STORAGE_PROPERTY_QUERY query = {};
    query.PropertyId = StorageDeviceProperty;
    query.QueryType = PropertyStandardQuery;
    std::vector<char> descriptor(4096);
    DWORD returned = 0;
    if (!DeviceIoControl(handle, IOCTL_STORAGE_QUERY_PROPERTY, &query, sizeof query, descriptor.data(),
                         static_cast<DWORD>(descriptor.size()), &returned, nullptr) ||
        returned < sizeof(STORAGE_DEVICE_DESCRIPTOR)) {
        return std::nullopt;
    }
    descriptor.resize(returned);
    STORAGE_DEVICE_DESCRIPTOR fixed;
    std::memcpy(&fixed, descriptor.data(), sizeof fixed);
    DWORD bus = 0;
    std::memcpy(&bus, descriptor.data() + offsetof(STORAGE_DEVICE_DESCRIPTOR, BusType), sizeof bus);
    disk.bus = BusWords(bus);
    disk.model = Model(descriptor, fixed);
    disk.serial = TextAt(descriptor, fixed.SerialNumberOffset);
    return bus;
}

bool AddSize(HANDLE handle, DiskReport& disk) {
    DISK_GEOMETRY_EX geometry = {};
    DWORD returned = 0;
    if (!DeviceIoControl(handle, IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, nullptr, 0, &geometry, sizeof geometry,
                         &returned, nullptr)) {
        return false;
    }
    disk.size = geometry.DiskSize.QuadPart;
    disk.sectorSize = geometry.Geometry.BytesPerSector;
    return true;
}

const char* StyleWords(DWORD style) {
    return style == PARTITION_STYLE_MBR ? "MBR" : style == PARTITION_STYLE_GPT ? "GPT" : "none";
}

// --- why it is internal, or is not ---

void AddReason(const StatusReport& status, const DiskFacts& facts, std::optional<DWORD> bus,
               DiskReport& disk) {
    const bool isChosen = status.internalDisk == disk.number;
    if (!bus) {
        disk.reason = "its bus cannot be read";
        return;
    }
    disk.isInternal = CountsAsInternal(*bus);
    if (*disk.isInternal) {
        disk.reason = facts.countsAsSata ? "an image counts as SATA" : *disk.bus;
        if (isChosen) disk.reason += "; the first internal disk";
        return;
    }
    disk.reason = *disk.bus + " is not ATA, RAID or SATA";
}

// In the installed Windows the library finds the number of its disk before it looks at the bus.
void AddWhatWindowsFinds(const StatusReport& status, DiskReport& disk) {
    if (disk.isInternal != false || status.system != "Windows" || !status.windowsDirectory) return;
    const auto windows = static_cast<WCHAR>(status.windowsDirectory->front());
    if (std::ranges::count(disk.partitions, std::optional(windows), &PartitionReport::letter) != 0)
        disk.reason += "; Windows runs from it, so its number is found all the same, with failure";
}

// --- partitions and gaps ---

// What only an emulated PC knows, where the volume itself was not asked.
void AddFacts(const DiskFacts& facts, PartitionReport& partition) {
    const auto known = std::ranges::find(facts.partitions, partition.number, &PartitionFacts::number);
    if (known == facts.partitions.end()) return;
    partition.slot = known->slot;
    if (!partition.label) partition.label = known->label;
    if (!partition.fileSystem) partition.fileSystem = known->fileSystem;
    if (!partition.condition) partition.condition = known->condition;
}

std::vector<Gap> GapsOf(const DiskTable& table) {
    std::vector<PARTITION_INFORMATION_EX> entries = table.entries;
    std::ranges::sort(entries, {}, [](const auto& entry) { return entry.StartingOffset.QuadPart; });
    std::vector<Gap> gaps;
    int64_t free = table.usable;
    const auto add = [&](int64_t end) {
        end = std::min(end, table.usableEnd);  // a damaged table names sectors behind the disk
        // The first sectors belong to the table, so the partition that begins at 1 MiB has none before it.
        if (end - free >= leastGap) gaps.push_back({free, end - free});
    };
    for (const PARTITION_INFORMATION_EX& entry : entries) {
        add(entry.StartingOffset.QuadPart);
        free = std::max<int64_t>(free, entry.StartingOffset.QuadPart + entry.PartitionLength.QuadPart);
    }
    add(table.usableEnd);
    return gaps;
}

void AddTable(HANDLE handle, DiskReport& disk, std::vector<PartitionReport>& found, Questions& questions) {
    const auto table = ReadDiskTable(handle, disk.size.value_or(0), disk.sectorSize.value_or(0));
    if (!table) {
        questions.AddUnread("the partitions of disk " + std::to_string(disk.number) + " cannot be read",
                            GetLastError());
        return;
    }
    disk.style = StyleWords(table->style);
    for (const PARTITION_INFORMATION_EX& entry : table->entries)
        found.push_back(PartitionOf(entry));
    if (disk.size) disk.gaps = GapsOf(*table);
}

void AddPartitions(const StatusReport& status, const DiskFacts& facts, std::vector<PartitionReport> found,
                   DiskReport& disk, Questions& questions) {
    const bool isKnown = status.internalDisk == disk.number;
    if (isKnown) found = status.partitions;
    for (PartitionReport& partition : found) {
        if (!isKnown) {
            AddVolume(disk.number, partition, questions);
            AddTypeRoles(partition);
        }
        AddFacts(facts, partition);
    }
    disk.partitions = std::move(found);
}

DiskReport ReadDisk(HANDLE handle, int number, const StatusReport& status, Questions& questions) {
    DiskReport disk{.number = number};
    const DiskFacts facts = questions.On().OnPc().FactsOf(number);
    const std::optional<DWORD> bus = AddIdentity(handle, disk);
    if (!facts.model.empty()) disk.model = facts.model;
    if (!facts.serial.empty()) disk.serial = facts.serial;
    AddReason(status, facts, bus, disk);
    if (!AddSize(handle, disk))
        questions.AddUnread("the size of disk " + std::to_string(number) + " cannot be read", GetLastError());
    std::vector<PartitionReport> found;
    AddTable(handle, disk, found, questions);
    CloseHandle(handle);
    AddPartitions(status, facts, std::move(found), disk, questions);
    AddWhatWindowsFinds(status, disk);
    return disk;
}

}  // namespace

// What cannot be read of a stick, or of an empty card reader, is no problem of the PC.
std::vector<DiskReport> ReadDisks(const StatusReport& status, Questions& questions) {
    Questions ofOthers(questions.On());
    std::vector<DiskReport> disks;
    for (int number = 0; number < questions.On().OnPc().DiskNumbersEnd(); ++number) {
        const HANDLE handle = OpenDisk(number);
        const DWORD error = GetLastError();
        const bool isOther = status.internalDisk && status.internalDisk != number;
        if (handle != INVALID_HANDLE_VALUE) {
            disks.push_back(ReadDisk(handle, number, status, isOther ? ofOthers : questions));
        } else if (error != ERROR_FILE_NOT_FOUND && !isOther) {
            // One that the system refuses is like the next ones.
            questions.AddUnread("the disks from " + std::to_string(number) + " on cannot be opened", error);
            break;
        }
    }
    return disks;
}
