// The device controls that the emulated PC supports, one row each.
#pragma once

#include <span>

#include "machine/api/handles/file_handles.h"

namespace machine {

// One DeviceIoControl call: its device and the caller's buffers.
struct DeviceRequest {
    EmulatedPc& pc;
    LocatedVolume device;  // volume and partition are null for a physical disk
    std::span<const char> input;
    std::span<char> output;
    DWORD returned = 0;  // bytes written to the output
};

struct DeviceControl {
    DWORD code;
    const char* name;
    // 0 or an error code; `returned` is also valid with ERROR_MORE_DATA.
    uint32_t (*answer)(DeviceRequest& request);
};

// The row of that code, or null.
const DeviceControl* FindDeviceControl(DWORD code);

}  // namespace machine
