// The predefined machines.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "machine/facts/pc.h"

namespace machine {

// BIOS, installed Windows. Disk 0, MBR: 1 hidden recovery, 2 Windows (active, C:), 3 data (D:), 4
// hibernation.
Pc FactoryMbr();

// UEFI, installed Windows. Disk 0, GPT: 1 maker's boot, 2 Windows RE, 3 EFI system, 4 reserved, 5 Windows
// (C:), 6 recovery.
Pc FactoryGpt();

// BIOS, Windows PE from the recovery partition. Disk 0 as in FactoryMbr with partition 1 active, disk 1 a
// small cache disk; IDE.INI beside the host application prefers the controller of disk 0.
Pc WinPeTwoDisks();

// UEFI, Windows PE. Disk 0 as in FactoryGpt with 5 Windows (C:), 6 data (D:, locked by BitLocker), 7
// recovery; R: a recovery disc, U: a recovery stick. The installed Windows has the data partition as E:,
// and remembers an F: that no longer exists.
Pc WinPeMedia();

// A PC running Windows PE from its RAM drive X:, without disks.
Pc WindowsPePc();

// A SATA disk without partitions, as its port driver, WMI and the Virtual Disk Service report it. `model`
// is the name in its PNP device id, padded with underscores to 40 characters; `controller` is the PNP
// device id of its controller.
Disk SataDisk(uint32_t number, uint64_t size, const std::string& model, const std::string& controller);

struct NamedMachine {
    std::string_view name;
    std::string_view summary;
    Pc (*make)();
};

// "factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media".
const std::vector<NamedMachine>& NamedMachines();

}  // namespace machine
