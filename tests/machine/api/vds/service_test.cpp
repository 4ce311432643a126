// The loader, the service, its enumerations and packs.
#include <gmock/gmock.h>

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/machine/api/com/com_client.h"

namespace {

// A disk with that number and an empty table, named D with its number.
machine::Disk EmptyDisk(uint32_t number) {
    machine::Disk disk;
    disk.number = number;
    disk.vdsName = "D" + std::to_string(number);
    return disk;
}

}  // namespace

TEST(LoadService, OtherMachineName_IsUnreachable) {
    ComClient client(machine::FactoryMbr());
    ComPtr<IVdsServiceLoader> loader;
    ASSERT_EQ(CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                               reinterpret_cast<void**>(loader.Put())),
              S_OK);
    ComPtr<IVdsService> service;
    EXPECT_EQ(loader->LoadService(nullptr, service.Put()), S_OK);
    EXPECT_EQ(service->WaitForServiceReady(), S_OK);
    EXPECT_EQ(service->IsServiceReady(), S_OK);
    WCHAR elsewhere[] = TEXT("ELSEWHERE");
    IVdsService* none = service.Get();
    EXPECT_EQ(loader->LoadService(elsewhere, &none), HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(loader->LoadService(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IVdsService", 1}, {"IVdsServiceLoader", 1}}));
}

TEST(IsServiceReady, FaultPlan_DefinesTheState) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IVdsService> service = LoadVds();
    client.pc.faults.Arm({"IVdsService::IsServiceReady", 1, false, false, S_FALSE});
    client.pc.faults.Arm({"IVdsService::IsServiceReady", 2, false, false, 0x80042401});
    EXPECT_EQ(service->IsServiceReady(), S_FALSE) << "still starting";
    EXPECT_EQ(service->IsServiceReady(), VDS_E_INITIALIZED_FAILED);
    EXPECT_EQ(service->IsServiceReady(), S_OK);
}

TEST(QueryProviders, EachMask_ReturnsTheProvidersOfItsBits) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IVdsService> service = LoadVds();
    for (const auto& [mask, count] : std::map<DWORD, size_t>{{0, 0}, {1, 2}, {2, 0}, {4, 0}, {7, 2}}) {
        ComPtr<IEnumVdsObject> list;
        EXPECT_EQ(service->QueryProviders(mask, list.Put()), S_OK);
        EXPECT_EQ(AllOf(list.Get()).size(), count) << "mask " << mask;
    }
    IEnumVdsObject* none = nullptr;
    EXPECT_EQ(service->QueryProviders(8, &none), VDS_E_INVALID_QUERY_PROVIDER_FLAG);
    EXPECT_EQ(service->QueryProviders(1, nullptr), E_POINTER);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IVdsService", 1}}));
}

TEST(Enumerator, AtTheEnd_ReturnsSFalseEveryTime) {
    ComClient client(machine::WinPeTwoDisks());
    const ComPtr<IVdsService> service = LoadVds();
    ComPtr<IEnumVdsObject> list;
    ASSERT_EQ(service->QueryProviders(1, list.Put()), S_OK);
    IUnknown* objects[3] = {};
    ULONG fetched = 9;
    EXPECT_EQ(list->Next(3, objects, &fetched), S_FALSE) << "two of three";
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(objects[2], nullptr);
    objects[0]->Release();
    objects[1]->Release();
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(list->Next(1, objects, &fetched), S_FALSE);
        EXPECT_EQ(fetched, 0u);
        EXPECT_EQ(objects[0], nullptr);
    }
    EXPECT_EQ(list->Next(1, nullptr, &fetched), E_POINTER);
    EXPECT_EQ(list->Next(1, objects, nullptr), E_POINTER);
    EXPECT_EQ(client.OnLoan(), (Loans{{"IEnumVdsObject", 1}, {"IVdsService", 1}}));
}

TEST(Enumerator, ListChangedLater_KeepsTheOriginalList) {
    machine::Pc facts;
    facts.disks = {EmptyDisk(0)};
    facts.disks[0].unallocated = true;
    ComClient client(facts);
    const ComPtr<IVdsService> service = LoadVds();
    ComPtr<IEnumVdsObject> list;
    ASSERT_EQ(service->QueryUnallocatedDisks(list.Put()), S_OK);
    client.pc.facts.disks.clear();
    const std::vector<ComPtr<IUnknown>> disks = AllOf(list.Get());
    ASSERT_EQ(disks.size(), 1u);
    VDS_DISK_PROP properties{};
    EXPECT_EQ(Ask<IVdsDisk>(disks[0].Get(), IID_IVdsDisk)->GetProperties(&properties), VDS_E_OBJECT_DELETED);
}

TEST(QueryPacks, DisksWithoutPack_HaveImplicitOnlinePacks) {
    ComClient client(machine::WinPeTwoDisks());
    const ComPtr<IVdsService> service = LoadVds();
    EXPECT_EQ(PackLines(service.Get()),
              (std::vector<std::string>{"basic: pack  (1): \\\\?\\PhysicalDrive0",
                                        "basic: pack  (1): \\\\?\\PhysicalDrive1"}));
    EXPECT_EQ(UnallocatedDisks(service.Get()), std::vector<std::string>());
    EXPECT_EQ(client.OnLoan(), (Loans{{"IVdsService", 1}}));
}

TEST(QueryPacks, NamedPacks_HaveTheirStatusDisksAndProvider) {
    machine::Pc facts;
    facts.packs = {{"lonely", 1, false}, {"spanned", 4, true}, {"pair", 1, false}};
    facts.disks = {EmptyDisk(0), EmptyDisk(1), EmptyDisk(2), EmptyDisk(3), EmptyDisk(4), EmptyDisk(5)};
    facts.disks[1].pack = "pair";
    facts.disks[2].pack = "spanned";
    facts.disks[3].pack = "pair";
    facts.disks[4].pack = "not described";
    facts.disks[5].unallocated = true;
    ComClient client(facts);
    const ComPtr<IVdsService> service = LoadVds();
    EXPECT_EQ(PackLines(service.Get()),
              (std::vector<std::string>{"basic: pack  (1): D0", "basic: pack pair (1): D1 D3",
                                        "basic: pack not described (1): D4",
                                        "basic: pack lonely (1):", "dynamic: pack spanned (4): D2"}));
    EXPECT_EQ(UnallocatedDisks(service.Get()), (std::vector<std::string>{"D5"}));
}

TEST(QueryPacks, UnallocatedDiskInAPack_IsListedTwice) {
    machine::Pc facts;
    facts.packs = {{"odd", 1, false}};
    facts.disks = {EmptyDisk(0)};
    facts.disks[0].unallocated = true;
    facts.disks[0].pack = "odd";
    ComClient client(facts);
    const ComPtr<IVdsService> service = LoadVds();
    EXPECT_EQ(PackLines(service.Get()), (std::vector<std::string>{"basic: pack odd (1): D0"}));
    EXPECT_EQ(UnallocatedDisks(service.Get()), (std::vector<std::string>{"D0"}));
}

TEST(ProviderProperties, EachProvider_SaysWhetherItsDisksAreDynamic) {
    ComClient client(machine::FactoryMbr());
    const ComPtr<IVdsService> service = LoadVds();
    ComPtr<IEnumVdsObject> providers;
    ASSERT_EQ(service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, providers.Put()), S_OK);
    std::vector<ULONG> flags;
    for (const ComPtr<IUnknown>& provider : AllOf(providers.Get())) {
        const auto described = Ask<IVdsProvider>(provider.Get(), IID_IVdsProvider);
        EXPECT_EQ(described->GetProperties(nullptr), E_POINTER);
        VDS_PROVIDER_PROP properties = {};
        EXPECT_EQ(described->GetProperties(&properties), S_OK);
        EXPECT_EQ(properties.type, VDS_PT_SOFTWARE);
        EXPECT_EQ(client.OnLoan()["VDS_PROVIDER_PROP string"], 2);
        flags.push_back(properties.ulFlags);
        CoTaskMemFree(properties.pwszName);
        CoTaskMemFree(properties.pwszVersion);
    }
    EXPECT_THAT(flags, testing::ElementsAre(0u, VDS_PF_DYNAMIC));
}

TEST(PackProperties, NamedPack_CallerFreesTheName) {
    machine::Pc facts;
    facts.packs = {{"pair", 1, false}};
    ComClient client(facts);
    const ComPtr<IVdsService> service = LoadVds();
    ComPtr<IEnumVdsObject> providers;
    ASSERT_EQ(service->QueryProviders(1, providers.Put()), S_OK);
    ComPtr<IEnumVdsObject> packs;
    ASSERT_EQ(
        Ask<IVdsSwProvider>(AllOf(providers.Get())[0].Get(), IID_IVdsSwProvider)->QueryPacks(packs.Put()),
        S_OK);
    const ComPtr<IVdsPack> pack = Ask<IVdsPack>(AllOf(packs.Get()).at(0).Get(), IID_IVdsPack);
    VDS_PACK_PROP properties{};
    ASSERT_EQ(pack->GetProperties(&properties), S_OK);
    EXPECT_EQ(ToUtf8(properties.pwszName), "pair");
    EXPECT_FALSE(properties.id == GUID_NULL);
    EXPECT_EQ(client.OnLoan()["VDS_PACK_PROP name"], 1);
    CoTaskMemFree(properties.pwszName);
    EXPECT_EQ(client.OnLoan().count("VDS_PACK_PROP name"), 0u);
    EXPECT_EQ(pack->GetProperties(nullptr), E_POINTER);
    EXPECT_EQ(pack->QueryDisks(nullptr), E_POINTER);
}

TEST(GetObject, IdOfDiskOrVolume_ReturnsItsObject) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID disk = DiskId(client.service.Get(), "\\\\?\\PhysicalDrive0");
    const VDS_OBJECT_ID volume = client.VolumeId(2);
    ComPtr<IUnknown> found;
    EXPECT_EQ(client.service->GetObject(volume, VDS_OT_VOLUME, found.Put()), S_OK);
    EXPECT_NE(Ask<IVdsVolumeMF>(found.Get(), IID_IVdsVolumeMF).Get(), nullptr);
    EXPECT_EQ(OpenDisk<IVdsDisk>(client.service.Get(), disk, IID_IVdsDisk).Get(), client.disk.Get());
}

TEST(GetObject, UnknownIdOrType_Fails) {
    DiskClient client(machine::FactoryMbr());
    const VDS_OBJECT_ID disk = DiskId(client.service.Get(), "\\\\?\\PhysicalDrive0");
    IUnknown* none = client.disk.Get();
    EXPECT_EQ(client.service->GetObject(disk, VDS_OT_VOLUME, &none), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(client.service->GetObject(GUID_NULL, VDS_OT_DISK, &none), VDS_E_OBJECT_NOT_FOUND);
    EXPECT_EQ(client.service->GetObject(disk, VDS_OT_PROVIDER, &none), VDS_E_INVALID_OBJECT_TYPE);
    EXPECT_EQ(client.service->GetObject(disk, VDS_OT_DISK, nullptr), E_POINTER);
    client.pc.facts.disks.clear();
    EXPECT_EQ(client.service->GetObject(disk, VDS_OT_DISK, &none), VDS_E_OBJECT_NOT_FOUND);
}
