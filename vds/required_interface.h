// What the Virtual Disk Service hands out is there, or the call failed.
#pragma once

#include "platform/windows_api.h"

// The result of a call that hands out an interface: E_INVALIDARG for S_OK without one. Every other code stays
// as it is, S_FALSE included, which is a failure here.
inline HRESULT RequireInterface(HRESULT hResult, const void* handedOut) {
    return hResult == S_OK && handedOut == nullptr ? E_INVALIDARG : hResult;
}
