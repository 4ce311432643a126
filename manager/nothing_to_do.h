// The records with which a switch of the active partition says that there was nothing to do; its result is
// that of a switch that was made.
#pragma once

#include "platform/windows_api.h"

inline constexpr const WCHAR* recoveryWasActive =
    TEXT("Kestova::SetRcvprtActive\tGetActivePartitionNumber PartitionNumber is 1. 0");
inline constexpr const WCHAR* systemWasActive =
    TEXT("Kestova::SetSystemActive\t\tPartitionNumber is not 1. 0");
