// The power fails in the middle of a boot switch of a described PC: after every call that changes the PC,
// also with a record that the file system had not written yet. What boots then, does the same switch finish,
// and does its opposite lead back?

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>

#include "machine/calls/call_table.h"
#include "machine/facts/machines.h"
#include "tests/support/application/application.h"
#include "tests/support/fault_walk.h"

namespace {

using machine::Pc;

using Flags = std::vector<uint32_t>;

// --- the PCs ---

constexpr const char* recordName = "SystemVolume.ini";

Pc SystemOnTwo() {
    return machine::FactoryMbr();
}

Pc SystemOnThree() {
    Pc pc = machine::WinPeTwoDisks();
    pc.disks.resize(1);
    PartitionOf(pc, 1).bootIndicator = 0;
    PartitionOf(pc, 3).bootIndicator = 1;
    return pc;
}

Flags ActiveOn(const Pc& facts) {
    Flags active;
    for (const machine::Partition& partition : facts.disks[0].partitions) {
        if (partition.bootIndicator != 0) active.push_back(partition.number);
    }
    return active;
}

std::optional<std::string> RecordOf(const Pc& facts) {
    const auto* const entry = facts.disks[0].partitions[0].volume->files.Find(recordName);
    return entry == nullptr ? std::nullopt : std::optional(entry->content);
}

Pc WithRecord(Pc facts, const std::optional<std::string>& record) {
    machine::FileTree& files = facts.disks[0].partitions[0].volume->files;
    if (record) {
        files.PutFile(recordName, *record);
    } else {
        files.RemoveFile(recordName);
    }
    return facts;
}

// --- the switches ---

using Operation = std::function<int(Kestova&)>;

const Operation toRecovery = &Kestova::SetRcvprtActive;
const Operation toSystem = &Kestova::SetSystemActive;

Operation ToPartition(uint32_t number) {
    return [number](Kestova& kestova) { return kestova.SetActive(static_cast<int>(number)) ? 0 : 1; };
}

const Operation clearActive = [](Kestova& kestova) { return kestova.ClearActive() ? 0 : 1; };

struct Switch {
    const char* name;
    Operation operation;
    Operation opposite;
    bool startsOnRecovery;
};

const Switch switches[] = {
    {"SetRcvprtActive", toRecovery, toSystem, false},
    {"SetPOneActive", &Kestova::SetPOneActive, toSystem, false},
    {"SetSystemActive", toSystem, toRecovery, true},
    {"SetPTwoActive", &Kestova::SetPTwoActive, toRecovery, true},
};

struct Outcome {
    int result = -1;
    Pc facts;
};

Outcome After(const Pc& facts, const Operation& operation) {
    Application application(facts);
    const int result = operation(application.kestova);
    return {result, application.pc.facts};
}

// --- cuts ---

// What the PC has of an operation when the power is back.
struct Cut {
    std::string after;  // the last call that was made
    std::string lost;   // of what the calls had done until then; empty if nothing
    Pc facts;
};

using Calls = std::vector<const machine::CallInfo*>;

Calls ChangingCalls(const Pc& facts, const Operation& operation) {
    Application application(facts);
    operation(application.kestova);
    Calls changing;
    for (const machine::CallRecord& call : application.pc.journal.Calls()) {
        const machine::CallInfo* const info = machine::FindCall(call.call);
        if (info != nullptr && info->changesPc) changing.push_back(info);
    }
    return changing;
}

// The PC when the first `count` of these calls have been made: no later one changes anything.
Pc AfterCalls(const Pc& facts, const Operation& operation, const Calls& calls, size_t count) {
    Application application(facts);
    for (const machine::CallInfo& call : machine::AllCalls()) {
        if (!call.changesPc) continue;
        const auto made = std::count(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(count),
                                     machine::FindCall(call.name));
        application.pc.faults.Arm({.call = std::string(call.name),
                                   .nth = static_cast<uint32_t>(made) + 1,
                                   .onwards = true,
                                   .code = FailureCode(call.failsWith)});
    }
    operation(application.kestova);
    return application.pc.facts;
}

// The table is written through to the disk. The file system writes a record when it likes: all of it can be
// lost, or its text.
std::vector<Cut> CutsOf(const Pc& start, const Operation& operation) {
    std::vector<Cut> cuts;
    const Calls calls = ChangingCalls(start, operation);
    Pc before = start;
    for (size_t count = 1; count <= calls.size(); ++count) {
        Pc facts = AfterCalls(start, operation, calls, count);
        if (facts == before) continue;
        const std::string after(calls[count - 1]->name);
        cuts.push_back({after, "", facts});
        if (RecordOf(facts) != RecordOf(start)) {
            cuts.push_back({after, "the record", WithRecord(facts, RecordOf(start))});
            if (RecordOf(facts)) cuts.push_back({after, "its text", WithRecord(facts, "")});
        }
        before = std::move(facts);
    }
    return cuts;
}

// --- the page ---

std::string Words(const Flags& flags) {
    std::string words;
    for (const uint32_t number : flags)
        words += (words.empty() ? "" : ", ") + std::to_string(number);
    return words.empty() ? "none" : words;
}

// A switch of a PC with the system on that partition.
struct Case {
    Switch tested;
    uint32_t system;
    Pc start;
    Flags done;
};

std::vector<Case> Cases(bool flagIsExclusive) {
    std::vector<Case> cases;
    for (const auto make : {SystemOnTwo, SystemOnThree}) {
        for (const Switch& tested : switches) {
            Pc start = make();
            const uint32_t system = ActiveOn(start).front();
            start.switches.activeFlagIsExclusive = flagIsExclusive;
            if (tested.startsOnRecovery) start = After(start, toRecovery).facts;
            const Outcome done = After(start, tested.operation);
            EXPECT_EQ(done.result, 0);
            cases.push_back({tested, system, start, ActiveOn(done.facts)});
        }
    }
    return cases;
}

std::string RowOf(const Case& one, const Cut& cut, const std::string& end) {
    return "| `" + std::string(one.tested.name) + "` | " + std::to_string(one.system) + " | `" + cut.after +
           "` | " + cut.lost + " | " + Words(ActiveOn(cut.facts)) + " | " + end + " |\n";
}

// The rows below that heading of the page.
std::string RowsOfPage(const std::string& heading) {
    std::ifstream page(KESTOVA_SOURCE_FOLDER "/docs/power-cuts.md");
    std::string line;
    while (std::getline(page, line) && line != heading) {
    }
    std::string rows;
    while (std::getline(page, line) && !line.starts_with("## ")) {
        if (line.starts_with("| `")) rows += line + "\n";
    }
    return rows;
}

// --- the tests ---

TEST(PowerCut, FlagIsExclusive_AnyCut_OnePartitionBootsAndOneCommandEndsIt) {
    std::string rows;
    for (const Case& one : Cases(true)) {
        const Flags original = ActiveOn(one.start);
        for (const Cut& cut : CutsOf(one.start, one.tested.operation)) {
            const Outcome again = After(cut.facts, one.tested.operation);
            const Outcome back = After(cut.facts, one.tested.opposite);
            const std::string row =
                RowOf(one, cut, Words(ActiveOn(again.facts)) + " | " + Words(ActiveOn(back.facts)));
            SCOPED_TRACE(row);
            rows += row;

            EXPECT_EQ(ActiveOn(cut.facts).size(), 1u);
            EXPECT_EQ(again.result, 0);
            EXPECT_EQ(ActiveOn(again.facts), one.done);
            EXPECT_EQ(back.result, 0);
            if (cut.lost.empty() || one.system == 2) {
                EXPECT_EQ(ActiveOn(back.facts), original);
            }
            EXPECT_EQ(ActiveOn(After(cut.facts, ToPartition(one.system)).facts), Flags{one.system});
        }
    }
    EXPECT_EQ(rows, RowsOfPage("## Where setting one active flag clears the others"));
}

TEST(PowerCut, FlagsStay_AnyCut_ClearActiveAndSetActiveEndIt) {
    std::string rows;
    for (const Case& one : Cases(false)) {
        for (const Cut& cut : CutsOf(one.start, one.tested.operation)) {
            const bool isOne = ActiveOn(cut.facts).size() == 1;
            const std::string row = RowOf(one, cut, isOne ? "" : "`ClearActive`, `SetActive N`");
            SCOPED_TRACE(row);
            rows += row;

            EXPECT_FALSE(ActiveOn(cut.facts).empty());
            for (const uint32_t wanted : {uint32_t{1}, one.system}) {
                const Pc cleared = After(cut.facts, clearActive).facts;
                EXPECT_EQ(ActiveOn(After(cleared, ToPartition(wanted)).facts), Flags{wanted});
            }
        }
    }
    EXPECT_EQ(rows, RowsOfPage("## Where active flags stay"));
}

TEST(PowerCut, ManyFlags_AnyCutOfClearActive_TheSameTwoCommandsEndIt) {
    Pc start = SystemOnThree();
    for (machine::Partition& partition : start.disks[0].partitions)
        partition.bootIndicator = 1;
    for (const Cut& cut : CutsOf(start, clearActive)) {
        const Pc cleared = After(cut.facts, clearActive).facts;
        EXPECT_EQ(ActiveOn(After(cleared, ToPartition(3)).facts), Flags{3}) << Words(ActiveOn(cut.facts));
    }
}

}  // namespace
