// Records about failed calls, and the check of the service that stands in front of every operation. The
// operations differ in what they write, not in what they do: the difference is data.
#pragma once

#include "diag/log_record.h"
#include "platform/vds.h"

// Which codes follow the text of a failure record.
enum class LoggedCodes { None, Result, LastError, ResultAndLastError };

// One failure record; without a text nothing is written.
struct FailureText {
    const WCHAR* text = nullptr;
    LoggedCodes codes = LoggedCodes::None;
};

// Writes the record. The caller fetches the last error right after the failed call.
void LogFailure(int level, const FailureText& failure, HRESULT hResult, DWORD lastError);

// What an operation writes when it cannot use the service.
struct ServiceTexts {
    int level = LOG_LEVEL_ERROR;
    FailureText missing;
    FailureText notReady;
};

// S_OK when there is a service and it is ready; otherwise E_INVALIDARG or the code of IsServiceReady, after
// the record.
HRESULT CheckService(IVdsService* service, const ServiceTexts& texts);
