// The device controls that the emulated PC answers, one row each.
#pragma once

#include <span>

#include "machine/api/handles/file_handles.h"

namespace machine {

// One DeviceIoControl: what it is about and the caller's buffers.
struct DeviceRequest {
    EmulatedPc& pc;
    LocatedVolume device;  // a physical disk has no volume and no partition
    std::span<const char> input;
    std::span<char> output;
    DWORD returned = 0;  // bytes of the output that were filled
};

struct DeviceControl {
    DWORD code;
    const char* name;
    // 0 or an error code; `returned` counts also for ERROR_MORE_DATA.
    uint32_t (*answer)(DeviceRequest& request);
};

// The row of that code, or null.
const DeviceControl* FindDeviceControl(DWORD code);

}  // namespace machine
