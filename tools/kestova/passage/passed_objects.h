// Objects of the Virtual Disk Service between the library and the service: questions pass, changes do not.
#pragma once

#include "platform/vds.h"
#include "tools/kestova/passage/change_stop.h"

// What a refused change answers: ERROR_CANCELLED as an HRESULT.
inline constexpr HRESULT refusedChange = static_cast<HRESULT>(0x80070000 | ERROR_CANCELLED);

// Puts an object between the caller and *object, whose reference it takes over, and so on with each object
// that it hands out. Its methods that change something tell `stop`, which must outlive it, and answer
// refusedChange; those that the library does not call answer E_NOTIMPL. E_NOINTERFACE for an interface of
// which nothing is known here, and E_OUTOFMEMORY; *object is released and null then.
HRESULT PassThrough(REFIID interfaceId, void** object, ChangeStop& stop);
