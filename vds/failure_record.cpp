#include "vds/failure_record.h"

void LogFailure(int level, const FailureText& failure, HRESULT hResult, DWORD lastError) {
    if (failure.text == nullptr) return;
    switch (failure.codes) {
        case LoggedCodes::None:
            LogRecord(level).Text(failure.text);
            break;
        case LoggedCodes::Result:
            LogRecord(level).Text(failure.text).Long(hResult);
            break;
        case LoggedCodes::LastError:
            LogRecord(level).Text(failure.text).ULong(lastError);
            break;
        case LoggedCodes::ResultAndLastError:
            LogRecord(level).Text(failure.text).Long(hResult).Text(TEXT(" GetLastError = ")).ULong(lastError);
            break;
    }
}

HRESULT CheckService(IVdsService* service, const ServiceTexts& texts) {
    if (service == nullptr) {
        LogFailure(texts.level, texts.missing, E_INVALIDARG, GetLastError());
        return E_INVALIDARG;
    }
    const HRESULT hResult = service->IsServiceReady();
    if (hResult != S_OK) LogFailure(texts.level, texts.notReady, hResult, GetLastError());
    return hResult;
}
