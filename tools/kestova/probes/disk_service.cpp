// The Virtual Disk Service: its providers, their packs, and the disks in them.

#include "base/hexadecimal.h"
#include "tools/kestova/probes/enumerations.h"
#include "tools/kestova/probes/service_disks.h"

namespace {

constexpr GUID unknownId = {0x5d1f3c20, 0x7a4e, 0x4b18, {0x93, 0x6c, 0x2e, 0x55, 0x10, 0x8f, 0xd4, 0x72}};

ComPtr<IVdsService> ProbeLoading(Probes& probes) {
    ComPtr<IVdsServiceLoader> loader;
    CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                     reinterpret_cast<void**>(loader.Put()));
    ComPtr<IVdsService> service;
    if (!loader) return service;
    const HRESULT result = loader->LoadService(nullptr, service.Put());
    probes.Add("IVdsServiceLoader::LoadService", "null",
               HresultWords(result) + ", " + Presence(service.Get()));
    return service;
}

void ProbeReadiness(Probes& probes, IVdsService& service) {
    const HRESULT ready = service.IsServiceReady();
    probes.Add("IVdsService::IsServiceReady", "", HresultWords(ready));
    const HRESULT waited = service.WaitForServiceReady();
    probes.Add("IVdsService::WaitForServiceReady", "", HresultWords(waited));
}

ComPtr<IEnumVdsObject> ProbeProviders(Probes& probes, IVdsService& service, DWORD masks) {
    ComPtr<IEnumVdsObject> list;
    const HRESULT result = service.QueryProviders(masks, list.Put());
    probes.Add("IVdsService::QueryProviders", Hex(masks, 1),
               HresultWords(result) + ", " + Presence(list.Get()));
    return list;
}

void ProbeObject(Probes& probes, IVdsService& service, const GUID& id, VDS_OBJECT_TYPE type) {
    ComPtr<IUnknown> object;
    const HRESULT result = service.GetObject(id, type, object.Put());
    probes.Add("IVdsService::GetObject",
               std::string(id == GUID{} ? "zero" : "an unknown id") + ", type " + std::to_string(type),
               HresultWords(result) + ", " + Presence(object.Get()));
}

void ProbeProperties(Probes& probes, const std::string& name, IUnknown& of) {
    const auto provider =
        ProbeInterface<IVdsProvider>(probes, name, of, "IID_IVdsProvider", IID_IVdsProvider);
    if (!provider) return;
    VDS_PROVIDER_PROP properties = {};
    const HRESULT result = provider->GetProperties(&properties);
    probes.Add("IVdsProvider::GetProperties", name,
               HresultWords(result) + ", id " + Presence(properties.id) + ", type " +
                   std::to_string(properties.type) + ", flags " + Hex(properties.ulFlags, 1));
    CoTaskMemFree(properties.pwszName);
    CoTaskMemFree(properties.pwszVersion);
}

void ProbePack(Probes& probes, const std::string& name, IVdsPack& pack, IVdsService& service) {
    VDS_PACK_PROP properties = {};
    const HRESULT result = pack.GetProperties(&properties);
    probes.Add("IVdsPack::GetProperties", name,
               HresultWords(result) + ", id " + Presence(properties.id) + ", status " +
                   std::to_string(properties.status));
    CoTaskMemFree(properties.pwszName);
    ComPtr<IEnumVdsObject> disks;
    const HRESULT queried = pack.QueryDisks(disks.Put());
    probes.Add("IVdsPack::QueryDisks", name, HresultWords(queried) + ", " + Presence(disks.Get()));
    if (disks) ProbeDisks(probes, "disks of " + name, *disks.Get(), service);
}

void ProbePacks(Probes& probes, const std::string& provider, IVdsSwProvider& of, IVdsService& service) {
    ComPtr<IEnumVdsObject> packs;
    const HRESULT result = of.QueryPacks(packs.Put());
    probes.Add("IVdsSwProvider::QueryPacks", provider, HresultWords(result) + ", " + Presence(packs.Get()));
    if (!packs) return;
    int number = 0;
    for (const ComPtr<IUnknown>& object : ProbeList(probes, "packs of " + provider, *packs.Get())) {
        const std::string name = provider + ", pack " + std::to_string(++number);
        const auto pack = ProbeInterface<IVdsPack>(probes, name, *object.Get(), "IID_IVdsPack", IID_IVdsPack);
        if (pack) ProbePack(probes, name, *pack.Get(), service);
    }
}

}  // namespace

void ProbeDiskService(Probes& probes) {
    const ComPtr<IVdsService> service = ProbeLoading(probes);
    if (!service) return;
    ProbeReadiness(probes, *service.Get());
    for (const DWORD masks : {0x0U, 0x2U, 0x4U, 0x7U, 0x8U, 0xFFFFFFFFU}) {
        const ComPtr<IEnumVdsObject> list = ProbeProviders(probes, *service.Get(), masks);
        if (list) ProbeList(probes, "providers " + Hex(masks, 1), *list.Get());
    }
    for (const VDS_OBJECT_TYPE type :
         {VDS_OT_UNKNOWN, VDS_OT_PROVIDER, VDS_OT_PACK, VDS_OT_VOLUME, VDS_OT_DISK}) {
        ProbeObject(probes, *service.Get(), unknownId, type);
        ProbeObject(probes, *service.Get(), GUID{}, type);
    }
    ComPtr<IEnumVdsObject> unallocated;
    const HRESULT result = service->QueryUnallocatedDisks(unallocated.Put());
    probes.Add("IVdsService::QueryUnallocatedDisks", "",
               HresultWords(result) + ", " + Presence(unallocated.Get()));
    if (unallocated) ProbeDisks(probes, "unallocated disks", *unallocated.Get(), *service.Get());

    const ComPtr<IEnumVdsObject> counted =
        ProbeProviders(probes, *service.Get(), VDS_QUERY_SOFTWARE_PROVIDERS);
    if (counted) ProbeCounts(probes, "providers 0x1", *counted.Get());
    const ComPtr<IEnumVdsObject> list = ProbeProviders(probes, *service.Get(), VDS_QUERY_SOFTWARE_PROVIDERS);
    if (!list) return;
    int number = 0;
    for (const ComPtr<IUnknown>& object : ProbeList(probes, "providers 0x1", *list.Get())) {
        const std::string name = "provider " + std::to_string(++number);
        ProbeProperties(probes, name, *object.Get());
        const auto provider = ProbeInterface<IVdsSwProvider>(probes, name, *object.Get(),
                                                             "IID_IVdsSwProvider", IID_IVdsSwProvider);
        if (provider) ProbePacks(probes, name, *provider.Get(), *service.Get());
    }
}
