// The result of calls that answer TRUE, or FALSE and a last error.
#pragma once

#include "machine/api/call/call.h"

namespace machine {

// TRUE for 0, and the last error stays as it was; FALSE for an error code, which becomes the last error.
inline BOOL Outcome(EmulatedPc& pc, uint32_t error) {
    return error == ERROR_SUCCESS ? TRUE : Failure<BOOL>(pc, FailsWith::FalseAndLastError, error);
}

}  // namespace machine
