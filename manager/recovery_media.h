// The kinds of recovery media, and what identifies them.
#pragma once

#include "platform/windows_api.h"

// The kind that a volume is tested for; with any other value neither the drive type nor the flags are tested.
enum : int { TYPE_HDD = 1, TYPE_DISC = 2, TYPE_UFD = 3 };

// Paths below the root.
namespace recovery_files {

inline constexpr const WCHAR* ini = TEXT("sources\\Qelhdrcv.ini");
inline constexpr const WCHAR* sources = TEXT("sources");
inline constexpr const WCHAR* orvo = TEXT("sources\\Orvo");
inline constexpr const WCHAR* data = TEXT("sources\\data");
inline constexpr const WCHAR* idf = TEXT("sources\\idf");
// What every recovery medium has, in the order in which the class looks for it.
inline constexpr const WCHAR* required[] = {ini, sources, orvo, data, idf};

// Flags of the kind of medium.
inline constexpr const WCHAR* disc = TEXT("sources\\DVD");
inline constexpr const WCHAR* stick = TEXT("sources\\UFD");

}  // namespace recovery_files
