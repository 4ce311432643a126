// The sweep of faults: fails every platform call of every operation on every PC in every way, and compares
// what happens with the tables of this folder.

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "machine/description/description.h"
#include "machine/entry/loaded_library.h"
#include "tests/sweep/engine/expected.h"
#include "tests/sweep/engine/report.h"
#include "tests/sweep/engine/workers.h"

namespace {

constexpr const char* usage =
    "usage: sweep TABLES [--runs N] [--seed N] [--processes N] [--pc NAME] [--operation NAME] [--record]\n"
    "       sweep --describe FOLDER\n"
    "  TABLES       the folder of the tables\n"
    "  --runs       about how many faults to run, chosen by the seed; all unless given\n"
    "  --record     write what was found into the tables, instead of comparing\n"
    "  --describe   write the PCs as descriptions, NAME.json, on which the tool repeats a fault\n";

struct Options {
    std::string tables;
    uint64_t runs = 0;  // 0: all
    uint64_t seed = 1;
    unsigned processes = 1;
    std::string pc;
    std::string operation;
    bool record = false;
    std::string describe;
};

struct WrongUse : std::exception {};

Options ReadOptions(int argc, char** argv) {
    Options options;
    for (int at = 1; at < argc; ++at) {
        const std::string word = argv[at];
        const auto next = [&]() -> std::string {
            if (++at == argc) throw WrongUse();
            return argv[at];
        };
        if (word == "--runs") {
            options.runs = std::stoull(next());
        } else if (word == "--seed") {
            options.seed = std::stoull(next());
        } else if (word == "--processes") {
            options.processes = static_cast<unsigned>(std::stoul(next()));
        } else if (word == "--pc") {
            options.pc = next();
        } else if (word == "--operation") {
            options.operation = next();
        } else if (word == "--record") {
            options.record = true;
        } else if (word == "--describe") {
            options.describe = next();
        } else if (options.tables.empty() && !word.starts_with('-')) {
            options.tables = word;
        } else {
            throw WrongUse();
        }
    }
    if (options.tables.empty() == options.describe.empty()) throw WrongUse();
    return options;
}

int Describe(const std::string& folder) {
    for (const sweep::NamedPc& pc : sweep::Machines()) {
        std::ofstream out(folder + "/" + pc.name + ".json");
        out << machine::WriteDescription(pc.make());
        if (!out.flush()) throw std::runtime_error(folder + ": cannot be written");
    }
    return 0;
}

std::vector<sweep::Item> ChosenItems(const Options& options) {
    std::vector<sweep::Item> items = sweep::AllItems();
    std::erase_if(items, [&](const sweep::Item& item) {
        return (!options.pc.empty() && options.pc != item.pc->name) ||
               (!options.operation.empty() && options.operation != item.task->operation->name);
    });
    return items;
}

sweep::Sample ChosenSample(const Options& options, const std::vector<sweep::Item>& items) {
    sweep::Sample sample{.seed = options.seed};
    if (options.runs == 0) return sample;
    uint64_t faults = 0;
    for (const sweep::Item& item : items)
        faults += sweep::CountFaults(item);
    sample.part = static_cast<double>(options.runs) / static_cast<double>(faults);
    return sample;
}

int Sweep(const Options& options) {
    const sweep::Expected expected(options.tables);
    const std::vector<sweep::Item> items = ChosenItems(options);
    if (items.empty()) throw std::runtime_error("there is no such PC or operation");
    const sweep::Sample sample = ChosenSample(options, items);
    const sweep::Swept swept = sweep::SweepInProcesses(items, sample, options.processes);
    std::fputs(sweep::Report(swept.tally).c_str(), stdout);
    for (const std::string& crash : swept.crashes)
        std::fprintf(stderr, "sweep: a process ended with %s\n", crash.c_str());
    if (!swept.crashes.empty()) return 1;
    if (options.record) {
        expected.Record(swept.tally);
        return 0;
    }
    const bool whole = options.runs == 0 && options.pc.empty() && options.operation.empty();
    const std::vector<std::string> differences = expected.Compare(swept.tally, whole);
    for (const std::string& difference : differences)
        std::fprintf(stderr, "%s\n", difference.c_str());
    return differences.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const Options options = ReadOptions(argc, argv);
        const machine::LoadedLibrary library;
        return options.describe.empty() ? Sweep(options) : Describe(options.describe);
    } catch (const WrongUse&) {
        std::fputs(usage, stderr);
        return 2;
    } catch (const std::exception& failed) {
        std::fprintf(stderr, "sweep: %s\n", failed.what());
        return 1;
    }
}
