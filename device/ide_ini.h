// IDE.INI, the site's word on controllers: sections of keys DeviceID1, DeviceID2, ... without gaps, each the
// beginning of a controller's PNP device id.
#pragma once

#include "base/wide_string.h"
#include "platform/windows_api.h"

// Where IDE.INI is looked for: the folder of the host process's executable, also when its file name
// does not fit into 260 units. Empty when the platform does not tell it. Rests on GetModuleFileNameW.
WideString IdeIniPath();

// The number of the first key of the section whose value the controller id begins with, without regard to
// case; 0 when none does. Reading ends at the first missing or empty key. Values count up to 259 units.
int FindControllerKey(const WCHAR* section, const WideString& controllerId, const WideString& fileName);
