// The platform's error codes that an image returns. Defined separately, because the headers of the
// file-system libraries clash with the platform's.
#pragma once

#include <cstdint>

namespace machine {

inline constexpr uint32_t errorFileNotFound = 2;
inline constexpr uint32_t errorPathNotFound = 3;
inline constexpr uint32_t errorAccessDenied = 5;
inline constexpr uint32_t errorWriteProtect = 19;
inline constexpr uint32_t errorInvalidParameter = 87;
inline constexpr uint32_t errorDiskFull = 112;
inline constexpr uint32_t errorInvalidName = 123;
inline constexpr uint32_t errorBadHive = 1009;
inline constexpr uint32_t errorIoDevice = 1117;
inline constexpr uint32_t errorFileCorrupt = 1392;

}  // namespace machine
