// printf-style formatting of wide text. The toolchains disagree on what %s and %c mean in their wide
// functions, and Linux has no such functions for 16-bit units. Here both mean wide text and a wide unit on
// every build.
#pragma once

#include <cstdarg>

#include "base/wide_string.h"

// Formats with %d, %u, %c, %s and %%; a null %s is written "(null)". Returns the length of the whole text in
// units, and writes at most capacity - 1 of them, terminated, into the buffer. A null buffer only counts.
size_t FormatBounded(WCHAR* buffer, size_t capacity, const WCHAR* format, va_list arguments);

// The same with the arguments in place, for device paths and file names in buffers of fixed size; a longer
// text is truncated.
size_t FormatInto(WCHAR* buffer, size_t capacity, const WCHAR* format, ...);
