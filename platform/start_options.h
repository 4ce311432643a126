// The boot options of the running system, which the registry has as one text.
#pragma once

#include "platform/windows_api.h"

// A key of HKEY_LOCAL_MACHINE, and its value.
inline constexpr const WCHAR* startOptionsKey = TEXT("SYSTEM\\CurrentControlSet\\Control");
inline constexpr const WCHAR* startOptionsValue = TEXT("SystemStartOptions");

// Contained in the options of Windows PE, in either case, and of no other system.
inline constexpr const WCHAR* windowsPeOption = TEXT("MININT");
