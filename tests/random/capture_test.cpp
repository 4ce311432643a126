// A capture finds everything that the system of a PC can show.
#include "tools/kestova/capture/captured_pc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/com_apartment.h"
#include "machine/description/description.h"
#include "machine/facts/machines.h"
#include "machine/facts/seen.h"
#include "machine/journal/emulated_pc.h"
#include "tests/machine/description/random_pc.h"
#include "tests/random/engine/random_machine.h"

namespace {

using testing::IsEmpty;

// Of the PC that is there.
CapturedPc CaptureIt() {
    const ComApartment com;
    CapturedPc captured = CapturePc();
    // No switch makes an honest PC different.
    captured.pc.switches = {};
    return captured;
}

// "place: of the PC | captured", a line each; empty if the capture has all that can be seen, and nothing
// else.
std::string Unlike(const machine::Pc& facts) {
    machine::EmulatedPc pc(facts);
    const CapturedPc captured = CaptureIt();
    std::string unlike;
    for (const machine::Difference& difference : machine::Compare(machine::Seen(facts), captured.pc))
        unlike += difference.place + ": " + difference.left.value_or("-") + " | " +
                  difference.right.value_or("-") + "\n";
    for (const std::string& note : captured.notes)
        unlike += "note: " + note + "\n";
    if (pc.facts != facts) unlike += "the PC was changed\n";
    if (!pc.ledger.Outstanding().empty() || !pc.ledger.Violations().empty()) unlike += "something is kept\n";
    return unlike;
}

// A call that fails with 0 would succeed.
template <typename T>
void MakeErrorFail(machine::Fact<T>& fact) {
    if (!fact.value) fact.error |= 1;
}

// A PC that could be described from the beginning to the end: without images, and with disks and devices that
// can be told apart.
machine::Pc WildPc(uint32_t seed) {
    machine::Pc pc = RandomPc(seed);
    pc.faults.clear();
    for (machine::Disk& disk : pc.disks) {
        if (!disk.image.empty()) disk.partitions.clear();
        disk.image.clear();
        disk.size += disk.number;
        MakeErrorFail(disk.location);
        MakeErrorFail(disk.scsiAddress);
        MakeErrorFail(disk.storageBusType);
        const std::string number = std::to_string(disk.number);
        if (disk.wmi && disk.wmi->pnpDeviceId) *disk.wmi->pnpDeviceId += " of disk " + number;
        for (std::string& controller : disk.controllers)
            controller += " " + std::to_string(&controller - disk.controllers.data()) + " above " + number;
        for (machine::Partition& partition : disk.partitions) {
            if (partition.volume) MakeErrorFail(partition.volume->label);
            // A letter of a hidden partition tells nothing of it if it cannot be opened.
            if (partition.volume && partition.volume->openError != 0) partition.attributes = 0;
        }
    }
    for (machine::Volume& volume : pc.volumes) {
        volume.image.clear();
        MakeErrorFail(volume.label);
    }
    return pc;
}

}  // namespace

TEST(Capture, NamedMachines_AreSeenWhole) {
    for (const machine::NamedMachine& named : machine::NamedMachines())
        EXPECT_EQ(Unlike(named.make()), "") << named.name;
}

TEST(Capture, PlausiblePcs_AreSeenWhole) {
    for (uint64_t seed = 0; seed < 300; ++seed) {
        randomly::Choice choice(seed);
        EXPECT_EQ(Unlike(randomly::RandomMachine(choice)), "") << seed;
    }
}

TEST(Capture, WildPcs_AreSeenWhole) {
    for (uint32_t seed = 0; seed < 300; ++seed)
        EXPECT_EQ(Unlike(WildPc(seed)), "") << seed;
}
