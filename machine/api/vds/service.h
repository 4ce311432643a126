// The Virtual Disk Service: its providers, and its objects by id.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds_uncalled.h"

namespace machine {

// Ready from the start; a fault plan makes the service fail.
class VdsService final : public ComObject, public ComInterface<Uncalled<IVdsService>> {
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
};

}  // namespace machine
