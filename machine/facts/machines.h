// The machines that come with the project.
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

// BIOS, Windows PE from the recovery partition. Disk 0 as FactoryMbr with partition 1 active, disk 1 a small
// cache disk; IDE.INI beside the host program prefers the controller of disk 0.
Pc WinPeTwoDisks();

// UEFI, Windows PE. Disk 0 as FactoryGpt with 5 Windows (C:), 6 data (D:, locked by BitLocker), 7 recovery;
// R: a recovery disc, U: a recovery stick. The installed Windows calls the data E:, and had an F: that is
// gone.
Pc WinPeMedia();

// A PC that runs Windows PE from its RAM drive X:, and has no disks.
Pc WindowsPePc();

// A SATA disk as its port driver, WMI and the Virtual Disk Service report it, without partitions. `model` is
// its name in the PNP device id, padded with underscores to 40 characters; `controller` the PNP device id of
// what it hangs on.
Disk SataDisk(uint32_t number, uint64_t size, const std::string& model, const std::string& controller);

struct NamedMachine {
    std::string_view name;
    std::string_view summary;
    Pc (*make)();
};

// "factory-mbr", "factory-gpt", "winpe-two-disks", "winpe-media".
const std::vector<NamedMachine>& NamedMachines();

}  // namespace machine
