// Controllers above a disk, as the WMI associations name them.
#pragma once

#include "device/disk_drive.h"

// The key's value in an object path: `\\PC\root\cimv2:Win32_IDEController.DeviceID="PCI\\VEN_8086"` gives
// `PCI\VEN_8086`. A path without "=" comes back whole; quotes are removed and doubled backslashes halved in
// any case.
WideString ExtractPathValue(const WideString& objectPath);

// The top-most controller above a device: follows the links from dependent to antecedent, ids compared
// without regard to case. Empty when no link names the device. Links in a circle end the climb after as many
// steps as there are links.
WideString FindTopController(const WideString& deviceId, const tagControllerLinkTable_t& links);
