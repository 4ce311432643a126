// scanf-style reading of numbers out of wide text, with the results of the platform's C runtime.
#pragma once

#include <initializer_list>

#include "platform/windows_api.h"

// Reads the text against a format of literal units (case counts), blanks (any run of blanks) and %d. Answers
// how many numbers were stored, or -1 when the text ended before the first. A number that needs more than 32
// bits keeps its low 32; on a mismatch the remaining outputs stay as they were.
int ScanNumbers(const WCHAR* text, const WCHAR* format, std::initializer_list<int*> numbers);
