// A capture finds everything that the system of a PC can show.
#include "tools/kestova/capture/captured_pc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/com_apartment.h"
#include "base/text_case.h"
#include "machine/description/description.h"
#include "machine/facts/looked_for_files.h"
#include "machine/facts/machines.h"
#include "machine/facts/seen.h"
#include "machine/journal/emulated_pc.h"
#include "tests/machine/description/random_pc.h"
#include "tests/random/engine/random_machine.h"
#include "tests/support/fault_walk.h"
#include "tests/sweep/engine/run.h"
#include "tools/kestova/capture/anonymous.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
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
    for (const machine::Difference& difference :
         machine::Compare(machine::Seen(facts), captured.pc, machine::ListOrder::Compared))
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

namespace {

machine::Pc CaptureOf(const machine::Pc& facts) {
    machine::EmulatedPc pc(facts);
    return CaptureIt().pc;
}

// Paths whose existence any operation asks for.
std::vector<std::string> LookedForBy(const machine::Pc& facts) {
    machine::EmulatedPc pc(facts);
    const ComApartment com;
    Kestova object;
    object.Initialize(false);
    for (const sweep::Task& task : sweep::Tasks()) {
        Values outputs;
        if (task.operation->invoke) task.operation->invoke(object, task.arguments, outputs);
    }
    std::vector<std::string> paths;
    for (const machine::CallRecord& call : pc.journal.Calls()) {
        if (call.call == "PathFileExistsW") paths.push_back(call.arguments.front());
    }
    return paths;
}

// The result and the outputs of every task, a line each.
std::vector<std::string> Answers(const machine::Pc& pc) {
    std::vector<std::string> answers;
    for (const sweep::Task& task : sweep::Tasks()) {
        const sweep::Outcome outcome = sweep::Run(pc, task, {});
        std::string line = task.name + ": " + testing::PrintToString(outcome.result);
        for (const auto& [name, value] : outcome.outputs)
            line += ", " + name + " = " + testing::PrintToString(value);
        answers.push_back(line);
    }
    return answers;
}

}  // namespace

// The hive of the other Windows is all that a capture has not.
TEST(Capture, OfNamedMachines_AnswersEveryOperationAsTheMachine) {
    for (const machine::NamedMachine& named : machine::NamedMachines()) {
        machine::Pc facts = named.make();
        facts.offlineSystemHive.clear();
        EXPECT_EQ(Answers(CaptureOf(facts)), Answers(facts)) << named.name;
    }
}

TEST(Capture, MadeAnonymous_AnswersEveryOperationAsTheMachine) {
    for (const machine::NamedMachine& named : machine::NamedMachines()) {
        machine::Pc facts = named.make();
        facts.offlineSystemHive.clear();
        machine::Pc anonymous = CaptureOf(facts);
        MakeAnonymous(anonymous);
        std::vector<std::string> answers = Answers(anonymous);
        std::vector<std::string> expected = Answers(facts);
        // A volume's label is what this one answers.
        for (auto* const list : {&answers, &expected})
            std::erase_if(*list, [](const std::string& line) { return line.starts_with("GetVolumeName"); });
        EXPECT_EQ(answers, expected) << named.name;
    }
}

TEST(Capture, MadeAnonymous_HoldsNothingThatTellsWhosePcItIs) {
    machine::Pc pc = CaptureOf(machine::WinPeMedia());
    pc.name = "Ada's PC";
    pc.host.path = "X:\\Users\\Ada\\Recovery.exe";
    pc.disks[0].partitions[4].volume->label = std::string("Ada");
    pc.disks[0].partitions[5].volume->label = std::string("system reserved");
    MakeAnonymous(pc);
    const std::string text = machine::WriteDescription(pc);
    for (const char* const told : {"Ada", "6f1f3a52", "523a1f6f", "37E07111", "Boot\"", "Maker boot"})
        EXPECT_THAT(text, testing::Not(HasSubstr(told)));
    EXPECT_THAT(text, HasSubstr("system reserved"));
    // Disk, partition and letter still belong together.
    const auto& letters = pc.registry.at("HKLM\\SYSTEM\\MountedDevices");
    const Guid& id = pc.disks[0].partitions[4].gptId;
    EXPECT_EQ(letters.at("\\DosDevices\\C:").data,
              "DMIO:ID:" + std::string(reinterpret_cast<const char*>(&id), sizeof(GUID)));
    EXPECT_EQ(pc.encryptableVolumes->front().deviceId, "\\\\?\\Volume{" + GuidText(id) + "}\\");
}

TEST(Capture, EveryFileThatTheLibraryLooksFor_IsInItsTable) {
    for (const machine::NamedMachine& named : machine::NamedMachines()) {
        const std::vector<std::string> paths = LookedForBy(named.make());
        EXPECT_GT(paths.size(), 20u);
        for (const std::string& path : paths) {
            std::string below = path.substr(path.find(':') + 1);
            std::ranges::replace(below, '\\', '/');
            while (below.starts_with('/'))
                below.erase(0, 1);
            const bool isListed = std::ranges::any_of(
                machine::lookedForFiles, [&](std::string_view file) { return SameName(file, below); });
            const bool isOther = below.empty() || SameName(below, "LoadRegistry.bat") ||
                                 SameName(path.substr(path.rfind('\\') + 1), machine::ideFile);
            EXPECT_TRUE(isListed || isOther) << path;
        }
    }
}

// Whatever fails, the capture comes to its end, keeps nothing, changes nothing, and says what it lacks.
TEST(Capture, AnyCallThatFails_EndsInADescriptionAllTheSame) {
    machine::Pc facts = machine::WinPeMedia();
    facts.disks[0].partitions.resize(2);
    const machine::Journal undisturbed = [&] {
        machine::EmulatedPc pc(facts);
        CaptureIt();
        return pc.journal;
    }();
    const int visited = WalkFaults(undisturbed, [&](const machine::FaultRule& rule) {
        machine::EmulatedPc pc(facts);
        pc.faults.Arm(rule);
        const machine::Pc captured = CaptureIt().pc;
        EXPECT_EQ(machine::ReadDescription(machine::WriteDescription(captured), "captured.json"), captured);
        EXPECT_EQ(pc.facts, facts);
        if (FailsOnce(rule) && rule.call != "CloseHandle" && rule.call != "RegCloseKey") {
            EXPECT_THAT(pc.ledger.Violations(), IsEmpty());
        }
    });
    EXPECT_GT(visited, 500);
}

TEST(Capture, CallThatFailsForOneDisk_BecomesAFaultOfThatDisk) {
    machine::Pc facts = machine::WinPeTwoDisks();
    facts.faults = {
        {.call = "IVdsAdvancedDisk::QueryPartitions", .code = 0x8004242B, .argument = "disk 1"},
        {.call = "IVdsDisk::GetProperties", .code = 0x00042715, .withOutputs = true, .argument = "disk 0"}};
    machine::EmulatedPc pc(facts);
    const machine::Pc captured = CaptureIt().pc;
    std::vector<machine::FaultRule> faults = captured.faults;
    std::ranges::sort(faults, {}, &machine::FaultRule::call);
    EXPECT_EQ(faults, facts.faults);
    EXPECT_THAT(captured.disks[1].partitions, IsEmpty());
}

TEST(Capture, SwitchesThatShow_AreCaptured) {
    machine::Pc facts = machine::FactoryMbr();
    machine::Disk empty;
    empty.number = 1;
    facts.disks.push_back(empty);
    facts.absentWmiClasses = {"Win32_SCSIControllerDevice"};
    machine::Switches& switches = facts.switches;
    switches.letterless = machine::Switches::Letterless::Zero;
    switches.volumesRefuseLetterCalls = false;
    switches.emptyTableLendsArray = true;
    switches.absentClassFailsLate = true;
    switches.shortDescriptor = machine::Switches::ShortDescriptor::MoreData;
    machine::EmulatedPc pc(facts);
    const ComApartment com;
    EXPECT_EQ(CapturePc().pc.switches, switches);
}

TEST(Capture, DisksThatCannotBeDescribed_AreNoted) {
    machine::Pc facts = machine::FactoryMbr();
    facts.faults = {{.call = "IVdsDisk::GetProperties", .code = 0x80070005}};
    machine::EmulatedPc pc(facts);
    const CapturedPc captured = CaptureIt();
    EXPECT_THAT(captured.pc.disks, IsEmpty());
    EXPECT_THAT(
        captured.notes,
        ElementsAre(
            "a disk of the service does not tell its properties, 0x80070005, and is left out",
            "WMI lists \\\\.\\PHYSICALDRIVE0, which the Virtual Disk Service does not: it is left out"));
}
