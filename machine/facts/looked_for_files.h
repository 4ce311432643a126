// The files and folders by which the recovery library tells what a volume is for.
#pragma once

#include <string_view>

namespace machine {

// Below the root of any volume, folders behind what is in them.
inline constexpr std::string_view lookedForFiles[] = {
    "sources/idf",
    "sources/data",
    "sources/boot.wim",
    "sources/UFD",
    "sources/Qelhdrcv.ini",
    "sources/Orvo",
    "sources/HDD",
    "sources/DVD",
    "sources/Autorun",
    "sources",
    "bootmgr.efi",
    "bootmgr",
    "Windows/System32/config/SYSTEM",
    "Windows/System32/Winload.exe",
    "Windows/System32",
    "Windows",
    "SystemVolume.ini",
    "Recovery",
    "Orvo",
    "EFI",
    "Boot/BCD",
    "Boot",
};

// Those whose contents it reads: the last is in the folder of the host application.
inline constexpr std::string_view systemVolumeFile = "SystemVolume.ini";
inline constexpr std::string_view ideFile = "IDE.INI";

}  // namespace machine
