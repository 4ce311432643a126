// Where this process writes its log, and how much.
#pragma once

#include <string>

#include "platform/windows_api.h"

// The full path of the log file: the variable KESTOVA_LOG; in an elevated process of the installed Windows,
// in whose environment an unprivileged user may write, the value "Log" below HKLM\SOFTWARE\Kestova in its
// place. Without that, or if the value is no full path: Kestova.log beside the program.
std::basic_string<WCHAR> LogFilePath();

// The highest level that is written, from the variable KESTOVA_LOG_LEVEL (HighestLevel).
int HighestLogLevel();
