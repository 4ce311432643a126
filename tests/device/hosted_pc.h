// The PC of a test, with a host program on it that has initialised COM.
#pragma once

#include <gmock/gmock.h>

#include <optional>

#include "base/com_apartment.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"

// When it goes, everything that was lent must have been given back.
class HostedPc {
  public:
    explicit HostedPc(machine::Pc facts) : emulated(std::move(facts)) { emulated.journal.Clear(); }
    ~HostedPc() {
        com_.reset();
        EXPECT_THAT(emulated.ledger.Outstanding(), testing::IsEmpty());
        EXPECT_THAT(emulated.ledger.Violations(), testing::IsEmpty());
    }
    HostedPc(const HostedPc&) = delete;
    HostedPc& operator=(const HostedPc&) = delete;

    // The nth call of that name, or every one for 0, fails with the code.
    void Fail(const char* call, uint32_t code, uint32_t nth = 0) {
        emulated.faults.Arm({.call = call, .nth = nth, .code = code});
    }

    machine::EmulatedPc emulated;

  private:
    std::optional<ComApartment> com_{std::in_place};
};

// A SATA disk that WMI lists as an IDE disk without a controller; it reports neither a location nor a
// SCSI address.
inline machine::Disk BareDisk(uint32_t number) {
    const std::string digits = std::to_string(number);
    machine::Disk disk;
    disk.number = number;
    disk.vdsName = "\\\\?\\PhysicalDrive" + digits;
    disk.size = 1024ULL * 1024 * 1024;
    disk.wmi = machine::WmiDisk{"\\\\.\\PHYSICALDRIVE" + digits, "IDE\\DISK" + digits, "IDE"};
    disk.location = machine::Fact<std::string>::Fails(ERROR_INVALID_DATA);
    disk.scsiAddress = machine::Fact<machine::ScsiAddress>::Fails(ERROR_NOT_SUPPORTED);
    return disk;
}

inline machine::Pc PcWithDisks(std::vector<machine::Disk> disks) {
    machine::Pc pc;
    pc.disks = std::move(disks);
    return pc;
}
