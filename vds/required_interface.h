// Interfaces that the Virtual Disk Service must return with a success.
#pragma once

#include "platform/windows_api.h"

// The result of a call that returns an interface: E_INVALIDARG for S_OK without one. Every other code is
// unchanged, including S_FALSE, which is a failure here.
inline HRESULT RequireInterface(HRESULT hResult, const void* handedOut) {
    return hResult == S_OK && handedOut == nullptr ? E_INVALIDARG : hResult;
}
