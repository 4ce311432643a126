// Disks and volumes by id: one lookup for the four operations, with the differences as data.
#include "base/owners.h"
#include "vds/required_interface.h"
#include "vds/service_check.h"
#include "vds/vds_ex.h"

namespace {

struct Lookup {
    VDS_OBJECT_TYPE type;
    const IID& interfaceId;
    const WCHAR* start = nullptr;  // a null text writes no record
    ServiceTexts service = {};     // its level is that of every failure of the operation
    FailureText getObject = {};
    FailureText queryInterface = {};
    const WCHAR* end = nullptr;
};

// Failures are recorded at the trace level: the callers write an error record themselves.
constexpr Lookup diskLookup = {
    .type = VDS_OT_DISK,
    .interfaceId = IID_IVdsDisk,
    .start = TEXT("Kestova CVDSEx::GetVdsDisk\tStart"),
    .service = {.level = LOG_LEVEL_TRACE,
                .missing = {TEXT("Kestova CVDSEx::GetVdsDisk\tNULL == pVdsService")},
                .notReady = {TEXT("Kestova CVDSEx::GetVdsDisk  IsServiceReady  S_OK != hResult")}},
    .getObject = {TEXT("Kestova CVDSEx::GetVdsDisk  IsServiceReady  S_OK != hResult. hResult = "),
                  LoggedCodes::ResultAndLastError},
};

constexpr Lookup advancedDiskLookup = {
    .type = VDS_OT_DISK,
    .interfaceId = IID_IVdsAdvancedDisk,
    .start = TEXT("Kestova CVDSEx::GetVdsAdvancedDisk Start"),
    .service =
        {.level = LOG_LEVEL_ERROR,
         .missing = {TEXT("Kestova CVDSEx::GetVdsAdvancedDisk pVdsService is NULL.")},
         .notReady = {TEXT("Kestova CVDSEx::GetVdsAdvancedDisk IsServiceReady S_OK != hResult.hResult = "),
                      LoggedCodes::ResultAndLastError}},
    .getObject = {TEXT(
                      "Kestova CVDSEx::GetVdsAdvancedDisk pVdsService->GetObject S_OK != hResult.hResult = "),
                  LoggedCodes::ResultAndLastError},
    .queryInterface =
        {TEXT("Kestova CVDSEx::GetVdsAdvancedDisk pUnknown->QueryInterface S_OK != hResult.hResult = "),
         LoggedCodes::ResultAndLastError},
    .end = TEXT("Kestova CVDSEx::GetVdsAdvancedDisk End"),
};

constexpr Lookup advancedDisk2Lookup = {.type = VDS_OT_DISK, .interfaceId = IID_IVdsAdvancedDisk2};

constexpr Lookup volumeLookup = {.type = VDS_OT_VOLUME, .interfaceId = IID_IVdsVolumeMF};

void Trace(const WCHAR* text) {
    if (text != nullptr) LogRecord(LOG_LEVEL_TRACE).Text(text);
}

HRESULT LookUp(IVdsService* service, VDS_OBJECT_ID id, const Lookup& lookup, void** result) {
    Trace(lookup.start);
    HRESULT hResult = CheckService(service, lookup.service);
    if (hResult != S_OK) return hResult;
    ComPtr<IUnknown> object;
    hResult = service->GetObject(id, lookup.type, object.Put());
    hResult = RequireInterface(hResult, object.Get());
    if (hResult != S_OK) {
        LogFailure(lookup.service.level, lookup.getObject, hResult);
        return hResult;
    }
    hResult = object->QueryInterface(lookup.interfaceId, result);
    if (hResult != S_OK) {
        LogFailure(lookup.service.level, lookup.queryInterface, hResult);
        return hResult;
    }
    Trace(lookup.end);
    return S_OK;
}

}  // namespace

HRESULT CVDSEx::GetVdsDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsDisk** disk) {
    return LookUp(service, id, diskLookup, reinterpret_cast<void**>(disk));
}

HRESULT CVDSEx::GetVdsAdvancedDisk(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk** disk) {
    return LookUp(service, id, advancedDiskLookup, reinterpret_cast<void**>(disk));
}

HRESULT CVDSEx::GetVdsAdvancedDisk2(IVdsService* service, VDS_OBJECT_ID id, IVdsAdvancedDisk2** disk) {
    return LookUp(service, id, advancedDisk2Lookup, reinterpret_cast<void**>(disk));
}

HRESULT CVDSEx::GetVdsVolumeMF(IVdsService* service, VDS_OBJECT_ID id, IVdsVolumeMF** volume) {
    return LookUp(service, id, volumeLookup, reinterpret_cast<void**>(volume));
}
