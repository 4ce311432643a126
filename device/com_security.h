// COM security of the process, which the Virtual Disk Service and WMI both require.
#pragma once

#include "platform/windows_api.h"

// Sets it. The code of CoInitializeSecurity, but S_OK if security is set already (RPC_E_TOO_LATE). Writes no
// record.
HRESULT InitializeComSecurity();
