#include "tests/sweep/engine/sweep.h"

#include <algorithm>
#include <limits>
#include <set>

namespace sweep {

namespace {

constexpr const char* setsFlags = "IVdsAdvancedDisk::ChangeAttributes";
constexpr const char* readsPartitions = "IVdsAdvancedDisk::QueryPartitions";

bool SetsFlags(const Outcome& outcome) {
    return std::find(outcome.calls.begin(), outcome.calls.end(), setsFlags) != outcome.calls.end();
}

// An operation that is called once, without arguments.
Task TaskOf(const char* operation) {
    return {operation, &FindOperation(operation), {}};
}

// One item with one behaviour of the active flag.
class ItemSweep {
  public:
    ItemSweep(const Item& item, bool exclusive, const Sample& sample, Tally& tally,
              const std::function<void(const std::string&)>& about)
        : task_(*item.task), before_(item.pc->make()), sample_(sample), tally_(tally), about_(about) {
        before_.switches.activeFlagIsExclusive = exclusive;
        words_ = std::string(item.pc->name) + (exclusive ? " with exclusive flags: " : ": ") + task_.name;
    }

    void RunAll();
    // Whether any run has called what the behaviour of the flag decides about.
    bool FlagsWereSet() const { return flagsWereSet_; }

  private:
    void Run(const Disturbance& disturbance);
    void RunPairs(const Disturbance& disturbance, const Outcome& outcome);
    void Look(const Disturbance& disturbance, const Outcome& outcome, const std::string& words);

    const Task& task_;
    machine::Pc before_;
    const Sample& sample_;
    Tally& tally_;
    const std::function<void(const std::string&)>& about_;
    std::string words_;
    Outcome undisturbed_;
    machine::Pc returned_;
    Value internalDisk_;
    bool flagsWereSet_ = false;
    std::set<std::string> firstOfPairs_;
};

void ItemSweep::Look(const Disturbance& disturbance, const Outcome& outcome, const std::string& words) {
    flagsWereSet_ = flagsWereSet_ || SetsFlags(outcome);
    for (const Finding& finding :
         Check(task_, {before_, undisturbed_, returned_, internalDisk_}, disturbance, outcome)) {
        tally_.Add(finding, words);
        if (finding.table == Table::Breaches) ++tally_.Of(task_).breaches;
    }
}

void ItemSweep::Run(const Disturbance& disturbance) {
    ++tally_.Of(task_).faults;
    const std::string words = words_ + " " + ToText(disturbance);
    if (!sample_.Has(words)) return;
    about_(words);
    ++tally_.Of(task_).runs;
    const Outcome outcome = sweep::Run(before_, task_, disturbance);
    Look(disturbance, outcome, words);
    RunPairs(disturbance, outcome);
}

// After the flag was refused, or set and reported as refused, and after the disk could not be read at all.
void ItemSweep::RunPairs(const Disturbance& disturbance, const Outcome& outcome) {
    const bool isFirst = disturbance.way == Way::Fails || disturbance.way == Way::FailsAfterEffect;
    const bool isBefore = disturbance.call == setsFlags || disturbance.call == readsPartitions;
    if (!isFirst || !isBefore || !RolledBack(task_, outcome)) return;
    if (!firstOfPairs_.insert(disturbance.call + NameOf(disturbance.way)).second) return;
    for (const Disturbance& both :
         FaultsOfRollBack(disturbance, {undisturbed_.preparation, outcome.calls}, outcome.site->position))
        Run(both);
}

void ItemSweep::RunAll() {
    about_(words_);
    undisturbed_ = sweep::Run(before_, task_, {});
    internalDisk_ = sweep::Run(before_, TaskOf("GetFirstInternalDriveNumber"), {}).result;
    if (IsSwitch(*task_.operation)) returned_ = sweep::Run(before_, TaskOf("SetSystemActive"), {}).after;
    ++tally_.Of(task_).machines;
    tally_.Of(task_).calls += undisturbed_.calls.size();
    Look({}, undisturbed_, words_);
    for (const Disturbance& disturbance : AllDisturbances({undisturbed_.preparation, undisturbed_.calls}))
        Run(disturbance);
}

}  // namespace

bool Sample::Has(const std::string& fault) const {
    if (part >= 1) return true;
    uint64_t hash = 14695981039346656037ULL ^ seed;
    for (const char unit : fault)
        hash = (hash ^ static_cast<unsigned char>(unit)) * 1099511628211ULL;
    hash ^= hash >> 32;
    hash *= 0xD6E8FEB86659FD93ULL;
    hash ^= hash >> 32;
    return static_cast<double>(hash) < part * static_cast<double>(std::numeric_limits<uint64_t>::max());
}

std::vector<Item> AllItems() {
    std::vector<Item> items;
    for (const NamedPc& pc : Machines()) {
        for (const Task& task : Tasks())
            items.push_back({&pc, &task});
    }
    return items;
}

uint64_t CountFaults(const Item& item) {
    const Outcome undisturbed = Run(item.pc->make(), *item.task, {});
    return AllDisturbances({undisturbed.preparation, undisturbed.calls}).size();
}

void Sweep(const Item& item, const Sample& sample, Tally& tally,
           const std::function<void(const std::string&)>& about) {
    for (const bool exclusive : {false, true}) {
        ItemSweep sweep(item, exclusive, sample, tally, about);
        sweep.RunAll();
        // Nothing else depends on the behaviour of the flag: the other one would give the same.
        if (!sweep.FlagsWereSet()) break;
    }
}

}  // namespace sweep
