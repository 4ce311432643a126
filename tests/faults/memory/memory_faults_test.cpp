// Memory runs out at every allocation of the library, in every operation, on every kind of PC: once, and from
// there on for good. No exception leaves, the answer is one that the operation has for a failure, no record
// is left half written, the PC boots, and what the operation does only for a while is undone.
//
// KESTOVA_EVERY_ALLOCATION in the environment walks all of them; without it those of a long operation are
// sampled evenly.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

#include "diag/module.h"
#include "machine/facts/machines.h"
#include "tests/faults/memory/endings.h"
#include "tests/faults/memory/failing_memory.h"
#include "tests/faults/memory/foreign_logger.h"
#include "tests/support/application/two_systems.h"
#include "tests/sweep/engine/tasks.h"
#include "tests/sweep/task_name.h"

namespace {

using sweep::Task;

// --- the PCs ---

machine::Pc FactoryMbr() {
    machine::Pc facts = machine::FactoryMbr();
    facts.switches.activeFlagIsExclusive = true;
    return facts;
}

// Windows PE, started from a stick: the installed system is active, and has letters of its own.
machine::Pc FactoryMbrInWindowsPe() {
    machine::Pc facts = TwoSystems();
    facts.switches.activeFlagIsExclusive = true;
    for (machine::Partition& partition : facts.disks.front().partitions)
        partition.bootIndicator = partition.number == 2 ? 1 : 0;
    return facts;
}

// Windows PE from the recovery partition, with the record of the system.
machine::Pc RecoveryActive() {
    machine::Pc facts = TwoSystems();
    facts.switches.activeFlagIsExclusive = true;
    PartitionOf(facts, 1).volume->files.PutFile("SystemVolume.ini", "[System]\r\nActive=2\r\n");
    return facts;
}

// One volume is encrypted.
machine::Pc FactoryGpt() {
    machine::Pc facts = machine::FactoryGpt();
    machine::EncryptableVolume volume;
    volume.deviceId = "\\\\?\\Volume{0}\\";
    volume.persistentVolumeId = "{0}";
    volume.driveLetter = "C:";
    volume.encryptionMethod = 1;
    facts.encryptableVolumes = {volume};
    return facts;
}

struct Machine {
    const char* name;
    machine::Pc (*facts)();
};

constexpr Machine machines[] = {{"FactoryMbr", FactoryMbr},
                                {"FactoryMbrInWindowsPe", FactoryMbrInWindowsPe},
                                {"RecoveryActive", RecoveryActive},
                                {"FactoryGpt", FactoryGpt}};

// --- the runs ---

// A PC on which an operation is called, after what has to come before it.
struct Session {
    Session(const Machine& machine, const Task& task) : application(machine.facts()) {
        Values ignored;
        if (task.before != nullptr) task.before->invoke(application.kestova, {}, ignored);
        before = application.pc.facts;
        Received() = {};
    }

    void Call(const Task& task) {
        result = task.operation->invoke(application.kestova, task.arguments, outputs);
    }
    std::string Answer() const { return AnswerText(result, outputs); }

    Application application;
    machine::Pc before;
    Value result;
    Values outputs;
};

struct UndisturbedRun {
    std::vector<uint32_t> places;  // of the library's allocations
    std::string answer;
    machine::Pc after;
};

UndisturbedRun RunUndisturbed(const Machine& machine, const Task& task) {
    Session session(machine, task);
    FailingMemory memory;
    session.Call(task);
    memory.Stop();
    return {memory.Places(), session.Answer(), session.application.pc.facts};
}

// All of them, or some at equal distances.
std::vector<uint32_t> Sample(const std::vector<uint32_t>& places, size_t most) {
    const size_t step = std::getenv("KESTOVA_EVERY_ALLOCATION") != nullptr ? 1 : places.size() / most + 1;
    std::vector<uint32_t> sample;
    for (size_t index = 0; index < places.size(); index += step)
        sample.push_back(places[index]);
    return sample;
}

// --- what a run leaves ---

std::vector<uint32_t> ActiveOf(const machine::Pc& facts) {
    std::vector<uint32_t> active;
    for (const machine::Partition& partition : facts.disks.front().partitions) {
        if (partition.bootIndicator != 0) active.push_back(partition.number);
    }
    return active;
}

// Each partition has the letters that it had before, or that it has after an undisturbed run.
void ExpectLettersBeforeOrAfter(const machine::Pc& facts, const machine::Pc& before,
                                const machine::Pc& after) {
    const auto lettersOf = [](const machine::Pc& pc, size_t partition) {
        const auto& volume = pc.disks.front().partitions[partition].volume;
        return volume ? volume->letters : std::string();
    };
    for (size_t partition = 0; partition < facts.disks.front().partitions.size(); ++partition) {
        const std::string letters = lettersOf(facts, partition);
        EXPECT_TRUE(letters == lettersOf(before, partition) || letters == lettersOf(after, partition))
            << "partition " << partition + 1 << ": " << letters;
    }
}

// The active partition is that before or after; only a failed SetPTwoActive makes partition 1 active.
void ExpectFlagBeforeOrAfter(const machine::Pc& facts, const machine::Pc& before, const machine::Pc& after,
                             const std::string& operation) {
    const std::vector<uint32_t> active = ActiveOf(facts);
    const bool isFirst = operation == "SetPTwoActive" && active == std::vector<uint32_t>{1};
    EXPECT_TRUE(active == ActiveOf(before) || active == ActiveOf(after) || isFirst);
}

// A record is written before the flag moves, and deleted again if it does not.
void ExpectRecordOnlyWithItsFlag(Session& session) {
    if (ActiveOf(session.application.pc.facts) != ActiveOf(session.before)) return;
    const bool hadRecord = PartitionOf(session.before, 1).volume->files.Find("SystemVolume.ini") != nullptr;
    EXPECT_EQ(SystemVolumeIni(session.application.pc).has_value(), hadRecord);
}

// With memory again, a switch back selects the system.
void ExpectBoots(Session& session) {
    EXPECT_EQ(ActivePartitions(session.application.pc).size(), 1U);
    EXPECT_EQ(session.application.kestova.SetSystemActive(), 0);
    EXPECT_EQ(ActivePartitions(session.application.pc), std::vector<uint32_t>{2});
}

class MemoryFaults : public testing::TestWithParam<Task> {
  protected:
    void Visit(const Machine& machine, const UndisturbedRun& undisturbed, uint32_t place, bool onwards) {
        SCOPED_TRACE(std::string(machine.name) + ", allocation " + std::to_string(place) +
                     (onwards ? " and all later ones" : ""));
        Session session(machine, GetParam());
        {
            const FailingMemory memory(place, onwards);
            ASSERT_NO_THROW(session.Call(GetParam()));
            ASSERT_TRUE(memory.HasFailed());
        }
        const bool isWithoutAny = onwards && place == undisturbed.places.front();
        EXPECT_TRUE((!isWithoutAny && session.Answer() == undisturbed.answer) ||
                    IsEnding(*GetParam().operation, session.result, session.outputs))
            << session.Answer();
        EXPECT_EQ(Received().withoutText, 0);
        EXPECT_FALSE(ModuleContext::IsCurrent());
        ExpectUndone(session);
        // A letter and a flag need memory to be undone.
        if (!onwards) ExpectLettersAndFlag(session, undisturbed.after);
        const bool isMbr = session.before.disks.front().style == machine::PartitionStyle::Mbr;
        if (isMbr && sweep::IsSwitch(*GetParam().operation)) ExpectRecordOnlyWithItsFlag(session);
        if (isMbr && GetParam().name != "ClearActive") ExpectBoots(session);
    }

    static void ExpectUndone(Session& session) {
        ExpectOnlyKeptLeftovers(session.application.pc.ledger);
        EXPECT_FALSE(IsHiveMounted(session.application.pc));
        if (!session.before.volumes.empty()) {
            EXPECT_EQ(BatchFile(session.application.pc), nullptr);
        }
    }

    void ExpectLettersAndFlag(const Session& session, const machine::Pc& after) {
        const machine::Pc& facts = session.application.pc.facts;
        ExpectLettersBeforeOrAfter(facts, session.before, after);
        ExpectFlagBeforeOrAfter(facts, session.before, after, GetParam().name);
    }
};

TEST_P(MemoryFaults, EveryAllocationFails_EndsWithItsResultAndUndoesWhatItDid) {
    for (const Machine& machine : machines) {
        // What a program allocates once is there from then on.
        std::make_unique<Session>(machine, GetParam())->Call(GetParam());
        const UndisturbedRun undisturbed = RunUndisturbed(machine, GetParam());
        for (const uint32_t place : Sample(undisturbed.places, 6))
            Visit(machine, undisturbed, place, false);
        for (const uint32_t place : Sample(undisturbed.places, 1))
            Visit(machine, undisturbed, place, true);
    }
}

INSTANTIATE_TEST_SUITE_P(Every, MemoryFaults, testing::ValuesIn(sweep::Tasks()), NameOfTask);

}  // namespace
