// The files and folders by which the recovery library tells what a volume is for.
#pragma once

#include <string_view>

namespace machine {

// Below the root of any volume, folders before what is in them.
inline constexpr std::string_view lookedForFiles[] = {
    "Boot",
    "Boot/BCD",
    "EFI",
    "Orvo",
    "Recovery",
    "SystemVolume.ini",
    "Windows",
    "Windows/System32",
    "Windows/System32/Winload.exe",
    "Windows/System32/config/SYSTEM",
    "bootmgr",
    "bootmgr.efi",
    "sources",
    "sources/Autorun",
    "sources/DVD",
    "sources/HDD",
    "sources/Orvo",
    "sources/Qelhdrcv.ini",
    "sources/UFD",
    "sources/boot.wim",
    "sources/data",
    "sources/idf",
};

// Those whose contents it reads: the last is in the folder of the host application.
inline constexpr std::string_view systemVolumeFile = "SystemVolume.ini";
inline constexpr std::string_view ideFile = "IDE.INI";

}  // namespace machine
