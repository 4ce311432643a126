// The maker's layouts: the number of each partition that is fixed, on the first internal disk.
#pragma once

#include "base/drive_letter.h"

inline constexpr int noDisk = -1;
inline constexpr int noPartition = -1;

// MBR disks.
namespace mbr_layout {

inline constexpr int recovery = 1;  // recovery media; hidden by its MBR ID
// The system that starts by default: Windows, or "System Reserved" before it.
inline constexpr int system = 2;
inline constexpr int windowsAfterSystemReserved = 3;  // Windows where partition 2 holds only its boot files

}  // namespace mbr_layout

// GPT disks. The recovery partition has no fixed number: its type and its contents identify it.
namespace gpt_layout {

inline constexpr int makersBoot = 1;         // of the maker's boot type
inline constexpr int windowsRe = 2;          // of the Windows recovery type, with the Windows RE files
inline constexpr int efiSystem = 3;          // of the EFI system type
inline constexpr int windows = 5;            // Windows where partition 3 is the EFI system partition
inline constexpr int windowsWithoutEfi = 3;  // Windows where it is not

}  // namespace gpt_layout
