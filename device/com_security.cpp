#include "device/com_security.h"

HRESULT InitializeComSecurity() {
    const HRESULT result = CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                                RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    return result == RPC_E_TOO_LATE ? S_OK : result;
}
