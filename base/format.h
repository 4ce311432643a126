// printf-style formatting of wide text. The toolchains disagree on what %s and %c mean in their wide
// functions and Linux has none for 16-bit units; here they mean wide text and a wide unit everywhere.
#pragma once

#include <cstdarg>

#include "base/wide_string.h"

// Formats with %d, %u, %c, %s and %%; a null %s writes "(null)". Returns how many units the whole text has,
// and writes at most capacity - 1 of them, terminated, into the buffer. A null buffer only counts.
size_t FormatBounded(WCHAR* buffer, size_t capacity, const WCHAR* format, va_list arguments);

// The same into a buffer of fixed size, for device paths and file names; a longer text is cut.
size_t FormatInto(WCHAR* buffer, size_t capacity, const WCHAR* format, ...);
