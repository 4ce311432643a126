// The Virtual Disk Service: one software provider with one pack of all disks.

#include <algorithm>
#include <cstring>

#include "tests/windows/real/com_object.h"
#include "tests/windows/real/services.h"

namespace {

// Ids carry what they identify: a disk's number, and a partition's when they identify its volume.
GUID IdOf(int disk, ULONG partition = 0) {
    return {static_cast<ULONG>(disk) + 1, static_cast<USHORT>(partition), 0, {}};
}

TestDisk* DiskOf(const GUID& id) {
    for (TestDisk& disk : Facts().disks)
        if (disk.number + 1 == static_cast<int>(id.Data1)) return &disk;
    return nullptr;
}

TestPartition* PartitionAt(TestDisk& disk, ULONGLONG offset) {
    for (TestPartition& partition : disk.partitions)
        if (partition.offset == offset) return &partition;
    return nullptr;
}

LPWSTR Lend(const Text& text) {
    const size_t size = (text.size() + 1) * sizeof(WCHAR);
    return static_cast<LPWSTR>(std::memcpy(CoTaskMemAlloc(size), text.c_str(), size));
}

// --- enumerations ---

struct Objects {
    std::vector<IUnknown*> left;
};

// The objects go to whoever asks for them; the library asks for all.
HRESULT Next(ComObject<Objects>* self, ULONG, IUnknown** object, ULONG* fetched) {
    std::vector<IUnknown*>& left = self->data.left;
    *fetched = left.empty() ? 0 : 1;
    if (left.empty()) return S_FALSE;
    *object = left.front();
    left.erase(left.begin());
    return S_OK;
}

HRESULT HandObjects(std::vector<IUnknown*> objects, IEnumVdsObject** out) {
    static const VirtualTable table = TableOf<Objects>({{3, Address(Next)}});
    static const std::vector<Face> faces = {{IID_IEnumVdsObject, table}};
    return Hand(faces, Objects{std::move(objects)}, out);
}

// --- a volume ---

using Volume = TestPartition*;

HRESULT GetFileSystemProperties(ComObject<Volume>* self, VDS_FILE_SYSTEM_PROP* properties) {
    *properties = {};
    properties->type = VDS_FST_NTFS;
    properties->pwszLabel = Lend(self->data->label);
    return S_OK;
}

// --- a disk ---

using Disk = TestDisk*;

HRESULT GetDiskProperties(ComObject<Disk>* self, VDS_DISK_PROP* properties) {
    const TestDisk& disk = *self->data;
    *properties = {};
    properties->id = IdOf(disk.number);
    properties->status = VDS_DS_ONLINE;
    properties->health = VDS_H_HEALTHY;
    properties->dwDeviceType = FILE_DEVICE_DISK;
    properties->ullSize = disk.size;
    properties->BusType = disk.bus;
    properties->PartitionStyle = VDS_PST_MBR;
    properties->pwszName =
        Lend(TEXT("\\\\?\\PhysicalDrive") + Text(1, static_cast<WCHAR>('0' + disk.number)));
    return S_OK;
}

HRESULT QueryExtents(ComObject<Disk>* self, VDS_DISK_EXTENT** extents, LONG* count) {
    const TestDisk& disk = *self->data;
    *count = static_cast<LONG>(disk.partitions.size());
    *extents =
        static_cast<VDS_DISK_EXTENT*>(CoTaskMemAlloc(disk.partitions.size() * sizeof(VDS_DISK_EXTENT)));
    VDS_DISK_EXTENT* extent = *extents;
    for (const TestPartition& partition : disk.partitions)
        *extent++ = {IdOf(disk.number),
                     VDS_DET_DATA,
                     partition.offset,
                     partition.size,
                     IdOf(disk.number, partition.number),
                     {},
                     0};
    return S_OK;
}

VDS_PARTITION_PROP PropertiesOf(const TestPartition& partition) {
    VDS_PARTITION_PROP properties = {};
    properties.PartitionStyle = VDS_PST_MBR;
    properties.ulPartitionNumber = partition.number;
    properties.ullOffset = partition.offset;
    properties.ullSize = partition.size;
    properties.Mbr = {partition.type, partition.active, TRUE, 0};
    return properties;
}

HRESULT GetPartitionProperties(ComObject<Disk>* self, ULONGLONG offset, VDS_PARTITION_PROP* properties) {
    const TestPartition* const partition = PartitionAt(*self->data, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    *properties = PropertiesOf(*partition);
    return S_OK;
}

HRESULT QueryPartitions(ComObject<Disk>* self, VDS_PARTITION_PROP** records, LONG* count) {
    const std::vector<TestPartition>& partitions = self->data->partitions;
    *count = static_cast<LONG>(partitions.size());
    *records =
        static_cast<VDS_PARTITION_PROP*>(CoTaskMemAlloc(partitions.size() * sizeof(VDS_PARTITION_PROP)));
    std::transform(partitions.begin(), partitions.end(), *records, PropertiesOf);
    return S_OK;
}

HRESULT ChangeAttributes(ComObject<Disk>* self, ULONGLONG offset, CHANGE_ATTRIBUTES_PARAMETERS* change) {
    TestPartition* const partition = PartitionAt(*self->data, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    partition->active = change->MbrPartInfo.bootIndicator != 0;
    return S_OK;
}

HRESULT ChangePartitionType(ComObject<Disk>* self, ULONGLONG offset, BOOL,
                            CHANGE_PARTITION_TYPE_PARAMETERS* change) {
    TestPartition* const partition = PartitionAt(*self->data, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    partition->type = change->MbrPartInfo.partitionType;
    return S_OK;
}

// What it gives and takes is no letter of Windows, which has its drives as they are.
HRESULT AssignDriveLetter(ComObject<Disk>* self, ULONGLONG offset, WCHAR letter) {
    TestPartition* const partition = PartitionAt(*self->data, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    partition->letter = letter;
    return S_OK;
}

HRESULT DeleteDriveLetter(ComObject<Disk>* self, ULONGLONG offset, WCHAR) {
    return AssignDriveLetter(self, offset, 0);
}

HRESULT GetDriveLetter(ComObject<Disk>* self, ULONGLONG offset, WCHAR* letter) {
    const TestPartition* const partition = PartitionAt(*self->data, offset);
    if (partition == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    *letter = partition->letter;
    return S_OK;
}

HRESULT HandDisk(TestDisk& disk, IUnknown** out) {
    static const VirtualTable plain =
        TableOf<Disk>({{3, Address(GetDiskProperties)}, {6, Address(QueryExtents)}});
    static const VirtualTable advanced = TableOf<Disk>({{3, Address(GetPartitionProperties)},
                                                        {4, Address(QueryPartitions)},
                                                        {7, Address(ChangeAttributes)},
                                                        {8, Address(AssignDriveLetter)},
                                                        {9, Address(DeleteDriveLetter)},
                                                        {10, Address(GetDriveLetter)}});
    static const VirtualTable advanced2 = TableOf<Disk>({{3, Address(ChangePartitionType)}});
    static const std::vector<Face> faces = {
        {IID_IVdsDisk, plain}, {IID_IVdsAdvancedDisk, advanced}, {IID_IVdsAdvancedDisk2, advanced2}};
    return Hand(faces, &disk, out);
}

// --- provider, pack, service ---

HRESULT GetPackProperties(ComObject<Nothing>*, VDS_PACK_PROP* properties) {
    *properties = {};
    properties->status = VDS_PS_ONLINE;
    return S_OK;
}

HRESULT QueryDisks(ComObject<Nothing>*, IEnumVdsObject** out) {
    std::vector<IUnknown*> disks;
    for (TestDisk& disk : Facts().disks)
        HandDisk(disk, &disks.emplace_back());
    return HandObjects(std::move(disks), out);
}

HRESULT QueryPacks(ComObject<Nothing>*, IEnumVdsObject** out) {
    static const VirtualTable table =
        TableOf<Nothing>({{3, Address(GetPackProperties)}, {6, Address(QueryDisks)}});
    static const std::vector<Face> faces = {{IID_IVdsPack, table}};
    IUnknown* pack = nullptr;
    Hand(faces, Nothing(), &pack);
    return HandObjects({pack}, out);
}

HRESULT QueryProviders(ComObject<Nothing>*, DWORD, IEnumVdsObject** out) {
    static const VirtualTable table = TableOf<Nothing>({{3, Address(QueryPacks)}});
    static const std::vector<Face> faces = {{IID_IVdsSwProvider, table}};
    IUnknown* provider = nullptr;
    Hand(faces, Nothing(), &provider);
    return HandObjects({provider}, out);
}

HRESULT QueryUnallocatedDisks(ComObject<Nothing>*, IEnumVdsObject** out) {
    return HandObjects({}, out);
}

HRESULT GetObjectById(ComObject<Nothing>*, GUID id, VDS_OBJECT_TYPE type, IUnknown** out) {
    static const VirtualTable table = TableOf<Volume>({{3, Address(GetFileSystemProperties)}});
    static const std::vector<Face> faces = {{IID_IVdsVolumeMF, table}};
    TestDisk* const disk = DiskOf(id);
    if (disk == nullptr) return VDS_E_OBJECT_NOT_FOUND;
    if (type == VDS_OT_DISK) return HandDisk(*disk, out);
    for (TestPartition& partition : disk->partitions)
        if (partition.number == id.Data2) return Hand(faces, Volume(&partition), out);
    return VDS_E_OBJECT_NOT_FOUND;
}

HRESULT Ready(ComObject<Nothing>*) {
    return S_OK;
}

HRESULT LoadService(ComObject<Nothing>*, LPWSTR, IUnknown** out) {
    static const VirtualTable table = TableOf<Nothing>({{3, Address(Ready)},
                                                        {4, Address(Ready)},
                                                        {6, Address(QueryProviders)},
                                                        {8, Address(QueryUnallocatedDisks)},
                                                        {9, Address(GetObjectById)}});
    static const std::vector<Face> faces = {{IID_IVdsService, table}};
    return Hand(faces, Nothing(), out);
}

}  // namespace

HRESULT MakeVdsLoader(IUnknown** out) {
    static const VirtualTable table = TableOf<Nothing>({{3, Address(LoadService)}});
    static const std::vector<Face> faces = {{IID_IVdsServiceLoader, table}};
    return Hand(faces, Nothing(), out);
}
