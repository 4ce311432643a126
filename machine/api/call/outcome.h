// The result of calls that return TRUE, or FALSE with a last error.
#pragma once

#include "machine/api/call/call.h"

namespace machine {

// TRUE for 0, leaving the last error unchanged; FALSE for an error code, which becomes the last error.
inline BOOL Outcome(EmulatedPc& pc, uint32_t error) {
    return error == ERROR_SUCCESS ? TRUE : Failure<BOOL>(pc, FailsWith::FalseAndLastError, error);
}

}  // namespace machine
