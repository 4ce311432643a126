// The Virtual Disk Service: its providers, and its objects by id.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds.h"

namespace machine {

// Ready from the start; a fault plan makes the service fail. Methods without a comment return
// VDS_E_NOT_SUPPORTED.
class VdsService final : public ComObject, public ComInterface<IVdsService> {
  public:
    VdsService() : ComInterface(*this, IID_IVdsService, "IVdsService") {}

    HRESULT STDMETHODCALLTYPE IsServiceReady() override;
    HRESULT STDMETHODCALLTYPE WaitForServiceReady() override;
    // The software providers, basic and dynamic; none if the mask lacks their bit.
    // VDS_E_INVALID_QUERY_PROVIDER_FLAG: the mask has unknown bits.
    HRESULT STDMETHODCALLTYPE QueryProviders(DWORD masks, IEnumVdsObject** enumerator) override;
    HRESULT STDMETHODCALLTYPE QueryUnallocatedDisks(IEnumVdsObject** enumerator) override;
    // VDS_E_OBJECT_NOT_FOUND: no disk or volume has the id; VDS_E_INVALID_OBJECT_TYPE: any other type of
    // object. The caller releases the object.
    HRESULT STDMETHODCALLTYPE GetObject(VDS_OBJECT_ID id, VDS_OBJECT_TYPE type, IUnknown** object) override;

    HRESULT STDMETHODCALLTYPE GetProperties(VDS_SERVICE_PROP*) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryMaskedDisks(IEnumVdsObject**) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE QueryDriveLetters(WCHAR, DWORD, VDS_DRIVE_LETTER_PROP*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE QueryFileSystemTypes(VDS_FILE_SYSTEM_TYPE_PROP**, LONG*) override {
        return VDS_E_NOT_SUPPORTED;
    }
    HRESULT STDMETHODCALLTYPE Reenumerate() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Refresh() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE CleanupObsoleteMountPoints() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Advise(IVdsAdviseSink*, DWORD*) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE Reboot() override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE SetFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
    HRESULT STDMETHODCALLTYPE ClearFlags(ULONG) override { return VDS_E_NOT_SUPPORTED; }
};

}  // namespace machine
