// A PC that changes while an operation runs: disks and partitions appear and vanish behind the library's
// back.

#include <gtest/gtest.h>

#include "base/com_apartment.h"
#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"
#include "tests/support/application/application.h"
#include "tests/sweep/engine/machines.h"
#include "tests/sweep/engine/tasks.h"
#include "tests/sweep/task_name.h"

namespace {

using machine::Pc;
using sweep::Task;

struct Change {
    const char* name;
    void (*apply)(Pc& facts);
};

void PartitionVanishes(Pc& facts) {
    if (!facts.disks.empty() && !facts.disks.front().partitions.empty())
        facts.disks.front().partitions.erase(facts.disks.front().partitions.begin());
}

// In front of all others, so that what was counted before is one off.
void PartitionAppears(Pc& facts) {
    if (facts.disks.empty()) return;
    std::vector<machine::Partition>& partitions = facts.disks.front().partitions;
    machine::Partition partition = partitions.empty() ? machine::Partition() : partitions.back();
    partition.number = 9;
    partition.volume.reset();
    partitions.insert(partitions.begin(), partition);
}

void DiskVanishes(Pc& facts) {
    if (!facts.disks.empty()) facts.disks.erase(facts.disks.begin());
}

void DiskAppears(Pc& facts) {
    facts.disks.insert(facts.disks.begin(),
                       machine::SataDisk(7, uint64_t{1} << 30, "____", "PCI\\CONTROLLER"));
}

constexpr Change changes[] = {{"PartitionVanishes", PartitionVanishes},
                              {"PartitionAppears", PartitionAppears},
                              {"DiskVanishes", DiskVanishes},
                              {"DiskAppears", DiskAppears}};

// Changes the PC when the library writes the record of that number.
class AtRecord final : public ILogSink {
  public:
    AtRecord(Pc& facts, const Change& change, size_t number)
        : facts_(facts), change_(change), number_(number) {
        CLoggingFactory::GetInstance().AddSink(*this);
    }
    ~AtRecord() { CLoggingFactory::GetInstance().RemoveSink(*this); }

    bool HasChanged() const { return count_ >= number_; }

    void Write(const LogEntry&) override {
        if (++count_ == number_) change_.apply(facts_);
    }

  private:
    Pc& facts_;
    const Change& change_;
    size_t number_;
    size_t count_ = 0;
};

// Whether the operation got so far.
bool CallWith(const sweep::NamedPc& pc, const Task& task, const Change& change, size_t record) {
    SCOPED_TRACE(std::string(pc.name) + ", " + change.name + " at record " + std::to_string(record));
    machine::EmulatedPc emulated(pc.make());
    bool hasChanged = false;
    {
        const ComApartment com;
        Kestova object;
        Values outputs;
        if (task.operation->name != "Initialize") object.Initialize(false);
        if (task.before != nullptr) task.before->invoke(object, {}, outputs);
        outputs.clear();
        const AtRecord sink(emulated.facts, change, record);
        const Value result = task.operation->invoke(object, task.arguments, outputs);
        hasChanged = sink.HasChanged();
        EXPECT_TRUE(sweep::IsListed(*task.operation, result));
    }
    ExpectOnlyKeptLeftovers(emulated.ledger);
    return hasChanged;
}

}  // namespace

class ChangingPc : public testing::TestWithParam<Task> {};

// Every few records, with another offset on each PC.
TEST_P(ChangingPc, DisksOrPartitionsChange_Operation_EndsWithAListedResult) {
    constexpr size_t step = 29;
    size_t offset = 1;
    size_t changed = 0;
    for (const sweep::NamedPc& pc : sweep::Machines()) {
        for (const Change& change : changes) {
            size_t record = offset++ % step + 1;
            while (CallWith(pc, GetParam(), change, record)) {
                record += step;
                ++changed;
            }
        }
    }
    EXPECT_GT(changed, 0U);
}

INSTANTIATE_TEST_SUITE_P(Every, ChangingPc, testing::ValuesIn(sweep::Tasks()), NameOfTask);
