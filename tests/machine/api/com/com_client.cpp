#include "tests/machine/api/com/com_client.h"

ComPtr<IVdsService> LoadVds() {
    ComPtr<IVdsServiceLoader> loader;
    EXPECT_EQ(CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                               reinterpret_cast<void**>(loader.Put())),
              S_OK);
    ComPtr<IVdsService> service;
    EXPECT_EQ(loader->LoadService(nullptr, service.Put()), S_OK);
    return service;
}

std::vector<ComPtr<IUnknown>> AllOf(IEnumVdsObject* list) {
    std::vector<ComPtr<IUnknown>> objects;
    while (true) {
        ComPtr<IUnknown> object;
        ULONG fetched = 0;
        if (list->Next(1, object.Put(), &fetched) != S_OK) return objects;
        objects.push_back(std::move(object));
    }
}

namespace {

std::string DiskName(IUnknown* object) {
    VDS_DISK_PROP properties{};
    EXPECT_EQ(Ask<IVdsDisk>(object, IID_IVdsDisk)->GetProperties(&properties), S_OK);
    std::string name = ToUtf8(properties.pwszName);
    FreeStrings(properties);
    return name;
}

std::string PackLine(IVdsPack* pack) {
    VDS_PACK_PROP properties{};
    EXPECT_EQ(pack->GetProperties(&properties), S_OK);
    std::string line =
        "pack " + ToUtf8(properties.pwszName) + " (" + std::to_string(properties.status) + "):";
    CoTaskMemFree(properties.pwszName);
    ComPtr<IEnumVdsObject> disks;
    EXPECT_EQ(pack->QueryDisks(disks.Put()), S_OK);
    for (const ComPtr<IUnknown>& disk : AllOf(disks.Get()))
        line += " " + DiskName(disk.Get());
    return line;
}

std::vector<ComPtr<IVdsPack>> PacksOf(IVdsService* service, size_t provider) {
    ComPtr<IEnumVdsObject> providers;
    EXPECT_EQ(service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, providers.Put()), S_OK);
    const std::vector<ComPtr<IUnknown>> all = AllOf(providers.Get());
    ComPtr<IEnumVdsObject> list;
    EXPECT_EQ(Ask<IVdsSwProvider>(all.at(provider).Get(), IID_IVdsSwProvider)->QueryPacks(list.Put()), S_OK);
    std::vector<ComPtr<IVdsPack>> packs;
    for (const ComPtr<IUnknown>& pack : AllOf(list.Get()))
        packs.push_back(Ask<IVdsPack>(pack.Get(), IID_IVdsPack));
    return packs;
}

}  // namespace

std::vector<std::string> UnallocatedDisks(IVdsService* service) {
    ComPtr<IEnumVdsObject> list;
    EXPECT_EQ(service->QueryUnallocatedDisks(list.Put()), S_OK);
    std::vector<std::string> names;
    for (const ComPtr<IUnknown>& disk : AllOf(list.Get()))
        names.push_back(DiskName(disk.Get()));
    return names;
}

std::vector<std::string> PackLines(IVdsService* service) {
    std::vector<std::string> lines;
    for (const ComPtr<IVdsPack>& pack : PacksOf(service, 0))
        lines.push_back("basic: " + PackLine(pack.Get()));
    for (const ComPtr<IVdsPack>& pack : PacksOf(service, 1))
        lines.push_back("dynamic: " + PackLine(pack.Get()));
    return lines;
}

VDS_OBJECT_ID DiskId(IVdsService* service, const std::string& name) {
    for (const ComPtr<IVdsPack>& pack : PacksOf(service, 0)) {
        ComPtr<IEnumVdsObject> disks;
        EXPECT_EQ(pack->QueryDisks(disks.Put()), S_OK);
        for (const ComPtr<IUnknown>& disk : AllOf(disks.Get())) {
            if (DiskName(disk.Get()) != name) continue;
            VDS_DISK_PROP properties{};
            EXPECT_EQ(Ask<IVdsDisk>(disk.Get(), IID_IVdsDisk)->GetProperties(&properties), S_OK);
            FreeStrings(properties);
            return properties.id;
        }
    }
    ADD_FAILURE() << "no pack has the disk " << name;
    return GUID_NULL;
}

void FreeStrings(VDS_DISK_PROP& properties) {
    for (LPWSTR* text : {&properties.pwszDiskAddress, &properties.pwszName, &properties.pwszFriendlyName,
                         &properties.pwszAdaptorName, &properties.pwszDevicePath}) {
        CoTaskMemFree(std::exchange(*text, nullptr));
    }
}

std::vector<VDS_DISK_EXTENT> ExtentsOf(IVdsDisk* disk) {
    VDS_DISK_EXTENT* extents = nullptr;
    LONG count = 0;
    EXPECT_EQ(disk->QueryExtents(&extents, &count), S_OK);
    std::vector<VDS_DISK_EXTENT> copy(extents, extents + count);
    CoTaskMemFree(extents);
    return copy;
}

std::vector<VDS_PARTITION_PROP> PartitionsOf(IVdsAdvancedDisk* disk) {
    VDS_PARTITION_PROP* partitions = nullptr;
    LONG count = 0;
    EXPECT_EQ(disk->QueryPartitions(&partitions, &count), S_OK);
    std::vector<VDS_PARTITION_PROP> copy(partitions, partitions + count);
    CoTaskMemFree(partitions);
    return copy;
}

DiskClient::DiskClient(machine::Pc facts) : ComClient(std::move(facts)), service(LoadVds()) {
    const VDS_OBJECT_ID id = DiskId(service.Get(), *pc.facts.disks.front().vdsName);
    disk = OpenDisk<IVdsDisk>(service.Get(), id, IID_IVdsDisk);
    advanced = OpenDisk<IVdsAdvancedDisk>(service.Get(), id, IID_IVdsAdvancedDisk);
    advanced2 = OpenDisk<IVdsAdvancedDisk2>(service.Get(), id, IID_IVdsAdvancedDisk2);
}

machine::Partition& DiskClient::Partition(uint32_t number) {
    return pc.facts.disks.front().partitions.at(number - 1);
}

VDS_OBJECT_ID DiskClient::VolumeId(uint32_t number) const {
    const uint64_t offset = pc.facts.disks.front().partitions.at(number - 1).offset;
    for (const VDS_DISK_EXTENT& extent : ExtentsOf(disk.Get())) {
        if (extent.ullOffset == offset) return extent.volumeId;
    }
    return GUID_NULL;
}

ComPtr<IWbemServices> ConnectWmi(const std::string& space) {
    ComPtr<IWbemLocator> locator;
    EXPECT_EQ(CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.Put())),
              S_OK);
    ComPtr<IWbemServices> services;
    EXPECT_EQ(locator->ConnectServer(SystemString(space).Get(), nullptr, nullptr, nullptr, 0, nullptr,
                                     nullptr, services.Put()),
              S_OK);
    return services;
}

std::string TextOf(IWbemClassObject* object, const std::string& name) {
    VARIANT value;
    VariantInit(&value);
    if (object->Get(ToWide(name).c_str(), 0, &value, nullptr, nullptr) != S_OK) return "?";
    std::string text = V_VT(&value) == VT_BSTR   ? ToUtf8(V_BSTR(&value))
                       : V_VT(&value) == VT_NULL ? "null"
                                                 : "?";
    VariantClear(&value);
    return text;
}

std::vector<std::vector<std::string>> InstancesOf(IWbemServices* services, const std::string& className,
                                                  const std::vector<std::string>& names) {
    ComPtr<IEnumWbemClassObject> list;
    EXPECT_EQ(services->CreateInstanceEnum(SystemString(className).Get(), 48, nullptr, list.Put()), S_OK);
    std::vector<std::vector<std::string>> instances;
    while (true) {
        ComPtr<IWbemClassObject> object;
        ULONG returned = 0;
        if (list->Next(static_cast<LONG>(WBEM_INFINITE), 1, object.Put(), &returned) != S_OK)
            return instances;
        std::vector<std::string>& texts = instances.emplace_back();
        for (const std::string& name : names)
            texts.push_back(TextOf(object.Get(), name));
    }
}
