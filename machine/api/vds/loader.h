// The loader of the Virtual Disk Service.
#pragma once

#include "machine/api/com/object.h"
#include "platform/vds.h"

namespace machine {

class VdsServiceLoader final : public ComObject, public ComInterface<IVdsServiceLoader> {
  public:
    VdsServiceLoader() : ComInterface(*this, IID_IVdsServiceLoader, "IVdsServiceLoader") {}

    // A null or empty name is the local machine; others are unreachable (RPC_S_SERVER_UNAVAILABLE). The
    // caller releases the service.
    HRESULT STDMETHODCALLTYPE LoadService(LPWSTR machineName, IVdsService** service) override;
};

}  // namespace machine
