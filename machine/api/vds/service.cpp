#include "machine/api/vds/service.h"

#include "machine/api/vds/disk.h"
#include "machine/api/vds/enumerator.h"
#include "machine/api/vds/loader.h"
#include "machine/api/vds/objects.h"
#include "machine/api/vds/pack.h"
#include "machine/api/vds/volume.h"

namespace machine {

HRESULT VdsServiceLoader::LoadService(LPWSTR machineName, IVdsService** service) {
    Empty(service);
    const std::string name = ToUtf8(machineName);
    return Call("IVdsServiceLoader::LoadService", {name}, [&](EmulatedPc& pc) {
        if (service == nullptr) return E_POINTER;
        if (!name.empty()) return HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE);
        return HandOut<IVdsService>(VdsObjects::Of(pc).Service(pc), service);
    });
}

HRESULT VdsService::IsServiceReady() {
    return Call("IVdsService::IsServiceReady", {}, [](EmulatedPc&) { return S_OK; });
}

HRESULT VdsService::WaitForServiceReady() {
    return Call("IVdsService::WaitForServiceReady", {}, [](EmulatedPc&) { return S_OK; });
}

HRESULT VdsService::QueryProviders(DWORD masks, IEnumVdsObject** enumerator) {
    constexpr DWORD allKinds =
        VDS_QUERY_SOFTWARE_PROVIDERS | VDS_QUERY_HARDWARE_PROVIDERS | VDS_QUERY_VIRTUALDISK_PROVIDERS;
    Empty(enumerator);
    return Call("IVdsService::QueryProviders", {Hex(masks)}, [&](EmulatedPc& pc) {
        if ((masks & ~allKinds) != 0) return VDS_E_INVALID_QUERY_PROVIDER_FLAG;
        std::vector<ComObject*> providers;
        if ((masks & VDS_QUERY_SOFTWARE_PROVIDERS) != 0) {
            providers = {&VdsObjects::Of(pc).Provider(pc, false), &VdsObjects::Of(pc).Provider(pc, true)};
        }
        return HandOutList(pc, std::move(providers), enumerator);
    });
}

HRESULT VdsService::QueryUnallocatedDisks(IEnumVdsObject** enumerator) {
    Empty(enumerator);
    return Call("IVdsService::QueryUnallocatedDisks", {}, [&](EmulatedPc& pc) {
        std::vector<ComObject*> disks;
        for (const Disk& disk : pc.facts.disks) {
            if (disk.unallocated) disks.push_back(&VdsObjects::Of(pc).DiskObject(pc, disk.number));
        }
        return HandOutList(pc, std::move(disks), enumerator);
    });
}

HRESULT VdsService::GetObject(VDS_OBJECT_ID id, VDS_OBJECT_TYPE type, IUnknown** object) {
    Empty(object);
    return Call("IVdsService::GetObject", {GuidText(id), std::to_string(type)}, [&](EmulatedPc& pc) {
        if (object == nullptr) return E_POINTER;
        const VdsObjects& objects = VdsObjects::Of(pc);
        ComObject* found = nullptr;
        switch (type) {
            case VDS_OT_DISK:
                found = objects.FindDisk(pc.facts, id);
                break;
            case VDS_OT_VOLUME:
                found = objects.FindVolume(id);
                break;
            default:
                return VDS_E_INVALID_OBJECT_TYPE;
        }
        if (found == nullptr) return VDS_E_OBJECT_NOT_FOUND;
        *object = found->Take(IID_IUnknown);
        return S_OK;
    });
}

}  // namespace machine
