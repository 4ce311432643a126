// The check of the service that every operation begins with. The operations differ only in what they write.
#pragma once

#include "diag/failure_record.h"
#include "platform/vds.h"

// What an operation writes if it cannot use the service.
struct ServiceTexts {
    int level = LOG_LEVEL_ERROR;
    FailureText missing;
    FailureText notReady;
};

// S_OK if there is a service and it is ready. Otherwise E_INVALIDARG or the code of IsServiceReady, after the
// record.
HRESULT CheckService(IVdsService* service, const ServiceTexts& texts);
