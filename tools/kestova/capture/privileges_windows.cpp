#include "platform/windows_api.h"
#include "tools/kestova/capture/privileges.h"

void EnableHivePrivileges() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token)) return;
    for (const WCHAR* const name : {TEXT("SeBackupPrivilege"), TEXT("SeRestorePrivilege")}) {
        TOKEN_PRIVILEGES privileges = {};
        privileges.PrivilegeCount = 1;
        privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
        if (LookupPrivilegeValueW(nullptr, name, &privileges.Privileges[0].Luid))
            AdjustTokenPrivileges(token, FALSE, &privileges, 0, nullptr, nullptr);
    }
    CloseHandle(token);
}
