// IDE.INI, which steers the choice of the internal disk by controller: sections of keys DeviceID1, DeviceID2,
// ... without gaps, each with the beginning of a controller's PNP device id.
#pragma once

#include "base/wide_string.h"
#include "platform/windows_api.h"

// The path of IDE.INI: in the folder of the host application's executable, even if its file name does not fit
// into 260 units. Empty if GetModuleFileNameW fails.
WideString IdeIniPath();

// The number of the first key in the section whose value is a prefix of the controller id, ignoring case; 0
// if there is none. The search ends at the first missing or empty key. Values are truncated to 259 units.
int FindControllerKey(const WCHAR* section, const WideString& controllerId, const WideString& fileName);
