// The records of Kestova::GetWinDriveLetters that give the reason of a failure, which its result does not. A
// program that reports the reason finds it by these texts.
#pragma once

#include "platform/windows_api.h"

// The key of HKEY_LOCAL_MACHINE in which the registry of the installed Windows is loaded meanwhile.
inline constexpr const WCHAR* installedWindowsHive = TEXT("TEMSYSTEM");

inline constexpr const WCHAR* runningSystemNotRead =
    TEXT("Kestova::GetWinDriveLetters\t\tRead WINPE Registry fail.");
inline constexpr const WCHAR* installedWindowsNotLoaded =
    TEXT("Kestova::GetWinDriveLetters\t\tLoad Windows Registry failed.");
inline constexpr const WCHAR* installedWindowsNotRead =
    TEXT("Kestova::GetWinDriveLetters Read WINDOWS Registry fail.");
inline constexpr const WCHAR* installedWindowsNotUnloaded =
    TEXT("Kestova::GetWinDriveLetters\t\tUnload Windows Registry failed.");
