// Firmware variables.

#include <algorithm>

#include "machine/api/call/call.h"

using namespace machine;

namespace {

// A legacy BIOS does not support the call; UEFI firmware rejects an unknown name.
uint32_t FirmwareError(const Firmware& firmware) {
    const uint32_t usual = firmware.kind == FirmwareKind::Uefi ? ERROR_NOACCESS : ERROR_INVALID_FUNCTION;
    return firmware.error.value_or(usual);
}

}  // namespace

// The number of bytes read: if the facts let the firmware answer, every variable is one zero byte.
// Otherwise 0 with the firmware's error; 122 for a short buffer.
extern "C" DWORD WINAPI GetFirmwareEnvironmentVariableW(LPCWSTR name, LPCWSTR space, PVOID buffer,
                                                        DWORD size) {
    std::vector<std::string> arguments = {ToUtf8(name), ToUtf8(space), std::to_string(size)};
    return Answer<DWORD>("GetFirmwareEnvironmentVariableW", std::move(arguments),
                         [&](EmulatedPc& pc) -> DWORD {
                             uint32_t error = FirmwareError(pc.facts.firmware);
                             if (error == ERROR_SUCCESS && (buffer == nullptr || size == 0))
                                 error = ERROR_INSUFFICIENT_BUFFER;
                             if (error != ERROR_SUCCESS)
                                 return Failure<DWORD>(pc, FailsWith::ZeroAndLastError, error);
                             *static_cast<char*>(buffer) = '\0';
                             return 1;
                         });
}
