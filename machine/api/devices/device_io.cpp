// DeviceIoControl: finds the control and applies it to the device behind the handle.

#include "machine/api/call/outcome.h"
#include "machine/api/devices/device_controls.h"

using namespace machine;

namespace {

uint32_t Perform(EmulatedPc& pc, HANDLE handle, const DeviceControl* control, DeviceRequest& request) {
    const FileHandle* const file = FileHandles::Of(pc).Find(handle);
    if (file == nullptr) return ERROR_INVALID_HANDLE;
    const bool isDevice = file->disk || !file->volume.empty();
    if (control == nullptr || !isDevice) return ERROR_INVALID_FUNCTION;
    request.device = DeviceOf(pc, *file);
    const bool gone = request.device.volume == nullptr && request.device.disk == nullptr;
    return gone ? uint32_t{ERROR_FILE_INVALID} : control->answer(request);
}

}  // namespace

// Error 1 for a control that the device does not support, 6 for a handle that is not open, 87 without a
// pointer for the byte count (overlapped calls are not supported), 1006 for a device that is gone;
// otherwise the result of the control. The byte count is 0 after a failure other than ERROR_MORE_DATA.
extern "C" BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID input, DWORD inputSize,
                                       LPVOID output, DWORD outputSize, LPDWORD returned,
                                       LPOVERLAPPED overlapped) {
    const DeviceControl* const control = FindDeviceControl(code);
    std::vector<std::string> arguments = {NameOf(EmulatedPc::Current(), handle),
                                          control != nullptr ? control->name : Hex(code)};
    NoteUnshown("DeviceIoControl", [&] {
        return Arguments{std::to_string(inputSize), std::to_string(outputSize), Presence(overlapped)};
    });
    if (returned != nullptr) *returned = 0;
    return Answer<BOOL>("DeviceIoControl", std::move(arguments), [&](EmulatedPc& pc) {
        if (returned == nullptr) return Outcome(pc, ERROR_INVALID_PARAMETER);
        DeviceRequest request{.pc = pc,
                              .device = {},
                              .input = {static_cast<const char*>(input), input != nullptr ? inputSize : 0},
                              .output = {static_cast<char*>(output), output != nullptr ? outputSize : 0}};
        const uint32_t error = Perform(pc, handle, control, request);
        *returned = request.returned;
        return Outcome(pc, error);
    });
}
