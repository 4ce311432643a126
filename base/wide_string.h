// Wide text as the platform has it: 16-bit units on every build, compared and folded as the C locale does
// (the names compared here, device ids, labels and markers, are ASCII).
#pragma once

#include <string>

#include "platform/windows_api.h"

using WideString = std::basic_string<WCHAR>;

// The text with 'a' to 'z' folded to 'A' to 'Z'; every other unit stays.
WideString UpperCase(WideString text);

// Whether the two texts are the same when 'a' to 'z' are folded. Neither may be null.
bool EqualIgnoringCase(const WCHAR* left, const WCHAR* right);

// Copies at most capacity - 1 units of the text into the buffer and terminates it. A capacity of 0 writes
// nothing.
void CopyBounded(WCHAR* buffer, size_t capacity, const WCHAR* text);
