#include "tests/sweep/engine/machines.h"

#include "machine/facts/machines.h"
#include "platform/partition_types.h"
#include "tests/support/application/two_systems.h"

namespace sweep {

namespace {

using machine::Pc;

Pc FactoryMbr() {
    Pc pc = machine::FactoryMbr();
    PartitionOf(pc, 2).volume->label = std::string("System Reserved");
    PartitionOf(pc, 3).volume->label = std::string("Factory");
    return pc;
}

// Partition 2 only boots; Windows is on partition 3.
Pc SystemOnPartition3() {
    Pc pc = machine::FactoryMbr();
    std::swap(PartitionOf(pc, 2).volume->files, PartitionOf(pc, 3).volume->files);
    std::swap(PartitionOf(pc, 2).volume->letters, PartitionOf(pc, 3).volume->letters);
    PartitionOf(pc, 2).bootIndicator = 0;
    PartitionOf(pc, 3).bootIndicator = 1;
    return pc;
}

// Windows PE was booted from the recovery partition, which returns to partition 3.
Pc WinPeSystemOnPartition3() {
    Pc pc = machine::WinPeTwoDisks();
    pc.disks.resize(1);
    PartitionOf(pc, 1).volume->files.PutFile("SystemVolume.ini", "[System]\r\nActive=3\r\n");
    std::swap(PartitionOf(pc, 2).volume->files, PartitionOf(pc, 3).volume->files);
    return pc;
}

// The recovery partition is shown as an ordinary one, which the switches hide.
Pc VisibleRecovery() {
    Pc pc = machine::FactoryMbr();
    PartitionOf(pc, 1).mbrType = MBR_ID_NTFS;
    PartitionOf(pc, 1).volume->letters = "R";
    return pc;
}

Pc TwoDisksIdeIni() {
    Pc pc = TwoSystems();
    machine::Partition other = PartitionOf(pc, 3);
    machine::Disk& second = pc.disks[1];
    other.number = 2;
    other.bootIndicator = 1;
    other.offset = second.partitions[0].offset + second.partitions[0].size;
    other.size = second.size - other.offset;
    other.volume->letters = "F";
    second.partitions.push_back(other);
    return pc;
}

Pc TwoDisks() {
    Pc pc = TwoDisksIdeIni();
    pc.host.files = {};
    return pc;
}

// Windows PE was booted from a disc: Windows is active.
Pc TwoDisksWindowsIdeIni() {
    Pc pc = TwoDisksIdeIni();
    PartitionOf(pc, 1).bootIndicator = 0;
    PartitionOf(pc, 2).bootIndicator = 1;
    return pc;
}

Pc TwoDisksWindows() {
    Pc pc = TwoDisksWindowsIdeIni();
    pc.host.files = {};
    return pc;
}

// Windows RE of the maker on C:, on a disk whose partitions 1 and 3 hold data.
Pc WindowsRe() {
    Pc pc = machine::FactoryGpt();
    PartitionOf(pc, 1).gptType = PARTITION_BASIC_DATA_GUID;
    PartitionOf(pc, 3).gptType = PARTITION_BASIC_DATA_GUID;
    PartitionOf(pc, 5).volume->files = {
        {"bootmgr", "BOOTMGR"}, {"boot/bcd", "BCD"}, {"sources/boot.wim", "WIM"}, {"Orvo/", ""}};
    return pc;
}

// A 32-bit recovery application in a Windows whose data volume is encrypted.
Pc BitLocker() {
    Pc pc = machine::FactoryMbr();
    pc.system.emulates32Bit = true;
    machine::EncryptableVolume open;
    open.deviceId = "\\\\?\\Volume{0}\\";
    open.persistentVolumeId = "";
    open.driveLetter = "C:";
    machine::EncryptableVolume locked = open;
    locked.deviceId = "\\\\?\\Volume{1}\\";
    locked.persistentVolumeId = "{1}";
    locked.driveLetter = "D:";
    locked.encryptionMethod = 6;
    pc.encryptableVolumes = {open, locked};
    PartitionOf(pc, 3).volume->fileSystem = "BitLocker";
    PartitionOf(pc, 3).volume->label = machine::Fact<std::string>::Fails(0x80310000);
    return pc;
}

}  // namespace

const std::vector<NamedPc>& Machines() {
    static const std::vector<NamedPc> machines = {
        {"factory-mbr", FactoryMbr},
        {"system-on-3", SystemOnPartition3},
        {"winpe-system-on-3", WinPeSystemOnPartition3},
        {"visible-recovery", VisibleRecovery},
        {"factory-gpt", machine::FactoryGpt},
        {"two-disks-ide-ini", TwoDisksIdeIni},
        {"two-disks", TwoDisks},
        {"two-disks-windows-ide-ini", TwoDisksWindowsIdeIni},
        {"two-disks-windows", TwoDisksWindows},
        {"windows-re", WindowsRe},
        {"bitlocker", BitLocker},
        {"media", machine::WinPeMedia},
        {"empty", machine::WindowsPePc},
    };
    return machines;
}

}  // namespace sweep
