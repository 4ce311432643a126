// What a record of Kestova::GetWinDriveLetters contains for a location that cannot be read.
#pragma once

inline constexpr int unreadDisk = 255;
inline constexpr int unreadPartition = 0;
