// Objects of the platform in the library's hands.
#pragma once

#include "tools/kestova/recording/tape.h"

namespace recording {

// Puts an object between the library and *object, whose reference it takes over. Returns its number. An
// interface that the library does not know stays as it is, and null is returned.
Tape::Json Pass(REFIID iid, void** object, Tape& tape);

// The object of that number in a replay, with a reference for the library. Throws DamagedRecording for an
// interface that the library does not know.
void* MakeUp(REFIID iid, uint64_t number, Tape& tape);

// The number of one that the library passes; null for null, and "unknown".
Tape::Json NumberOf(const IUnknown* object, const Tape& tape);

// What the platform knows of it.
template <typename Interface>
Interface* OfPlatform(Interface* object, const Tape& tape) {
    const auto known = tape.objects.find(object);
    return known != tape.objects.end() ? static_cast<Interface*>(known->second.platform) : object;
}

// Memory that the library frees with CoTaskMemFree, all zeros.
void* LendMemory(size_t size);
// A text of a recording there, or null for null.
LPWSTR LendText(const Tape::Json& text);

}  // namespace recording
