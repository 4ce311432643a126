// scanf-style parsing of numbers in wide text, with the results of the platform's C runtime.
#pragma once

#include <initializer_list>

#include "platform/windows_api.h"

// Matches the text against a format of literal units (case-sensitive), blanks (any run of blanks) and %d.
// Returns -1 if the text ends before the first number, else how many numbers were stored. Of a number that
// needs more than 32 bits the low 32 are stored; after a mismatch the remaining outputs are unchanged.
int ScanNumbers(const WCHAR* text, const WCHAR* format, std::initializer_list<int*> numbers);
