// The platform's wide text: 16-bit units on every build, compared and folded as in the C locale. What is
// compared here (device ids, labels, markers) is ASCII.
#pragma once

#include <string>

#include "platform/windows_api.h"

using WideString = std::basic_string<WCHAR>;

// The text with 'a' to 'z' folded to 'A' to 'Z'; every other unit is unchanged.
WideString UpperCase(WideString text);

// Whether two texts are equal once folded. Neither may be null.
bool EqualIgnoringCase(const WCHAR* left, const WCHAR* right);

// Copies at most capacity - 1 units of the text into the buffer and terminates it. A capacity of 0 writes
// nothing.
void CopyBounded(WCHAR* buffer, size_t capacity, const WCHAR* text);
