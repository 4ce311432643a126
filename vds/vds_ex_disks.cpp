// The list of all disks: the unallocated ones, then those of the online packs.
#include <cstdlib>

#include "base/owners.h"
#include "vds/required_interface.h"
#include "vds/service_check.h"
#include "vds/vds_ex.h"

namespace {

constexpr ServiceTexts serviceTexts = {
    .level = LOG_LEVEL_ERROR,
    .missing = {TEXT("Kestova CVDSEx::QueryDisks\tNULL == pVdsService")},
    .notReady = {TEXT("Kestova CVDSEx::QueryDisks\tIsServiceReady  S_OK != hResult. hResult = "),
                 LoggedCodes::ResultAndLastError},
};

constexpr FailureText unallocatedFailed = {
    TEXT("Kestova CVDSEx::QueryDisks\tQueryUnallocatedDisks  S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

constexpr FailureText providersFailed = {
    TEXT("Kestova CVDSEx::QueryDisks QueryProviders S_OK != hResult. hResult = "),
    LoggedCodes::ResultAndLastError};

// What is written if a disk cannot be read.
struct DiskTexts {
    FailureText queryInterface;
    FailureText getProperties;
};

constexpr DiskTexts unallocatedDisk = {
    .queryInterface = {TEXT("Kestova CVDSEx::QueryDisks QueryInterface S_OK != hResult. hResult = "),
                       LoggedCodes::ResultAndLastError},
    .getProperties = {TEXT("Kestova CVDSEx::QueryDisks GetProperties S_OK != hResult. hResult = "),
                      LoggedCodes::ResultAndLastError},
};

constexpr DiskTexts diskOfPack = {};  // nothing

// The array that the caller receives, on the C heap.
struct DiskArray {
    VDS_DISK_PROP* disks = nullptr;
    LONG count = 0;

    // False without memory for one more; the array is unchanged then.
    bool Append(const VDS_DISK_PROP& disk) {
        const size_t size = (static_cast<size_t>(count) + 1) * sizeof(VDS_DISK_PROP);
        void* const grown = std::realloc(disks, size);
        if (grown == nullptr) return false;
        disks = static_cast<VDS_DISK_PROP*>(grown);
        disks[count++] = disk;
        return true;
    }
};

// An interface of a listed object; a success without one is a failure too.
template <typename Interface>
HRESULT QueryObject(IUnknown& object, const IID& interfaceId, ComPtr<Interface>& result) {
    const HRESULT hResult = object.QueryInterface(interfaceId, reinterpret_cast<void**>(result.Put()));
    return RequireInterface(hResult, result.Get());
}

// The next object of a list; empty at its end and after a failure.
ComPtr<IUnknown> Next(ComPtr<IEnumVdsObject>& list) {
    ComPtr<IUnknown> object;
    ULONG fetched = 0;
    if (!list || list->Next(1, object.Put(), &fetched) != S_OK || fetched != 1) object.Reset();
    return object;
}

bool AppendDisk(IUnknown& object, const DiskTexts& texts, DiskArray& array) {
    ComPtr<IVdsDisk> disk;
    HRESULT hResult = QueryObject(object, IID_IVdsDisk, disk);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, texts.queryInterface, hResult);
        return false;
    }
    VDS_DISK_PROP properties = {};
    hResult = disk->GetProperties(&properties);
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, texts.getProperties, hResult);
        return false;
    }
    return array.Append(properties);
}

// Appends a list of disks up to the first that cannot be read.
void AppendDisks(ComPtr<IEnumVdsObject>& list, const DiskTexts& texts, DiskArray& array) {
    for (ComPtr<IUnknown> object = Next(list); object; object = Next(list)) {
        if (!AppendDisk(*object.Get(), texts, array)) break;
    }
}

// Appends the disks of an online pack. False if the pack cannot be read: the provider's remaining packs are
// skipped then.
bool AppendPack(IUnknown& object, DiskArray& array) {
    ComPtr<IVdsPack> pack;
    if (QueryObject(object, IID_IVdsPack, pack) != S_OK) return false;
    VDS_PACK_PROP properties = {};
    const HRESULT hResult = pack->GetProperties(&properties);
    CoTaskMemFree(properties.pwszName);
    if (hResult != S_OK) return false;
    if (properties.status != VDS_PS_ONLINE) return true;
    ComPtr<IEnumVdsObject> disks;
    if (pack->QueryDisks(disks.Put()) != S_OK) return false;
    AppendDisks(disks, diskOfPack, array);
    return true;
}

// Appends the disks of a provider. False if the provider cannot be read: the remaining providers are skipped
// then.
bool AppendProvider(IUnknown& object, DiskArray& array) {
    ComPtr<IVdsSwProvider> provider;
    if (QueryObject(object, IID_IVdsSwProvider, provider) != S_OK) return false;
    ComPtr<IEnumVdsObject> packs;
    if (provider->QueryPacks(packs.Put()) != S_OK) return false;
    for (ComPtr<IUnknown> pack = Next(packs); pack; pack = Next(packs)) {
        if (!AppendPack(*pack.Get(), array)) break;
    }
    return true;
}

}  // namespace

HRESULT CVDSEx::QueryDisks(IVdsService* service, VDS_DISK_PROP** disks, LONG* count) {
    LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova CVDSEx::QueryDisks\tStart"));
    HRESULT hResult = CheckService(service, serviceTexts);
    if (hResult != S_OK) return hResult;

    ComPtr<IEnumVdsObject> unallocated;
    hResult = service->QueryUnallocatedDisks(unallocated.Put());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, unallocatedFailed, hResult);
        return hResult;
    }
    DiskArray array;
    AppendDisks(unallocated, unallocatedDisk, array);
    *disks = array.disks;
    *count = array.count;
    unallocated.Reset();

    ComPtr<IEnumVdsObject> providers;
    hResult = service->QueryProviders(VDS_QUERY_SOFTWARE_PROVIDERS, providers.Put());
    if (hResult != S_OK) {
        LogFailure(LOG_LEVEL_ERROR, providersFailed, hResult);
        std::free(array.disks);  // the caller's pointer is dangling from here on
        return hResult;
    }
    for (ComPtr<IUnknown> provider = Next(providers); provider; provider = Next(providers)) {
        if (!AppendProvider(*provider.Get(), array)) break;
    }
    *disks = array.disks;
    *count = array.count;
    return S_OK;
}
