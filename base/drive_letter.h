// Drive letters: 'A' to 'Z', or '0' for none.
#pragma once

#include "platform/windows_api.h"

// No drive letter, in every result, argument and record.
inline constexpr WCHAR noLetter = TEXT('0');
