// Opening the connection to the service.
#include "vds/vds_ex.h"

#include "base/owners.h"
#include "device/com_security.h"
#include "vds/required_interface.h"

HRESULT CVDSEx::InitializeSecurity() {
    return InitializeComSecurity();
}

HRESULT CVDSEx::GetVdsService(IVdsService** service) {
    *service = nullptr;
    ComPtr<IVdsServiceLoader> loader;
    HRESULT hResult = CoCreateInstance(CLSID_VdsLoader, nullptr, CLSCTX_LOCAL_SERVER, IID_IVdsServiceLoader,
                                       reinterpret_cast<void**>(loader.Put()));
    hResult = RequireInterface(hResult, loader.Get());
    if (hResult != S_OK) return hResult;
    hResult = loader->LoadService(nullptr, service);
    loader.Reset();
    hResult = RequireInterface(hResult, *service);
    if (hResult != S_OK) return hResult;
    hResult = (*service)->WaitForServiceReady();
    return hResult == S_OK ? (*service)->IsServiceReady() : hResult;
}
