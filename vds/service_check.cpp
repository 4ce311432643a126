#include "vds/service_check.h"

HRESULT CheckService(IVdsService* service, const ServiceTexts& texts) {
    if (service == nullptr) return LogFailure(texts.level, texts.missing, E_INVALIDARG);
    const HRESULT hResult = service->IsServiceReady();
    if (hResult != S_OK) LogFailure(texts.level, texts.notReady, hResult);
    return hResult;
}
