// Whether the firmware is UEFI or BIOS.

#include "diag/log_record.h"
#include "diag/module.h"
#include "manager/guard.h"
#include "manager/kestova.h"
#include "platform/windows_api.h"

int Kestova::IsEFIBootSystem() {
    return Guarded(ending::IsEFIBootSystem, [&] {
        ModuleContext context;
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsEFIBootSystem\t\tStart"));
        // No firmware has a variable without a name: UEFI rejects it; on BIOS the function is not supported.
        char value[1000];
        const DWORD length = GetFirmwareEnvironmentVariableW(
            TEXT(""), TEXT("{00000000-0000-0000-0000-000000000000}"), value, sizeof value);
        const DWORD error = length == 0 ? GetLastError() : ERROR_SUCCESS;
        if (length == 0 && error != ERROR_NOACCESS) {
            const WideString code = StringFormat(TEXT("GetLastError = %d"), error);
            LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsEFIBootSystem\t")).String(code);
        }
        LogRecord(LOG_LEVEL_TRACE).Text(TEXT("Kestova::IsEFIBootSystem\t\tEnd"));
        return error == ERROR_NOACCESS;
    });
}
