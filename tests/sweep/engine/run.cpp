#include "tests/sweep/engine/run.h"

#include <algorithm>
#include <exception>

#include "base/com_apartment.h"
#include "diag/module.h"
#include "machine/journal/emulated_pc.h"

namespace sweep {

namespace {

// Reads the journal of the operation.
void Look(const machine::Journal& journal, Outcome& outcome) {
    const LogEntry* last = nullptr;
    bool atSite = false;
    for (const machine::JournalEntry& entry : journal.Entries()) {
        if (const auto* record = std::get_if<LogEntry>(&entry)) {
            if (atSite) outcome.site->after.push_back(*record);
            last = record;
            continue;
        }
        const auto& call = std::get<machine::CallRecord>(entry);
        atSite = call.injected && !outcome.site;
        if (atSite) {
            outcome.site = Site{call.call, outcome.calls.size()};
            if (last != nullptr) outcome.site->before = *last;
        }
        outcome.calls.push_back(call.call);
    }
    if (last != nullptr) outcome.closingRecord = *last;
}

std::vector<std::string> NamesOf(const machine::Journal& journal) {
    std::vector<std::string> names;
    for (const machine::CallRecord& call : journal.Calls())
        names.push_back(call.call);
    return names;
}

int CountDisksRead(const std::vector<std::string>& calls) {
    return static_cast<int>(std::ranges::count(calls, "IVdsDisk::GetProperties"));
}

void Prepare(Kestova& object, const Task& task) {
    Values ignored;
    if (task.operation->name != "Initialize") object.Initialize(false);
    if (task.before != nullptr) task.before->invoke(object, {}, ignored);
}

}  // namespace

Outcome Run(const machine::Pc& pc, const Task& task, const Disturbance& disturbance) {
    Outcome outcome;
    machine::EmulatedPc emulated(pc);
    emulated.faults = machine::FaultPlan(disturbance.rules);
    {
        const ComApartment com;
        Kestova object;
        Prepare(object, task);
        if (disturbance.way == Way::None) outcome.preparation = NamesOf(emulated.journal);
        emulated.journal.Clear();
        outcome.start = emulated.facts;
        try {
            outcome.result = task.operation->invoke(object, task.arguments, outcome.outputs);
        } catch (const std::exception& thrown) {
            outcome.thrown = thrown.what();
        }
        emulated.faults.Disarm();
        outcome.moduleStaysCurrent = ModuleContext::IsCurrent();
        Look(emulated.journal, outcome);
        outcome.after = emulated.facts;
        if (IsSwitch(*task.operation)) {
            outcome.returned = object.SetSystemActive();
            outcome.afterReturn = emulated.facts;
        }
    }
    if (disturbance.way == Way::None)
        outcome.disksRead = CountDisksRead(outcome.preparation) + CountDisksRead(NamesOf(emulated.journal));
    outcome.outstanding = emulated.ledger.Outstanding();
    outcome.violations = emulated.ledger.Violations();
    return outcome;
}

}  // namespace sweep
