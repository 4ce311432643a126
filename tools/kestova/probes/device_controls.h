// The controls of volumes and disks.
#pragma once

#include "platform/windows_api.h"
#include "tools/kestova/probes/probes.h"

// Asks the device each control that only reads, with output buffers of several sizes, the exact one among
// them. `name` is what the arguments show for the handle.
void ProbeControls(Probes& probes, const std::string& name, HANDLE device);
