// The controllers above a disk, from the WMI associations.
#pragma once

#include "device/disk_drive.h"

// The key's value in an object path: `\\PC\root\cimv2:Win32_IDEController.DeviceID="PCI\\VEN_8086"` gives
// `PCI\VEN_8086`. A path without "=" is returned whole. Quotes are removed and doubled backslashes halved
// either way.
WideString ExtractPathValue(const WideString& objectPath);

// The top-most controller above a device: follows the links from dependent to antecedent, comparing ids
// without regard to case. Empty if no link names the device. On a cycle the search ends after as many steps
// as there are links.
WideString FindTopController(const WideString& deviceId, const tagControllerLinkTable_t& links);
