// Drive letters: 'A' to 'Z', and the value that stands for none.
#pragma once

#include "platform/windows_api.h"

// No drive letter, in every result, argument and record.
inline constexpr WCHAR noLetter = TEXT('0');
